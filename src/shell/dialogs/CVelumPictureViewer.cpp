#include "shell/dialogs/CVelumPictureViewer.h"

#include "core/CVelumSeams.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumStack.h"
#include "runtime/CVelumPictureLib.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumPictureViewer.h"

namespace {

// A number of pixels that a blob may not know.
QString Pixels(qint16 aPixels) {
  return aPixels == ENoShort ? QString() : QString::number(aPixels);
}

} // namespace

CVelumPictureViewer::CVelumPictureViewer()
    : CVelumDialogForm(u"CVelumPictureViewer"_s, true), iUi(new Ui::CVelumPictureViewer),
      fPictureBox(new CVelumBasePictureBox(u"fPictureBox"_s, this, this)) {
  iUi->setupUi(this);
  for (QLabel* fact : {iUi->fFileName, iUi->fFileDate, iUi->fMimeType, iUi->fWidth, iUi->fHeight}) {
    fact->setTextFormat(Qt::PlainText);
    fact->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fact->setWordWrap(true);
  }
  QWidget* box = fPictureBox->Widget();
  box->setAccessibleName(tr("Picture"));
  box->setFocusPolicy(Qt::StrongFocus);
  // The window decides how much of the picture is to be seen, not the picture.
  box->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
  box->setMinimumSize(160, 120);
  iUi->fLayout->addWidget(box, 1);
  fPictureBox->SetVisible(true);
  box->setFocus();
}

CVelumPictureViewer::~CVelumPictureViewer() = default;

void CVelumPictureViewer::ShowPicture(qint32 aBlobId) {
  const Ref<CVelumBlobStore> store = gStack ? gStack->BlobStore() : nullptr;
  if (!store) return;
  if (iStore && iStore != store) CVelumLib::ShowPictureBlob(*iStore, *fPictureBox, ENoInt);
  iStore = store;
  for (QLabel* fact : {iUi->fFileName, iUi->fFileDate, iUi->fMimeType, iUi->fWidth, iUi->fHeight})
    fact->clear();
  CVelumLib::ShowPictureBlob(*store, *fPictureBox, aBlobId);
  // What cannot be decoded still has its facts.
  if (store->HasBlob(aBlobId) && !store->Damaged().contains(aBlobId))
    ShowFacts(*store->ReadBlob(aBlobId, false));
}

void CVelumPictureViewer::ShowFacts(const CVelumBlob& aBlob) {
  iUi->fWidth->setText(Pixels(aBlob.Width()));
  iUi->fHeight->setText(Pixels(aBlob.Height()));
  iUi->fFileDate->setText(CVelumLocale::ShortDate(aBlob.FileDate()) + u"   "_s +
                          CVelumLocale::LongTime(aBlob.FileTime()));
  iUi->fFileName->setText(aBlob.Filename());
  iUi->fMimeType->setText(aBlob.MimeType());
}

void CVelumPictureViewer::Unload() {
  if (iStore) CVelumLib::ShowPictureBlob(*iStore, *fPictureBox, ENoInt);
  iStore = nullptr;
  CVelumDialogForm::Unload();
}

void CVelumPictureViewer::ChangeNotify(int aKind, CVelumObject*, CVelumObject*) {
  if (aKind == EChangeStackCloses) CVelumWinMan::UnloadForm(*this);
}

void CVelumPictureViewer::BaseEvent(CVelumBaseControl&, EBaseEvent aEvent, bool&) {
  if (aEvent == EBaseClick)
    CVelumGuard::Run(u"CVelumPictureViewer.Click"_s, [this] { CVelumLib::TogglePictureFit(*fPictureBox); });
}
