#include "shell/frame/CVelumShellForms.h"

#include "shell/dialogs/CVelumCardEdit.h"
#include "shell/dialogs/CVelumCsvExportOptions.h"
#include "shell/dialogs/CVelumCsvImportOptions.h"
#include "shell/dialogs/CVelumCsvReport.h"
#include "shell/dialogs/CVelumExportOptions.h"
#include "shell/dialogs/CVelumImportOptions.h"
#include "shell/dialogs/CVelumNewStackForm.h"
#include "shell/dialogs/CVelumOptionEdit.h"
#include "shell/dialogs/CVelumPictureViewer.h"
#include "shell/dialogs/CVelumWelcome.h"
#include "toolkit/CVelumWinMan.h"

namespace {

template <class T> void Add(const QString& aName) {
  CVelumWinMan::SetFactory(aName, [] { return new T; });
}

} // namespace

void CVelumShellForms::Register() {
  CVelumWinMan::RegisterFormName(u"CVelumCsvReport"_s);
  Add<CVelumCardEdit>(u"CVelumCardEdit"_s);
  Add<CVelumCsvExportOptions>(u"CVelumCsvExportOptions"_s);
  Add<CVelumCsvImportOptions>(u"CVelumCsvImportOptions"_s);
  Add<CVelumCsvReport>(u"CVelumCsvReport"_s);
  Add<CVelumExportOptions>(u"CVelumExportOptions"_s);
  Add<CVelumImportOptions>(u"CVelumImportOptions"_s);
  Add<CVelumNewStackForm>(u"CVelumNewStackForm"_s);
  Add<CVelumOptionEdit>(u"CVelumOptionEdit"_s);
  Add<CVelumPictureViewer>(u"CVelumPictureViewer"_s);
  Add<CVelumWelcome>(u"CVelumWelcome"_s);
}
