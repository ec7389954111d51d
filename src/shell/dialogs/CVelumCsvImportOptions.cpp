#include "shell/dialogs/CVelumCsvImportOptions.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumSeams.h"
#include "exchange/CVelumCsvProposal.h"
#include "shell/dialogs/CVelumCsvPreviewBox.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumScreenFit.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCsvImportOptions.h"

#include <QHeaderView>
#include <QMenu>
#include <QPointer>
#include <QScopedValueRollback>

namespace {

constexpr int ERowMargins = 6; // pixels

} // namespace

CVelumCsvImportOptions::CVelumCsvImportOptions()
    : CVelumDialogForm(u"CVelumCsvImportOptions"_s, true), iUi(new Ui::CVelumCsvImportOptions),
      iTypeMenu(new QMenu(this)) {
  iUi->setupUi(this);
  iLineBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fLineBox, this);
  iUi->fPreviewBox->setWordWrap(false);
  iUi->fPreviewBox->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + ERowMargins);
  iUi->fColumnType->addItem(tr("As proposed"));
  iUi->fColumnType->addItems(CVelumCsvPreviewBox::TypeNames());
  iTypeMenu->setObjectName(u"fTypeMenu"_s);
  ConnectChoices();
  ConnectColumns();
  connect(&iWork, &CVelumCsvWork::Known, this, &CVelumCsvImportOptions::ShowExact);
  connect(&iWork, &CVelumCsvWork::Progressed, this, &CVelumCsvImportOptions::ShowNote);
  connect(iUi->fImportBut, &QPushButton::clicked, this, [this] {
    // The open stack changes, or goes: a running script ends first.
    CVelumDialogLib::WhenNoScriptRuns([form = QPointer(this)] {
      if (form) form->Import();
    });
  });
  connect(iUi->fCancel, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumCsvImportOptions::~CVelumCsvImportOptions() = default;

void CVelumCsvImportOptions::ConnectChoices() {
  connect(iUi->fExact, &QAbstractButton::toggled, this, &CVelumCsvImportOptions::TakeWay);
  for (QAbstractButton* choice : std::initializer_list<QAbstractButton*>{
           iUi->fAutoCoding, iUi->fLatin1, iUi->fUtf8, iUi->fUtf16, iUi->fHeaderLine})
    connect(choice, &QAbstractButton::toggled, this, &CVelumCsvImportOptions::TakeReading);
  connect(iUi->fDetectTypes, &QAbstractButton::toggled, this, &CVelumCsvImportOptions::TakeChoice);
  connect(iUi->fAddCards, &QAbstractButton::toggled, this, &CVelumCsvImportOptions::ShowTarget);
  connect(iUi->fDrop, &QAbstractButton::toggled, this, &CVelumCsvImportOptions::ShowUsable);
  for (QAbstractButton* delim : std::initializer_list<QAbstractButton*>{iUi->fComma, iUi->fSemiColon,
                                                                        iUi->fTab, iUi->fBar, iUi->fOther})
    connect(delim, &QAbstractButton::toggled, this, [this](bool aOn) {
      if (!aOn) return;
      DropTypes();
      TakeReading();
    });
  connect(iUi->fOtherDelim, &QLineEdit::textEdited, this, [this](const QString& aText) {
    if (aText.isEmpty()) return;
    iUi->fOther->setChecked(true);
    DropTypes();
    TakeReading();
  });
  connect(iUi->fSkipLines, &QSpinBox::valueChanged, this, [this] {
    DropTypes();
    TakeReading();
  });
}

void CVelumCsvImportOptions::ConnectColumns() {
  connect(iUi->fTabs, &QTabWidget::currentChanged, this, &CVelumCsvImportOptions::ShowPreview);
  connect(iUi->fPreviewBox, &QTableWidget::currentCellChanged, this, [this] {
    ShowColumnType();
    ShowColumnField();
  });
  connect(iUi->fPreviewBox->horizontalHeader(), &QHeaderView::sectionClicked, this,
          &CVelumCsvImportOptions::ChooseTypeAt);
  connect(iUi->fColumnType, &QComboBox::currentIndexChanged, this, &CVelumCsvImportOptions::TakeColumnType);
  connect(iUi->fColumnField, &QComboBox::activated, this, &CVelumCsvImportOptions::TakeColumnField);
}

void CVelumCsvImportOptions::Load() {
  CVelumDialogLib::StayAboveFrame(*this);
  CVelumDialogForm::Load();
  CVelumScreenFit::KeepOnScreen(*this, true);
  const QScopedValueRollback showing(iShowing, true);
  iLineBox->Define1Column(tr("Line"));
  iUi->fExact->setChecked(true);
  iUi->fAutoCoding->setChecked(true);
  iUi->fHeaderLine->setChecked(true);
  iUi->fDetectTypes->setChecked(gOptions.iCsvDetectTypes);
  iUi->fGuessKey->setChecked(gOptions.iCsvGuessKey);
  iUi->fTryCardName->setChecked(gOptions.iCsvTryCardName);
  iUi->fSkipLines->setValue(0);
  iUi->fOtherDelim->clear();
  iUi->fReplace->setChecked(true);
  iUi->fDrop->setChecked(false);
  iUi->fNaming->clear();
  iUi->fTabs->setCurrentIndex(0);
  iUi->fImportBut->setFocus();
}

void CVelumCsvImportOptions::Unload() {
  CVelumDialogForm::Unload();
  iWork.Clear();
  iLineBox->ClearAndShow();
}

void CVelumCsvImportOptions::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject*) {
  if (iBusy) return;
  if (aKind == EChangeStackCloses) return CVelumWinMan::UnloadForm(*this);
  if (aKind != EChangeStructure && aKind != EChangeStack && aKind != EChangeBackgroundGoes) return;
  // What is known of its fields does not hold any more.
  iFields.clear();
  if (aKind == EChangeBackgroundGoes && aObj1 == Target().Get()) return iWork.SetChoice(Choice(), nullptr);
  TakeChoice();
}

