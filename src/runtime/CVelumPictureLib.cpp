#include "runtime/CVelumPictureLib.h"

#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "exchange/CVelumExchangeLib.h"
#include "exchange/CVelumPicture.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumWinMan.h"

#include <QBuffer>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

QString Unreadable() {
  return CVelumGenForm::tr("This picture cannot be read.");
}

QPixmap Decode(const CVelumBlob& aBlob) {
  return QPixmap::fromImage(CVelumPicture(aBlob.Bytes()).ToImage());
}

// Empties a box that shows nothing; aNote says why, aDetail says more to the pointer.
void Empty(CVelumBasePictureBox& aBox, const QString& aNote = {}, const QString& aDetail = {}) {
  aBox.SetPicture({});
  aBox.SetPlaceholder(aNote);
  aBox.Widget()->setToolTip(aDetail);
}

void ShowBlob(CVelumBlobStore& aStore, CVelumBasePictureBox& aBox, qint32 aBlobId) {
  // A value can name a blob that is not there, or whose damage was told before.
  if (!aStore.HasBlob(aBlobId) || aStore.Damaged().contains(aBlobId)) return Empty(aBox, Unreadable());
  const Ref<CVelumBlob> blob = aStore.ReadBlob(aBlobId, false);
  aBox.SetPicture(Decode(*blob));
  blob->IncDynRefCount();
  aBox.SetTag(QString::number(blob->Id()));
}

CVelumBasePictureBox* TempBox() {
  if (!CVelumWinMan::FormIsLoaded(u"CVelumGenForm"_s)) return nullptr;
  const auto* form = dynamic_cast<CVelumGenForm*>(CVelumWinMan::NameToForm(u"CVelumGenForm"_s));
  return form ? dynamic_cast<CVelumBasePictureBox*>(form->FindControl(u"fTempPicBox"_s)) : nullptr;
}

// The picture as large as the box can show it, with all the pixels that the screen has there.
QPixmap Fitted(const QPixmap& aFull, const CVelumBasePictureBox& aBox) {
  const QSizeF room = aBox.InnerSize();
  if (room.width() < 1 || room.height() < 1) return aFull;
  const double ratio = std::max(aFull.width() / room.width(), aFull.height() / room.height());
  const double scale = aBox.Widget()->devicePixelRatioF();
  const auto side = [&](int aPixels) { return std::max(1, int(std::lround(aPixels / ratio * scale))); };
  QPixmap fitted = aFull.scaled(side(aFull.width()), side(aFull.height()), Qt::IgnoreAspectRatio,
                                Qt::SmoothTransformation);
  fitted.setDevicePixelRatio(scale);
  return fitted;
}

// Runs an import for a field of the current card, and sets its value.
template <class T> bool ImportInto(CVelumControl& aControl, T aImport) {
  const Ref<CVelumStackView> view = gStackView;
  const Ref<CVelumCard> card = view ? view->CurCard() : nullptr;
  if (!card || aControl.ConType() != EConPicture || card->ControlById(aControl.Id()) != &aControl)
    return false;
  if (aControl.Flag(EConReadOnly)) {
    CVelumDialogLib::TellReadOnly();
    return false;
  }
  Ref<CVelumBlob> blob;
  if (!aImport(*card->Stack(), blob)) return false;
  view->SetCardValue(card, aControl.Id(), TVelumValue::OfBlobId(CVelumLib::FieldBlobId(*blob)));
  return true;
}

// The bytes of a picture in aData, as they are where that is possible.
QByteArray PictureBytes(const QMimeData& aData) {
  for (const QString& format : {u"image/png"_s, u"image/jpeg"_s, u"image/gif"_s, u"image/bmp"_s})
    if (aData.hasFormat(format)) return aData.data(format);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  const auto image = qvariant_cast<QImage>(aData.imageData());
  if (!image.isNull() && buffer.open(QIODevice::WriteOnly)) image.save(&buffer, "PNG");
  return bytes;
}

} // namespace

void CVelumLib::ReleasePictureBlob(CVelumBlobStore& aStore, CVelumBasePictureBox& aBox) {
  if (aBox.Tag().isEmpty()) return;
  const qint32 id = aBox.Tag().toInt();
  aBox.SetTag({});
  if (!aStore.HasBlob(id)) return;
  Ref<CVelumBlob> blob = aStore.ReadBlob(id, false);
  aStore.DecDynRefCount(blob);
}

void CVelumLib::ShowPictureBlob(CVelumBlobStore& aStore, CVelumBasePictureBox& aBox, qint32 aBlobId) {
  ReleasePictureBlob(aStore, aBox);
  // The old picture makes room before the new one is decoded.
  Empty(aBox);
  if (aBlobId == ENoInt) return;
  try {
    ShowBlob(aStore, aBox, aBlobId);
  } catch (...) {
    CVelumError::CatchError(u"CVelumLib.ShowPictureBlob"_s);
    const TVelumError error = CVelumError::GetErrorRecord();
    Empty(aBox, Unreadable(), error.iSysNum == ENoInt ? QString() : error.iSysDescr);
  }
}

void CVelumLib::TogglePictureFit(CVelumBasePictureBox& aBox) {
  if (aBox.Tag().isEmpty() || !gStack) return;
  const Ref<CVelumBlobStore> store = gStack->BlobStore();
  const QPixmap full = Decode(*CVelumChecked::Deref(store).ReadBlob(aBox.Tag().toInt(), false));
  if (CVelumBasePictureBox* temp = TempBox()) temp->SetPicture(full);
  const bool unscaled = full.deviceIndependentSize() == aBox.Picture().deviceIndependentSize();
  aBox.SetPicture(unscaled ? Fitted(full, aBox) : full);
}

bool CVelumLib::ImportPicture(CVelumControl& aControl, const QString& aFilename) {
  return ImportInto(aControl, [&](CVelumStack& aStack, Ref<CVelumBlob>& aBlob) {
    return HandleImportPic(aStack, aFilename, aBlob);
  });
}

bool CVelumLib::ImportPicture(CVelumControl& aControl, const QMimeData& aData) {
  for (const QUrl& url : aData.urls())
    if (url.isLocalFile()) return ImportPicture(aControl, url.toLocalFile());
  const TPicSource source{
      PictureBytes(aData), CVelumGenForm::tr("Clipboard"), {}, CVelumValue::Today(), CVelumValue::Now()};
  return ImportInto(aControl, [&](CVelumStack& aStack, Ref<CVelumBlob>& aBlob) {
    return HandleImportPic(aStack, source, aBlob);
  });
}
