#include "shell/dialogs/CVelumExportOptions.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumSeams.h"
#include "exchange/CVelumExports.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "shell/dialogs/CVelumCsvExporter.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumProgressBox.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumExportOptions.h"

#include <QFileInfo>
#include <QPointer>

namespace {

const QString ECsvForm = u"CVelumCsvExportOptions"_s;

} // namespace

CVelumExportOptions::CVelumExportOptions()
    : CVelumDialogForm(u"CVelumExportOptions"_s, true), iUi(new Ui::CVelumExportOptions),
      fExportXmlDialog(tr("XML Export File Name"), u"csv"_s,
                       tr("XML Files (*.xml)|*.xml|All Files (*.*)|*")) {
  iUi->setupUi(this);
  iBackgroundBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fBackgroundBox, this);
  for (const QRadioButton* choice : {iUi->fCsv, iUi->fXml})
    connect(choice, &QRadioButton::clicked, this, [this] { HandleDisables(); });
  connect(iUi->fOkBut, &QPushButton::clicked, this, [this] { Export(); });
  connect(iUi->fCancelBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumExportOptions::~CVelumExportOptions() = default;

void CVelumExportOptions::Load() {
  CVelumDialogLib::StayAboveFrame(*this);
  CVelumDialogForm::Load();
  iBackgroundBox->Define1Column(tr("Background"));
  CVelumDialogLib::RefillBackgroundList(*iBackgroundBox, gStack.Get(), nullptr);
  iUi->fCsv->setChecked(true);
  HandleDisables();
}

void CVelumExportOptions::Unload() {
  if (CVelumWinMan::FormIsLoaded(ECsvForm)) CVelumWinMan::UnloadForm(*CVelumWinMan::NameToForm(ECsvForm));
  CVelumDialogForm::Unload();
  iBackgroundBox->ClearAndShow();
}

void CVelumExportOptions::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject*) {
  if (aKind == EChangeStackCloses) CVelumWinMan::UnloadForm(*this);
  const bool goes = aKind == EChangeBackgroundGoes;
  if (aKind <= EChangeStructure || goes)
    CVelumDialogLib::RefillBackgroundList(*iBackgroundBox, gStack.Get(), goes ? aObj1 : nullptr);
}

void CVelumExportOptions::HandleDisables() {
  iUi->fBackgroundBox->setEnabled(iUi->fCsv->isChecked());
}

Ref<CVelumControlSet> CVelumExportOptions::Background() const {
  return dynamic_cast<CVelumControlSet*>(iBackgroundBox->SelObj().Get());
}

void CVelumExportOptions::Export() {
  CVelumGuard::Run(u"CVelumExportOptions.fOkBut"_s, [this] {
    if (iUi->fXml->isChecked())
      ExportXmlFile();
    else
      ShowCsvSettings();
  });
}

void CVelumExportOptions::ShowCsvSettings() {
  CVelumForm* form = CVelumWinMan::NameToForm(ECsvForm);
  if (auto* exporter = dynamic_cast<CVelumCsvExporter*>(form)) {
    const QPointer<CVelumExportOptions> self(this);
    exporter->SetExport({[self] { return self ? self->Background() : nullptr; },
                         [self] {
                           if (self) CVelumWinMan::UnloadForm(*self);
                         }});
  }
  CVelumWinMan::ShowDialog(*form, false, this);
}

void CVelumExportOptions::ExportXmlFile() {
  if (!gOptions.iExportXmlDialogInitDir.isEmpty())
    fExportXmlDialog.SetInitDir(gOptions.iExportXmlDialogInitDir);
  if (!gStack || !fExportXmlDialog.ShowSave(this)) return;
  const QString path = fExportXmlDialog.FileName();
  bool done = false;
  {
    CVelumProgressBox progress(this, tr("Export"), tr("Exporting to %1…").arg(QFileInfo(path).fileName()));
    CVelumDialogLib::BeginWait();
    done = CVelumExports::ExportXml(
        *gStack, path, [&progress](qint64 aDone, qint64 aTotal) { return progress.Step(aDone, aTotal); });
  }
  CVelumDialogLib::EndWait();
  if (!done) return;
  CVelumReport::Done(
      tr("Exported %1 to %2").arg(CVelumReport::Cards(gStack->NumCards()), QFileInfo(path).fileName()));
  gOptions.iExportXmlDialogInitDir = fExportXmlDialog.InitDir();
  CVelumWinMan::UnloadForm(*this);
}
