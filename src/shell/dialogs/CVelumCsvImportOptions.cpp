#include "shell/dialogs/CVelumCsvImportOptions.h"

#include "core/CVelumDialogLib.h"
#include "exchange/CVelumCsvProposal.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumImportOptions.h"
#include "shell/dialogs/CVelumImportProgress.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCsvImportOptions.h"

#include <QHeaderView>
#include <QPointer>
#include <QScopedValueRollback>

namespace {

constexpr int ENewStack = 0;
constexpr int EStructure = 1;
constexpr int EStackCloses = 7;
constexpr int EPreviewTab = 1;
constexpr int EMaxColumn = 240; // pixels

// As the types of fields are called elsewhere; the place is the number of the type.
QStringList TypeNames() {
  return {u"Text"_s, u"Integer"_s, u"Float"_s, u"Date"_s, u"Time"_s, u"Boolean"_s};
}

CVelumImportOptions* ImportForm() {
  const QString name = u"CVelumImportOptions"_s;
  if (!CVelumWinMan::FormIsLoaded(name)) return nullptr;
  return dynamic_cast<CVelumImportOptions*>(CVelumWinMan::NameToForm(name));
}

} // namespace

CVelumCsvImportOptions::CVelumCsvImportOptions()
    : CVelumDialogForm(u"CVelumCsvImportOptions"_s, true), iUi(new Ui::CVelumCsvImportOptions) {
  iUi->setupUi(this);
  iLineBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fLineBox, this);
  iUi->fPreviewBox->setWordWrap(false);
  iUi->fPreviewBox->horizontalHeader()->setMaximumSectionSize(EMaxColumn);
  iUi->fColumnType->addItem(tr("As proposed"));
  iUi->fColumnType->addItems(TypeNames());
  for (QAbstractButton* choice : std::initializer_list<QAbstractButton*>{
           iUi->fLatin1, iUi->fUtf8, iUi->fHeaderLine, iUi->fDetectTypes, iUi->fTryCardName})
    connect(choice, &QAbstractButton::toggled, this, &CVelumCsvImportOptions::DropPreview);
  for (QAbstractButton* delim :
       std::initializer_list<QAbstractButton*>{iUi->fComma, iUi->fSemiColon, iUi->fTab})
    connect(delim, &QAbstractButton::toggled, this, [this] {
      iTypes = {}; // those of other columns
      DropPreview();
    });
  connect(iUi->fTabs, &QTabWidget::currentChanged, this, &CVelumCsvImportOptions::ShowPreview);
  connect(iUi->fPreviewBox, &QTableWidget::currentCellChanged, this, &CVelumCsvImportOptions::ShowColumnType);
  connect(iUi->fColumnType, &QComboBox::currentIndexChanged, this, &CVelumCsvImportOptions::TakeColumnType);
  connect(iUi->fImportBut, &QPushButton::clicked, this, [this] {
    // The open stack changes, or goes: a running script ends first.
    CVelumDialogLib::WhenNoScriptRuns([form = QPointer(this)] {
      if (form) form->Import();
    });
  });
  connect(iUi->fCancel, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumCsvImportOptions::~CVelumCsvImportOptions() = default;

void CVelumCsvImportOptions::Load() {
  CVelumDialogLib::StayAboveFrame(*this);
  CVelumDialogForm::Load();
  iLineBox->Define1Column(u"Line"_s);
  iUi->fHeaderLine->setChecked(true);
  iUi->fDetectTypes->setChecked(gOptions.iCsvDetectTypes);
  iUi->fGuessKey->setChecked(gOptions.iCsvGuessKey);
  iUi->fTryCardName->setChecked(gOptions.iCsvTryCardName);
  iUi->fLatin1->setChecked(true);
  iUi->fTabs->setCurrentIndex(0);
  iUi->fImportBut->setFocus();
}

void CVelumCsvImportOptions::Unload() {
  CVelumDialogForm::Unload();
  iLineBox->ClearAndShow();
}

void CVelumCsvImportOptions::ChangeNotify(int aKind, CVelumObject*, CVelumObject*) {
  if (aKind == EStackCloses && !iBusy) CVelumWinMan::UnloadForm(*this);
}

void CVelumCsvImportOptions::Prepare(const QString& aFilename) {
  iFilename = aFilename;
  iLineBox->Clear();
  const TCsvProposal proposal = CVelumImports::ProposeCsv(aFilename);
  for (const QString& line : proposal.iLines) iLineBox->AddLine(line, nullptr);
  iLineBox->Show();
  (proposal.BestCoding() == ECodUtf8 ? iUi->fUtf8 : iUi->fLatin1)->setChecked(true);
  QRadioButton* delim = proposal.iDelim == u';'    ? iUi->fSemiColon
                        : proposal.iDelim == u'\t' ? iUi->fTab
                                                   : iUi->fComma;
  delim->setChecked(true);
  iTypes = {};
  DropPreview();
}

QChar CVelumCsvImportOptions::Delim() const {
  if (iUi->fSemiColon->isChecked()) return u';';
  if (iUi->fTab->isChecked()) return u'\t';
  CVelumError::Assert(iUi->fComma->isChecked(), u"fImportBut_Click iCsvDelim"_s);
  return u',';
}

qint32 CVelumCsvImportOptions::Coding() const {
  if (iUi->fUtf8->isChecked()) return ECodUtf8;
  CVelumError::Assert(iUi->fLatin1->isChecked(), u"fImportBut_Click iCoding"_s);
  return ECodLatin1;
}

TCsvOptions CVelumCsvImportOptions::Options() const {
  TCsvOptions options;
  options.iDelim = Delim();
  options.iCoding = Coding();
  options.iHeaderLine = iUi->fHeaderLine->isChecked();
  options.iDetectTypes = iUi->fDetectTypes->isChecked();
  options.iGuessKey = iUi->fGuessKey->isChecked();
  options.iTryCardName = iUi->fTryCardName->isChecked();
  options.iTypes = iTypes;
  return options;
}

void CVelumCsvImportOptions::DropPreview() {
  iPreviewStale = true;
  ShowPreview();
}

void CVelumCsvImportOptions::ShowPreview() {
  if (!iPreviewStale || iUi->fTabs->currentIndex() != EPreviewTab || iFilename.isEmpty()) return;
  iPreviewStale = false;
  TCsvPreview preview;
  QString note;
  try {
    const CVelumError::CCommand command;
    preview = CVelumImports::PreviewCsv(iFilename, Options());
    if (!preview.iWhole) note = tr("Types by the first %L1 lines.").arg(TCsvPreview::ETypeRows);
  } catch (const std::exception&) {
    CVelumError::CatchError(u"CVelumCsvImportOptions.ShowPreview"_s);
    note = CVelumError::GetErrorRecord().iSysDescr;
  }
  iUi->fPreviewNote->setText(note);
  FillPreview(preview);
}

void CVelumCsvImportOptions::FillPreview(const TCsvPreview& aPreview) {
  QTableWidget& box = *iUi->fPreviewBox;
  const int column = box.currentColumn();
  box.clear();
  box.setRowCount(static_cast<int>(aPreview.iRows.size()));
  box.setColumnCount(static_cast<int>(aPreview.iTitles.size()));
  const QStringList names = TypeNames();
  QStringList titles;
  for (qsizetype i = 0; i < aPreview.iTitles.size(); ++i)
    titles.append(aPreview.iTitles.at(i) + u'\n' + names.value(aPreview.iTypes.at(i)));
  box.setHorizontalHeaderLabels(titles);
  for (int row = 0; row < box.rowCount(); ++row)
    for (int i = 0; i < aPreview.iRows.at(row).size(); ++i)
      box.setItem(row, i, new QTableWidgetItem(aPreview.iRows.at(row).at(i)));
  box.resizeColumnsToContents();
  if (box.columnCount() > 0) box.setCurrentCell(0, qBound(0, column, box.columnCount() - 1));
  ShowColumnType();
}

void CVelumCsvImportOptions::ShowColumnType() {
  const int column = iUi->fPreviewBox->currentColumn();
  const bool usable = column >= 0 && iUi->fDetectTypes->isChecked();
  const QScopedValueRollback showing(iShowing, true);
  iUi->fColumnType->setEnabled(usable);
  const auto type = usable ? iTypes[static_cast<size_t>(column)] : std::nullopt;
  iUi->fColumnType->setCurrentIndex(type ? *type + 1 : 0);
}

void CVelumCsvImportOptions::TakeColumnType() {
  const int column = iUi->fPreviewBox->currentColumn();
  if (iShowing || column < 0) return;
  const int index = iUi->fColumnType->currentIndex();
  iTypes[static_cast<size_t>(column)] = index > 0 ? std::optional(index - 1) : std::nullopt;
  DropPreview();
}

void CVelumCsvImportOptions::Import() {
  const CVelumImportOptions* form = ImportForm();
  if (iBusy || !form) return;
  const bool into = form->IntoCurStack();
  const Ref<CVelumControlSet> background = form->Background();
  if (into && (!background || !gStackView)) {
    CVelumSeams::Presenter().Tell(tr("Choose the background that the cards are to belong to."));
    return;
  }
  bool done = false;
  {
    const QScopedValueRollback busy(iBusy, true);
    if (!into && !CVelumDialogLib::LeaveStackStep()) {
      CVelumWinMan::UnloadForm(*this);
      return;
    }
    CVelumGuard::Run(u"CVelumCsvImportOptions.fImportBut_Click"_s, [&] {
      CVelumDialogLib::BeginWait();
      done = into ? IntoBackground(background) : IntoNewStack();
    });
    CVelumDialogLib::EndWait();
  }
  if (!done) return;
  RememberChoices();
  CVelumImportOptions::Report(iFilename, into ? background->NumCards() : gStack->NumCards());
  const QPointer<CVelumCsvImportOptions> self(this);
  CVelumSeams::ChangeNotify(into ? EStructure : ENewStack);
  // This window goes with the other one. A script that hears of the new stack may have closed both.
  if (CVelumImportOptions* other = ImportForm(); self && other) CVelumWinMan::UnloadForm(*other);
}

bool CVelumCsvImportOptions::IntoNewStack() {
  TNewStack made;
  {
    CVelumImportProgress progress(this, iFilename);
    if (CVelumImports::ImportCsv1(iFilename, Options(), progress, made) != ECsvOutcome::Done) return false;
  }
  if (CVelumImportOptions* form = ImportForm()) form->CloseOthers();
  CVelumLib::ReplaceStack(made.iStack, MakeRef<CVelumStackView>(made.iView, made.iStack));
  return true;
}

bool CVelumCsvImportOptions::IntoBackground(const Ref<CVelumControlSet>& aBackground) {
  const Ref<CVelumStackView> view = gStackView;
  {
    CVelumImportProgress progress(this, iFilename);
    if (CVelumImports::ImportCsv1(iFilename, Options(), progress, aBackground, *view) != ECsvOutcome::Done)
      return false;
  }
  ShowCards();
  return true;
}

void CVelumCsvImportOptions::ShowCards() {
  if (!gStackView) return;
  gStackView->OpenCardList();
  gStackView->OpenCardView();
  gStackView->RefreshViews(true, true);
  Ref<CVelumCard> card;
  if (!gStackView->CurCard() && gStack->NumCards() > 0) static_cast<void>(gStackView->OrderFirst(card));
}

void CVelumCsvImportOptions::RememberChoices() const {
  gOptions.iCsvDetectTypes = iUi->fDetectTypes->isChecked();
  gOptions.iCsvGuessKey = iUi->fGuessKey->isChecked();
  gOptions.iCsvTryCardName = iUi->fTryCardName->isChecked();
}
