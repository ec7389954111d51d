#include "shell/CVelumShellForms.h"

#include "shell/CVelumCardEdit.h"
#include "shell/CVelumCsvExportOptions.h"
#include "shell/CVelumCsvImportOptions.h"
#include "shell/CVelumExportOptions.h"
#include "shell/CVelumImportOptions.h"
#include "shell/CVelumNewStackForm.h"
#include "shell/CVelumOptionEdit.h"
#include "shell/CVelumPictureViewer.h"
#include "shell/CVelumWelcome.h"
#include "toolkit/CVelumWinMan.h"

namespace {

template <class T> void Add(const QString& aName) {
  CVelumWinMan::SetFactory(aName, [] { return new T; });
}

} // namespace

void CVelumShellForms::Register() {
  Add<CVelumCardEdit>(u"CVelumCardEdit"_s);
  Add<CVelumCsvExportOptions>(u"CVelumCsvExportOptions"_s);
  Add<CVelumCsvImportOptions>(u"CVelumCsvImportOptions"_s);
  Add<CVelumExportOptions>(u"CVelumExportOptions"_s);
  Add<CVelumImportOptions>(u"CVelumImportOptions"_s);
  Add<CVelumNewStackForm>(u"CVelumNewStackForm"_s);
  Add<CVelumOptionEdit>(u"CVelumOptionEdit"_s);
  Add<CVelumPictureViewer>(u"CVelumPictureViewer"_s);
  Add<CVelumWelcome>(u"CVelumWelcome"_s);
}
