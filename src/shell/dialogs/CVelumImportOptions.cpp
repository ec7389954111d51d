#include "shell/dialogs/CVelumImportOptions.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumLib.h"
#include "core/CVelumSeams.h"
#include "exchange/CVelumContentImport.h"
#include "exchange/CVelumTextImport.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumCsvImporter.h"
#include "shell/dialogs/CVelumImportProgress.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumReport.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumImportOptions.h"

#include <QFileInfo>
#include <QPointer>
#include <QScopedValueRollback>

namespace {

const QString ECsvForm = u"CVelumCsvImportOptions"_s;

// The choice as it was when the window was last unloaded; for this run of the program.
bool gIntoCurStack = false;

} // namespace

CVelumImportOptions::CVelumImportOptions()
    : CVelumDialogForm(u"CVelumImportOptions"_s, true), iUi(new Ui::CVelumImportOptions),
      fImportCsvDialog(tr("Import CSV File"), u"csv"_s, tr("CSV Files (*.csv)|*.csv|All Files (*.*)|*")),
      fImportXmlDialog(tr("Import XML File"), u"xml"_s, tr("XML Files (*.xml)|*.xml|All Files (*.*)|*")),
      fImportHandBaseDialog(tr("Import HanDBase File"), u"csv"_s,
                            tr("HanDBase Files (*.pdb)|*.pdb|All Files (*.*)|*")),
      fImportOrvelleDialog(tr("Import Orvelle / Merge Orvelles"), u"Orvelle"_s,
                           tr("Orvelle  (*.Orvelle)|*.Orvelle|All Files (*.*)|*")),
      fImportTextDialog(tr("Import Pure Text File"), u"csv"_s, tr("All Files (*.*)|*")) {
  iUi->setupUi(this);
  iBackgroundBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fBackgroundBox, this);
  for (QAbstractButton* choice : std::initializer_list<QAbstractButton*>{
           iUi->fCsv, iUi->fXml, iUi->fPdb, iUi->fOrvelle, iUi->fText, iUi->fIntoCurStack})
    connect(choice, &QAbstractButton::clicked, this, [this] {
      CVelumGuard::Run(u"CVelumImportOptions.HandleDisables"_s, [this] { HandleDisables(); });
    });
  connect(iUi->fOkBut, &QPushButton::clicked, this, [this] {
    // The open stack changes, or goes: a running script ends first.
    CVelumDialogLib::WhenNoScriptRuns([form = QPointer(this)] {
      if (form) form->Import();
    });
  });
  connect(iUi->fCancelBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumImportOptions::~CVelumImportOptions() = default;

void CVelumImportOptions::Load() {
  CVelumDialogLib::StayAboveFrame(*this);
  CVelumDialogForm::Load();
  iBackgroundBox->Define1Column(tr("Background"));
  CVelumDialogLib::RefillBackgroundList(*iBackgroundBox, gStack.Get(), nullptr);
  iUi->fCsv->setChecked(true);
  iUi->fIntoCurStack->setChecked(gIntoCurStack);
  HandleDisables();
  iUi->fCsv->setFocus();
}

void CVelumImportOptions::Unload() {
  gIntoCurStack = iUi->fIntoCurStack->isChecked();
  if (CVelumWinMan::FormIsLoaded(ECsvForm)) CVelumWinMan::UnloadForm(*CVelumWinMan::NameToForm(ECsvForm));
  CVelumDialogForm::Unload();
  iBackgroundBox->ClearAndShow();
}

void CVelumImportOptions::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject*) {
  if (aKind == EChangeStackCloses && !iBusy) return CVelumWinMan::UnloadForm(*this);
  if (aKind > EChangeStructure && aKind != EChangeBackgroundGoes) return;
  CVelumDialogLib::RefillBackgroundList(*iBackgroundBox, gStack.Get(),
                                        aKind == EChangeBackgroundGoes ? aObj1 : nullptr);
  HandleDisables();
}

bool CVelumImportOptions::IntoCurStack() const {
  return iUi->fIntoCurStack->isChecked();
}

Ref<CVelumControlSet> CVelumImportOptions::Background() const {
  return dynamic_cast<CVelumControlSet*>(iBackgroundBox->SelObj().Get());
}

void CVelumImportOptions::ForgetTarget() {
  iUi->fIntoCurStack->setChecked(false);
}

void CVelumImportOptions::CloseOthers() {
  const QScopedValueRollback busy(iBusy, true);
  CVelumSeams::ChangeNotify(EChangeStackCloses);
}

void CVelumImportOptions::SetTarget(bool aEnabled, bool aInto, bool aBackgroundEnabled) {
  iUi->fIntoCurStack->setEnabled(aEnabled);
  iUi->fIntoCurStack->setChecked(aInto);
  iUi->fBackgroundBox->setEnabled(aBackgroundEnabled);
}

void CVelumImportOptions::HandleDisables() {
  for (QRadioButton* needsStack : {iUi->fXml, iUi->fOrvelle, iUi->fText})
    needsStack->setEnabled(static_cast<bool>(gStack));
  const bool into = IntoCurStack();
  if (iUi->fCsv->isChecked())
    SetTarget(true, into, into);
  else if (iUi->fPdb->isChecked())
    SetTarget(false, false, false);
  else if (iUi->fXml->isChecked() || iUi->fOrvelle->isChecked())
    SetTarget(false, true, false);
  else if (iUi->fText->isChecked())
    SetTarget(false, true, true);
  else
    CVelumError::Assert(false, u"HandleDisables value"_s);
}

