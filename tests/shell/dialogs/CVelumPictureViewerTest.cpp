#include "shell/dialogs/CVelumPictureViewer.h"

#include "core/CVelumMsg.h"
#include "exchange/CVelumExchangeLib.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "support/TestPictures.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumWinMan.h"

#include <QLabel>
#include <QMenu>
#include <QTest>

namespace {

// A stack whose current card has a picture field, which has the focus.
class CVelumPictureViewerTest : public ShellTest {
protected:
  void OpenStack() {
    Start(CopyStack(u"a.Orvelle"_s));
    const Ref<CVelumCard> card = gStackView->CurCard();
    iField = MakeRef<CVelumControl>(gStack->IdGen().NextId(), u"Photo"_s, EConPicture);
    card->Background()->AddControl(iField, ENoInt);
    gStackView->RefreshViews(true, false);
    Box().SetFocus();
  }
  [[nodiscard]] CVelumBasePictureBox& Box() {
    return *qobject_cast<CVelumBasePictureBox*>(iField->BaseControl());
  }
  [[nodiscard]] static CVelumPictureViewer* Viewer() {
    if (!CVelumWinMan::FormIsLoaded(u"CVelumPictureViewer"_s)) return nullptr;
    return dynamic_cast<CVelumPictureViewer*>(CVelumWinMan::NameToForm(u"CVelumPictureViewer"_s));
  }
  [[nodiscard]] static QLabel* Label(const QString& aName) { return Viewer()->findChild<QLabel*>(aName); }
  [[nodiscard]] static CVelumBasePictureBox* ViewerBox() {
    return qobject_cast<CVelumBasePictureBox*>(CVelumBaseControl::OfWidget(Label(u"fPictureBox"_s)));
  }
  [[nodiscard]] static CVelumBlobStore& Store() { return *gStack->BlobStore(); }
  void Import(const QByteArray& aBytes) {
    iPath = iFolder.Write(u"photo.bmp"_s, aBytes);
    Choose(u"fImportPicFile"_s);
  }