void CVelumCsvImportOptions::changeEvent(QEvent* aEvent) {
  CVelumDialogForm::changeEvent(aEvent);
  if (aEvent->type() == QEvent::ActivationChange && isActiveWindow() && !iBusy && iWork.IsOpen())
    ShowTarget();
}

void CVelumCsvImportOptions::CheckDelim(QChar aDelim) {
  QRadioButton* delim = aDelim == u','    ? iUi->fComma
                        : aDelim == u';'  ? iUi->fSemiColon
                        : aDelim == u'\t' ? iUi->fTab
                        : aDelim == u'|'  ? iUi->fBar
                                          : iUi->fOther;
  delim->setChecked(true);
}

void CVelumCsvImportOptions::Prepare(const QString& aFilename) {
  iFilename = aFilename;
  iProposed = false;
  iTypes.clear();
  iFields.clear();
  iWork.Begin(aFilename);
  const QScopedValueRollback showing(iShowing, true);
  iLineBox->Clear();
  for (const QString& line : CVelumImports::ProposeCsv(aFilename, false).iLines)
    iLineBox->AddLine(line, nullptr);
  iLineBox->Show();
  CheckDelim(iWork.Layout().iDelim);
  iWork.SetChoice(Choice(), Target());
  ShowTarget();
  iPreviewStale = true;
  ShowPreview();
}

// The whole file has to be looked at for the coding, so that this waits until somebody wants it.
void CVelumCsvImportOptions::ProposeClassic() {
  if (std::exchange(iProposed, true)) return;
  const TCsvProposal proposal = CVelumImports::ProposeCsv(iFilename);
  (proposal.BestCoding() == ECodUtf8 ? iUi->fUtf8 : iUi->fLatin1)->setChecked(true);
  CheckDelim(proposal.iDelim);
}

bool CVelumCsvImportOptions::IsExact() const {
  return iUi->fExact->isChecked();
}

