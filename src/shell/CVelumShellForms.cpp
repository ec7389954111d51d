#include "shell/CVelumShellForms.h"

#include "shell/CVelumPictureViewer.h"
#include "toolkit/CVelumWinMan.h"

namespace {

template <class T> void Add(const QString& aName) {
  CVelumWinMan::SetFactory(aName, [] { return new T; });
}

} // namespace

void CVelumShellForms::Register() {
  Add<CVelumPictureViewer>(u"CVelumPictureViewer"_s);
}
