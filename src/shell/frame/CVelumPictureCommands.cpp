#include "shell/frame/CVelumPictureCommands.h"

#include "core/CVelumLib.h"
#include "model/CVelumStack.h"
#include "runtime/CVelumPictureLib.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumPictureViewer.h"
#include "shell/frame/CVelumCommandTable.h"
#include "toolkit/CVelumWinMan.h"

#include <QCoreApplication>

namespace {

// The picture field that has the focus, or nothing.
Ref<CVelumControl> PictureField() {
  const Ref<CVelumControl> field = CVelumCommandTable::FocusedControl();
  return field && field->ConType() == EConPicture ? field : nullptr;
}

} // namespace

CVelumPictureCommands::CVelumPictureCommands(QWidget& aFrame)
    : iFrame(aFrame),
      fImportPicDialog(
          QCoreApplication::translate("CVelumPictureCommands", "Import Picture"), u"gif"_s,
          QCoreApplication::translate("CVelumPictureCommands",
                                      "Pictures (*.gif;*.jpg;*.bmp)|*.gif;*.jpg;*.bmp|All Files (*.*)|*")) {}

void CVelumPictureCommands::ImportPicFile() {
  const Ref<CVelumControl> field = PictureField();
  if (!field) return;
  if (fImportPicDialog.InitDir().isEmpty())
    fImportPicDialog.SetInitDir(CVelumOptions::StartFolder(gOptions.iImportPicDialogInitDir));
  if (!fImportPicDialog.ShowOpen(&iFrame)) return;
  CVelumLib::ImportPicture(*field, fImportPicDialog.FileName());
  QString name;
  CVelumLib::SplitPath(fImportPicDialog.FileName(), gOptions.iImportPicDialogInitDir, name);
}

void CVelumPictureCommands::ShowPicture() {
  const Ref<CVelumControl> field = PictureField();
  const auto* box = field ? qobject_cast<CVelumBaseControl*>(field->BaseControl()) : nullptr;
  if (!box || box->Tag().isEmpty() || !gStack) return;
  const Ref<CVelumBlob> blob = gStack->BlobStore()->ReadBlob(box->Tag().toInt(), false);
  auto* viewer = dynamic_cast<CVelumPictureViewer*>(CVelumWinMan::NameToForm(u"CVelumPictureViewer"_s));
  if (!viewer) return;
  CVelumWinMan::ShowDialog(*viewer);
  viewer->ShowPicture(blob->OriginalId() == ENoInt ? blob->Id() : blob->OriginalId());
}