void CVelumCsvImportOptions::TakeWay() {
  if (iShowing) return;
  DropTypes();
  CVelumGuard::Run(u"CVelumCsvImportOptions.fExact"_s, [this] {
    const QScopedValueRollback showing(iShowing, true);
    iUi->fDrop->setChecked(false);
    if (IsExact())
      iUi->fAutoCoding->setChecked(true);
    else
      ProposeClassic();
  });
  ShowTarget();
  TakeReading();
}

void CVelumCsvImportOptions::DropTypes() {
  iTypes.clear(); // those of other columns
  iFields.clear();
}

void CVelumCsvImportOptions::TakeReading() {
  if (iShowing || !iWork.IsOpen()) return;
  if (IsExact())
    CVelumGuard::Run(u"CVelumCsvImportOptions.TakeReading"_s, [this] {
      iWork.SetEncoding(Encoding());
      iWork.SetReading(Reading());
      iWork.SetChoice(Choice(), Target());
    });
  else
    ShowFaults({});
  DropPreview();
}

void CVelumCsvImportOptions::TakeChoice() {
  if (iShowing || !iWork.IsOpen()) return;
  if (IsExact()) iWork.SetChoice(Choice(), Target());
  ShowTarget();
  DropPreview();
}

QChar CVelumCsvImportOptions::Delim() const {
  if (iUi->fSemiColon->isChecked()) return u';';
  if (iUi->fTab->isChecked()) return u'\t';
  if (iUi->fBar->isChecked()) return u'|';
  const QString other = iUi->fOtherDelim->text();
  if (iUi->fOther->isChecked() && !other.isEmpty() && other != u"\"" && !other.front().isSurrogate())
    return other.front();
  const bool chosen = iUi->fComma->isChecked() || iUi->fOther->isChecked();
  CVelumError::Assert(chosen, u"fImportBut_Click iCsvDelim"_s);
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
  options.iDrop = iUi->fDrop->isChecked();
  for (size_t i = 0; i < options.iTypes.size(); ++i)
    if (const int column = static_cast<int>(i); iTypes.contains(column))
      options.iTypes[i] = iTypes.value(column);
  return options;
}

void CVelumCsvImportOptions::DropPreview() {
  iPreviewStale = true;
  ShowPreview();
}

void CVelumCsvImportOptions::ShowPreview() {
  if (!iPreviewStale || iFilename.isEmpty()) return;
  if (IsExact()) return ShowExact();
  if (iUi->fTabs->currentWidget() != iUi->fPreviewPage) return;
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
  QStringList titles;
  for (qsizetype i = 0; i < preview.iTitles.size(); ++i)
    titles.append(
        CVelumCsvPreviewBox::Title(preview.iTitles.at(i), preview.iTypes.at(i), preview.iChanged.at(i)));
  CVelumCsvPreviewBox::Fill(*iUi->fPreviewBox, titles, preview.iRows, [&](int aRow, int aColumn) {
    return preview.iChangedCells.contains({aRow, aColumn}) ? ECsvFit::Changed : ECsvFit::Same;
  });
  ShowColumnType();
  ShowUsable();
}

void CVelumCsvImportOptions::ShowColumnType() {
  const int column = iUi->fPreviewBox->currentColumn();
  // In a background the fields have their types.
  const bool usable = column >= 0 && (IsExact() ? !Target() : iUi->fDetectTypes->isChecked());
  const QScopedValueRollback showing(iShowing, true);
  iUi->fColumnType->setEnabled(usable);
  iUi->fColumnType->setCurrentIndex(usable && iTypes.contains(column) ? iTypes.value(column) + 1 : 0);
}

void CVelumCsvImportOptions::TakeColumnType() {
  const int column = iUi->fPreviewBox->currentColumn();
  if (iShowing || column < 0) return;
  const int index = iUi->fColumnType->currentIndex();
  if (index > 0)
    iTypes.insert(column, index - 1);
  else
    iTypes.remove(column);
  TakeChoice();
}
