// The window that shows a picture of the stack in full, with where it comes from.
#pragma once

#include "model/blobs/CVelumBlobStore.h"
#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumDialogForm.h"

#include <memory>

class CVelumBasePictureBox;

namespace Ui {
class CVelumPictureViewer;
}

// A click on the picture fits it into the window, the next one shows its own size again. The box takes all
// the room below the facts. Closes with the stack.
class CVelumPictureViewer final : public CVelumDialogForm, public CVelumBaseSink {
  Q_OBJECT

public:
  CVelumPictureViewer();
  ~CVelumPictureViewer() override;

  // Shows a blob of the open stack; one that cannot be read shows as such.
  void ShowPicture(qint32 aBlobId);

  void Unload() override;
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;
  void BaseEvent(CVelumBaseControl& aBase, EBaseEvent aEvent, bool& ioCancel) override;

private:
  void ShowFacts(const CVelumBlob& aBlob);

  std::unique_ptr<Ui::CVelumPictureViewer> iUi;
  CVelumBasePictureBox* fPictureBox;
  Ref<CVelumBlobStore> iStore; // where the picture comes from that is shown
};