  Ref<CVelumControl> iField;
};

TEST_F(CVelumPictureViewerTest, ImportPutsAPictureIntoTheFieldWithTheFocus) {
  OpenStack();
  Import(TestPictures::Bmp(300, 150));
  EXPECT_EQ(iDialogs, 1);
  EXPECT_EQ(gOptions.iImportPicDialogInitDir, iFolder.Path());
  EXPECT_EQ(Box().Picture().size(), QSize(200, 100));
  const TVelumValue val = gStackView->CurCard()->GetControlVal(iField->Id(), false);
  ASSERT_EQ(val.Type(), EValBlobId);
  EXPECT_NE(Store().ReadBlob(val.Int(), false)->OriginalId(), ENoInt);
  EXPECT_TRUE(gStack->Changed());
}

TEST_F(CVelumPictureViewerTest, TheDialogOffersPicturesAndBeginsInTheFolderOfTheOptions) {
  OpenStack();
  gOptions.iImportPicDialogInitDir = iFolder.Path();
  QStringList asked;
  CVelumFileDialog::SetAnswer([&asked](const CVelumFileDialog& aDialog, bool aSave) {
    EXPECT_FALSE(aSave);
    asked = aDialog.NameFilters() << aDialog.InitDir();
    return QString();
  });
  Choose(u"fImportPicFile"_s);
  EXPECT_EQ(asked, (QStringList{u"Pictures (*.gif *.jpg *.bmp)"_s, u"All Files (*)"_s, iFolder.Path()}));
}

TEST_F(CVelumPictureViewerTest, ACancelledDialogChangesNothing) {
  OpenStack();
  gStack->SetChanged(false);
  const qint32 before = Store().NumBlobs();
  Choose(u"fImportPicFile"_s);
  EXPECT_EQ(iDialogs, 1);
  EXPECT_EQ(Store().NumBlobs(), before);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_EQ(gOptions.iImportPicDialogInitDir, QString());
}

TEST_F(CVelumPictureViewerTest, WithoutAPictureFieldNothingIsAsked) {
  OpenStack();
  gFrame->setFocus();
  Box().Widget()->clearFocus();
  Action(u"fImportPicFile"_s)->trigger();
  Action(u"fShowPicture"_s)->trigger();
  EXPECT_EQ(iDialogs, 0);
  EXPECT_EQ(Viewer(), nullptr);
  auto* picture = gFrame->findChild<QMenu*>(u"fPicture"_s);
  Q_EMIT gFrame->findChild<QMenu*>(u"fField"_s)->aboutToShow();
  EXPECT_FALSE(picture->menuAction()->isEnabled());
  EXPECT_TRUE(Action(u"fImportPicFile"_s)->isEnabled()) << "needs no more than a stack";
  Box().SetFocus();
  Q_EMIT gFrame->findChild<QMenu*>(u"fField"_s)->aboutToShow();
  EXPECT_TRUE(picture->menuAction()->isEnabled());
}

TEST_F(CVelumPictureViewerTest, AnEmptyFieldShowsNothing) {
  OpenStack();
  Choose(u"fShowPicture"_s);
  EXPECT_EQ(Viewer(), nullptr);
}

TEST_F(CVelumPictureViewerTest, ShowsTheFullPictureOfASample) {
  OpenStack();
  Import(TestPictures::Bmp(700, 350));
  const qint32 sampleId = Box().Tag().toInt();
  const Ref<CVelumBlob> full = Store().ReadBlob(Store().ReadBlob(sampleId, false)->OriginalId(), false);
  full->SetFileDate(37747); // 6 May 2003
  full->SetFileTime(0.5);
  Choose(u"fShowPicture"_s);
  ASSERT_NE(Viewer(), nullptr);
  EXPECT_FALSE(Viewer()->isModal());
  EXPECT_EQ(Label(u"fWidth"_s)->text(), u"700"_s);
  EXPECT_EQ(Label(u"fHeight"_s)->text(), u"350"_s);
  const QString date = Label(u"fFileDate"_s)->text();
  EXPECT_TRUE(date.contains(u"2003"_s) && date.contains(u"   "_s) && date.contains(u"12"_s))
      << date.toStdString();
  EXPECT_EQ(Label(u"fFileName"_s)->text(), iPath);
  EXPECT_EQ(Label(u"fMimeType"_s)->text(), u"image/x-windows-bmp"_s);
  EXPECT_EQ(ViewerBox()->Picture().size(), QSize(700, 350));
  EXPECT_EQ(ViewerBox()->Tag(), QString::number(full->Id()));
  EXPECT_EQ(full->DynRefCount(), 2);
}

TEST_F(CVelumPictureViewerTest, ShowsASmallPictureItself) {
  OpenStack();
  Import(TestPictures::Bmp(70, 35));
  QTest::mouseDClick(Box().Widget(), Qt::LeftButton);
  ASSERT_NE(Viewer(), nullptr);
  EXPECT_EQ(ViewerBox()->Tag(), Box().Tag());
  EXPECT_EQ(Store().ReadBlob(Box().Tag().toInt(), false)->DynRefCount(), 3) << "cache, card and viewer";
}

TEST_F(CVelumPictureViewerTest, AClickFitsThePictureIntoTheWindow) {
  OpenStack();
  Import(TestPictures::Bmp(3000, 300));
  Choose(u"fShowPicture"_s);
  QWidget* box = ViewerBox()->Widget();
  EXPECT_LT(Viewer()->width(), 1500) << "the window does not grow with the picture";
  QTest::mouseClick(box, Qt::LeftButton);
  EXPECT_EQ(ViewerBox()->Picture().deviceIndependentSize().toSize().width(),
            ViewerBox()->InnerSize().width());
  QTest::mouseClick(box, Qt::LeftButton);
  EXPECT_EQ(ViewerBox()->Picture().size(), QSize(3000, 300));
}

TEST_F(CVelumPictureViewerTest, TheBoxTakesTheRoomThatIsLeft) {
  OpenStack();
  Import(TestPictures::Bmp(700, 350));
  Choose(u"fShowPicture"_s);
  Viewer()->resize(900, 800);
  QCoreApplication::processEvents();
  const QRect box = ViewerBox()->Widget()->geometry();
  EXPECT_NEAR(box.right(), 900, 20);
  EXPECT_NEAR(box.bottom(), 800, 20);
  EXPECT_GT(box.height(), 500);
}

TEST_F(CVelumPictureViewerTest, ClosingLetsThePictureGo) {
  OpenStack();
  Import(TestPictures::Bmp(700, 350));
  const Ref<CVelumBlob> full =
      Store().ReadBlob(Store().ReadBlob(Box().Tag().toInt(), false)->OriginalId(), false);
  Choose(u"fShowPicture"_s);
  EXPECT_EQ(full->DynRefCount(), 2);
  Viewer()->close();
  EXPECT_EQ(Viewer(), nullptr);
  EXPECT_EQ(full->DynRefCount(), 1);
}

TEST_F(CVelumPictureViewerTest, GoesWithTheStack) {
  OpenStack();
  Import(TestPictures::Bmp(700, 350));
  Choose(u"fShowPicture"_s);
  ASSERT_NE(Viewer(), nullptr);
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_TRUE(iAsked);
  EXPECT_FALSE(gStack);
  EXPECT_EQ(Viewer(), nullptr);
}

TEST_F(CVelumPictureViewerTest, ABlobThatIsNotThereShowsAsSuch) {
  OpenStack();
  CVelumPictureViewer viewer;
  viewer.ShowPicture(4711);
  EXPECT_EQ(viewer.findChild<QLabel*>(u"fPictureBox"_s)->text(), u"This picture cannot be read."_s);
  EXPECT_EQ(viewer.findChild<QLabel*>(u"fFileName"_s)->text(), QString());
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumPictureViewerTest, WhatCannotBeDecodedHasItsFacts) {
  OpenStack();
  const auto blob = MakeRef<CVelumBlob>(gStack->IdGen().NextId());
  blob->SetBytes("no picture");
  blob->SetFilename(u"/a/b.tif"_s);
  blob->SetMimeType(u"unknown"_s);
  Store().AddBlob(blob);
  CVelumPictureViewer viewer;
  viewer.ShowPicture(blob->Id());
  EXPECT_EQ(viewer.findChild<QLabel*>(u"fPictureBox"_s)->text(), u"This picture cannot be read."_s);
  EXPECT_EQ(viewer.findChild<QLabel*>(u"fFileName"_s)->text(), u"/a/b.tif"_s);
  EXPECT_EQ(viewer.findChild<QLabel*>(u"fMimeType"_s)->text(), u"unknown"_s);
  EXPECT_EQ(viewer.findChild<QLabel*>(u"fWidth"_s)->text(), QString());
}

} // namespace
