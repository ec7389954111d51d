#include "shell/dialogs/CVelumCsvExportOptions.h"

#include "core/CVelumChecked.h"
#include "core/CVelumDialogLib.h"
#include "core/CVelumSeams.h"
#include "exchange/CVelumExports.h"
#include "exchange/CVelumPlainExport.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumProgressBox.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCsvExportOptions.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocale>

namespace {

constexpr qint64 EPatience = 300; // milliseconds of counting before the window comes up

} // namespace

CVelumCsvExportOptions::CVelumCsvExportOptions()
    : CVelumDialogForm(u"CVelumCsvExportOptions"_s, false), iUi(new Ui::CVelumCsvExportOptions),
      fExportDialog(tr("CSV Export File Name"), u"csv"_s, tr("CSV Files (*.csv)|*.csv|All Files (*.*)|*")) {
  iUi->setupUi(this);
  connect(iUi->fExportBut, &QPushButton::clicked, this,
          [this] { CVelumGuard::Run(u"CVelumCsvExportOptions.fExportBut"_s, [this] { Export(); }); });
  connect(iUi->fPlain, &QAbstractButton::toggled, this, &CVelumCsvExportOptions::ShowLacking);
  connect(iUi->fCancelBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumCsvExportOptions::~CVelumCsvExportOptions() = default;

void CVelumCsvExportOptions::Load() {
  CVelumDialogLib::StayAboveFrame(*this);
  CVelumDialogForm::Load();
  fExportDialog.SetInitDir(gOptions.iExportCsvDialogInitDir);
  const QString& delimiter = gOptions.iCsvExportDelimiter;
  QRadioButton* choice =
      delimiter == u";"_s ? iUi->fSemiColon : (delimiter == u"\t"_s ? iUi->fTab : iUi->fComma);
  choice->setChecked(true);
  iUi->fPlain->setChecked(true);
  ShowLacking();
}

void CVelumCsvExportOptions::Unload() {
  gOptions.iExportCsvDialogInitDir = fExportDialog.InitDir();
  gOptions.iCsvExportDelimiter = Delimiter();
  CVelumDialogForm::Unload();
}

void CVelumCsvExportOptions::ChangeNotify(int aKind, CVelumObject*, CVelumObject*) {
  if (aKind == EChangeStackCloses) CVelumWinMan::UnloadForm(*this);
}

QString CVelumCsvExportOptions::Delimiter() const {
  if (iUi->fTab->isChecked()) return u"\t"_s;
  return iUi->fSemiColon->isChecked() ? u";"_s : u","_s;
}

// Only the classic way has a coding that lacks letters.
void CVelumCsvExportOptions::ShowLacking() {
  iUi->fUtf8->setEnabled(!IsPlain());
  if (IsPlain()) {
    iUi->fUtf8->setChecked(true);
    return iUi->fLacking->setVisible(false);
  }
  const Ref<CVelumControlSet> background = iExport.iBackground();
  QElapsedTimer clock;
  clock.start();
  bool whole = true;
  const auto step = [&](qint64, qint64) { return whole = clock.elapsed() < EPatience; };
  const qint64 lacking = background ? CVelumExports::CountLacking(*background, step) : 0;
  const QString text = whole
                           ? tr("%1 characters are not in Latin-1 / Windows and would become “?”.")
                           : tr("More than %1 characters are not in Latin-1 / Windows and would become “?”.");
  iUi->fLacking->setText(lacking > 0 ? text.arg(QLocale().toString(lacking)) : QString());
  iUi->fLacking->setVisible(lacking > 0);
  // The coding that loses nothing is proposed.
  iUi->fUtf8->setChecked(lacking > 0);
}

bool CVelumCsvExportOptions::IsPlain() const {
  return iUi->fPlain->isChecked();
}

void CVelumCsvExportOptions::Export() {
  if (!fExportDialog.ShowSave(this)) return;
  qint64 lacking = 0;
  QStringList leftOut;
  if (!WriteFile(fExportDialog.FileName(), lacking, leftOut)) return;
  if (!leftOut.isEmpty())
    CVelumSeams::Presenter().Tell(
        tr("Left out, as they have no text of their own: %1").arg(leftOut.join(u", "_s)));
  // The early count was cut short, so report the characters lost now.
  if (lacking > 0 && iUi->fLacking->isHidden())
    CVelumSeams::Presenter().Tell(
        tr("%1 characters are not in Latin-1 / Windows and became “?”.").arg(QLocale().toString(lacking)));
  iExport.iDone();
}

bool CVelumCsvExportOptions::WriteFile(const QString& aPath, qint64& aLacking, QStringList& aLeftOut) {
  const Ref<CVelumControlSet> background = iExport.iBackground();
  const TVelumCsvForm form{Delimiter(), iUi->fUtf8->isChecked() ? ECodUtf8 : ECodLatin1};
  bool done = false;
  {
    CVelumProgressBox progress(this, tr("Export"), tr("Exporting to %1…").arg(QFileInfo(aPath).fileName()));
    CVelumDialogLib::BeginWait();
    const auto step = [&](qint64 aDone, qint64 aTotal) { return progress.Step(aDone, aTotal); };
    const CVelumControlSet& set = CVelumChecked::Deref(background);
    done = IsPlain() ? CVelumPlainExport::Write(aPath, set, Delimiter().front(), step, &aLeftOut)
                     : CVelumExports::ExportCsv(aPath, set, form, step, &aLacking);
  }
  CVelumDialogLib::EndWait();
  if (done)
    CVelumReport::Done(tr("Exported %1 to %2")
                           .arg(CVelumReport::Cards(background->NumCards()), QFileInfo(aPath).fileName()));
  return done;
}
