// Functions of CVelumLib that show pictures of a stack in boxes, and take them from the user.
#pragma once

#include "model/blobs/CVelumBlobStore.h"
#include "model/fields/CVelumControl.h"

class CVelumBasePictureBox;
class QMimeData;

namespace CVelumLib {

// Puts a blob into a box, whose tag remembers it; ENoInt empties the box. The blob that the box showed so far
// is let go, the new one is held. A picture that cannot be read leaves the box without a tag, and the box
// says so.
void ShowPictureBlob(CVelumBlobStore& aStore, CVelumBasePictureBox& aBox, qint32 aBlobId);
// Lets go of the blob that a box shows. The picture stays.
void ReleasePictureBlob(CVelumBlobStore& aStore, CVelumBasePictureBox& aBox);
// Flips a box between the picture in its own size and as large as the box can show it whole.
void TogglePictureFit(CVelumBasePictureBox& aBox);

// Brings a picture into a field of the current card, with its sample. Failures are shown; they and a no leave
// the stack as it was. Returns whether the field has the new picture.
bool ImportPicture(CVelumControl& aControl, const QString& aFilename);
// The same for what was dropped or pasted: the first file in it, or else the picture itself.
bool ImportPicture(CVelumControl& aControl, const QMimeData& aData);

} // namespace CVelumLib