void CVelumImportOptions::Import() {
  if (iBusy) return;
  if (iUi->fCsv->isChecked())
    ImportCsvFile();
  else if (iUi->fXml->isChecked())
    ImportXmlFile();
  else if (iUi->fPdb->isChecked())
    ImportHandBaseFile();
  else if (iUi->fOrvelle->isChecked())
    ImportOrvelle();
  else
    ImportTextFile();
}

QString CVelumImportOptions::AskFile(CVelumFileDialog& aDialog, const QString& aInitDir) {
  if (!aInitDir.isEmpty()) aDialog.SetInitDir(aInitDir);
  return aDialog.ShowOpen(this) ? aDialog.FileName() : QString();
}

// For the next time; of a file that could be imported.
void CVelumImportOptions::KeepFolder(const QString& aPath, QString& aInitDir) {
  QString name;
  CVelumLib::SplitPath(aPath, aInitDir, name);
}

template <class TWork>
bool CVelumImportOptions::Run(const QString& aProc, const QString& aPath, const TWork& aWork) {
  const QScopedValueRollback busy(iBusy, true);
  bool done = false;
  CVelumGuard::Run(aProc, [&] {
    const CVelumError::CCommand command(tr("Import %1").arg(QFileInfo(aPath).fileName()));
    CVelumImportProgress progress(this, aPath);
    CVelumDialogLib::BeginWait();
    done = aWork([&progress](qint64 aDone, qint64 aTotal) { return progress.Step(aDone, aTotal); });
  });
  CVelumDialogLib::EndWait();
  return done;
}

void CVelumImportOptions::ImportCsvFile() {
  const QString path = AskFile(fImportCsvDialog, gOptions.iImportCsvDialogInitDir);
  if (!path.isEmpty()) ImportCsvFrom(path);
}

void CVelumImportOptions::ShowCsvImport(const QString& aPath) {
  auto* form = dynamic_cast<CVelumImportOptions*>(CVelumWinMan::NameToForm(u"CVelumImportOptions"_s));
  if (!form || form->iBusy) return;
  CVelumWinMan::ShowDialog(*form);
  form->iUi->fCsv->setChecked(true);
  form->HandleDisables();
  form->ImportCsvFrom(aPath);
}

void CVelumImportOptions::ImportCsvFrom(const QString& aPath) {
  CVelumGuard::Run(u"CVelumImportOptions.ImportCsvFile"_s, [&] {
    CVelumForm* form = CVelumWinMan::NameToForm(ECsvForm);
    auto* importer = dynamic_cast<CVelumCsvImporter*>(form);
    if (!importer) return;
    importer->SetImport(HandOver());
    CVelumWinMan::LoadForm(*form);
    importer->SetImportFile(aPath);
    KeepFolder(aPath, gOptions.iImportCsvDialogInitDir);
    CVelumWinMan::ShowDialog(*form, false, this);
  });
}

TVelumCsvImport CVelumImportOptions::HandOver() {
  const QPointer<CVelumImportOptions> self(this);
  const auto open = [self] { return self && self->IsLoaded(); };
  return {[self, open] { return open() && self->IntoCurStack(); },
          [self, open] { return open() ? self->Background() : nullptr; },
          [self, open] {
            if (open()) self->CloseOthers();
          },
          [self, open] {
            if (!open()) return;
            self->ForgetTarget();
            CVelumWinMan::UnloadForm(*self);
          }};
}

void CVelumImportOptions::ImportXmlFile() {
  const QString path = AskFile(fImportXmlDialog, gOptions.iImportXmlDialogInitDir);
  if (path.isEmpty() || !CVelumDialogLib::LeaveStackStep() || !gStackView) return;
  const qint64 before = gStack->NumCards();
  const bool done = Run(u"CVelumImportOptions.ImportXmlFile"_s, path, [&](const TVelumStep& aStep) {
    return CVelumImports::ImportXml(path, *gStack, aStep);
  });
  // What was read before a failure stays, and is to be seen.
  CVelumDialogLib::ShowCards();
  if (Ref<CVelumCard> card; done && gStack->NumCards() > 0) static_cast<void>(gStackView->OrderFirst(card));
  if (done) KeepFolder(path, gOptions.iImportXmlDialogInitDir);
  if (done) CVelumReport::Imported(path, gStack->NumCards() - before);
  CVelumSeams::ChangeNotify(EChangeStructure);
  if (done) CVelumWinMan::UnloadForm(*this);
}

void CVelumImportOptions::ImportTextFile() {
  const Ref<CVelumControlSet> background = Background();
  if (!background || !gStackView) {
    CVelumSeams::Presenter().Tell(tr("Choose the background that the cards are to belong to."));
    return;
  }
  const QString path = AskFile(fImportTextDialog, gOptions.iImportTextDialogInitDir);
  if (path.isEmpty()) return;
  const bool done = Run(u"CVelumImportOptions.ImportTextFile"_s, path, [&](const TVelumStep& aStep) {
    return CVelumImports::ImportTextFile(path, background, *gStackView, aStep);
  });
  if (!done) return;
  KeepFolder(path, gOptions.iImportTextDialogInitDir);
  CVelumReport::Imported(path, background->NumCards());
  CVelumDialogLib::ShowCards();
  CVelumSeams::ChangeNotify(EChangeStructure);
  CVelumWinMan::UnloadForm(*this);
}

void CVelumImportOptions::ImportHandBaseFile() {
  CVelumSeams::Presenter().Tell(tr("The import of HanDBase databases is not built yet."));
}

void CVelumImportOptions::ImportOrvelle() {
  CVelumSeams::Presenter().Tell(tr("The merging of two stacks is not built yet."));
}
