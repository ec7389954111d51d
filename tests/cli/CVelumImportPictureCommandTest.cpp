#include "cli/CliRun.h"
#include "core/CVelumMsg.h"
#include "exchange/CVelumPicture.h"
#include "persist/CVelumStackFile.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"
#include "support/TestPictures.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

// A stack with a card "Home" that has a text and a picture field.
class CVelumImportPictureCommand : public testing::Test {
protected:
  CVelumImportPictureCommand() {
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    auto stack = MakeRef<CVelumStack>(u"Test"_s);
    stack->SetFlag(EStaBinary, true);
    Ref<CVelumControlSet> set;
    qint32 index = 0;
    EXPECT_TRUE(stack->GetFirstBackground(set, index));
    for (const auto& [name, type] : {std::pair{u"Text"_s, EConText}, {u"Photo"_s, EConPicture}})
      set->AddControl(MakeRef<CVelumControl>(stack->IdGen().NextId(), name, type), ENoInt);
    stack->AddCard(MakeRef<CVelumCard>(u"Home"_s, set), nullptr, false);
    CVelumStackFile(iStack).SaveStack(stack, MakeRef<CVelumViewState>(u"v"_s));
    iBefore = iFolder.Read(u"a.Orvelle"_s);
  }
  [[nodiscard]] static TCliResult Run(const QStringList& aArguments) {
    return CliRun::Run(QStringList{u"import-picture"_s} + aArguments);
  }
  [[nodiscard]] bool Untouched() const { return iFolder.Read(u"a.Orvelle"_s) == iBefore; }
  // The picture that the field of the card in a stack file refers to; nothing without one.
  static Ref<CVelumBlob> PictureIn(const QString& aPath) {
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> view;
    CVelumStackFile(aPath).LoadStack(stack, view);
    Ref<CVelumCard> card;
    Ref<CVelumControl> field;
    EXPECT_TRUE(stack->GetCard(u"Home"_s, card));
    EXPECT_TRUE(card->Background()->GetControlByName(u"Photo"_s, field));
    const TVelumValue val = card->GetControlVal(field->Id(), false);
    if (val.Type() != EValBlobId) return nullptr;
    Ref<CVelumBlob> blob = stack->BlobStore()->ReadBlob(val.Int(), false);
    return blob->OriginalId() == ENoInt ? blob : stack->BlobStore()->ReadBlob(blob->OriginalId(), false);
  }

  TempFolder iFolder;
  QString iStack = iFolder.Path(u"a.Orvelle"_s);
  QByteArray iBefore;
  const QStringList iTarget{u"--card"_s, u"Home"_s, u"--field"_s, u"Photo"_s};
};

TEST_F(CVelumImportPictureCommand, TellsWhatItDidAsJson) {
  const QString picture = iFolder.Write(u"photo.bmp"_s, TestPictures::Bmp(20, 20));
  const TCliResult result = Run(QStringList{picture, iStack, u"--json"_s} + iTarget);
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  const QJsonObject facts = QJsonDocument::fromJson(result.iOut).object();
  EXPECT_EQ(facts, (QJsonObject{{u"file"_s, picture},
                                {u"stack"_s, iStack},
                                {u"card"_s, u"Home"_s},
                                {u"field"_s, u"Photo"_s},
                                {u"picture"_s, PictureIn(iStack)->Id()}}));
}

TEST_F(CVelumImportPictureCommand, DoesNotSaveOverThePicture) {
  const QString picture = iFolder.Write(u"photo.bmp"_s, TestPictures::Bmp(20, 20));
  const TCliResult result = Run(QStringList{picture, iStack, u"--out"_s, picture} + iTarget);
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_TRUE(result.iErr.contains("is the file that is read")) << result.iErr.toStdString();
  EXPECT_EQ(iFolder.Read(u"photo.bmp"_s), TestPictures::Bmp(20, 20));
}

TEST_F(CVelumImportPictureCommand, PutsAPictureIntoTheStack) {
  const QByteArray bytes = TestPictures::Bmp(300, 200);
  const QString picture = iFolder.Write(u"photo.bmp"_s, bytes);
  const TCliResult result = Run(QStringList{picture, iStack} + iTarget);
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(result.iOut, iStack.toUtf8() + ": " + picture.toUtf8() +
                             " in field 'Photo' of card 'Home', shown by a sample\n");
  const Ref<CVelumBlob> blob = PictureIn(iStack);
  ASSERT_TRUE(blob);
  EXPECT_EQ(blob->Bytes(), bytes);
  EXPECT_EQ(blob->Filename(), picture);
  EXPECT_EQ(blob->RefCount(), 1) << "of the sample";
  EXPECT_NE(blob->SampleId(), ENoInt);
  EXPECT_EQ(CliRun::Run({u"check"_s, iStack}).iStatus, 0);
}

TEST_F(CVelumImportPictureCommand, LeavesTheStackAloneWhenThereIsAnOut) {
  const QString out = iFolder.Path(u"out.Orvelle"_s);
  const QString picture = iFolder.Write(u"dot.gif"_s, TestPictures::Gif());
  EXPECT_EQ(Run(QStringList{picture, iStack, u"--out"_s, out} + iTarget).iStatus, 0);
  EXPECT_TRUE(Untouched());
  ASSERT_TRUE(PictureIn(out));
  EXPECT_EQ(PictureIn(out)->MimeType(), u"image/gif"_s);
}

TEST_F(CVelumImportPictureCommand, AgainReplacesThePicture) {
  const QString first = iFolder.Write(u"first.bmp"_s, TestPictures::Bmp(300, 200));
  const QString second = iFolder.Write(u"second.bmp"_s, TestPictures::Bmp(10, 10));
  EXPECT_EQ(Run(QStringList{first, iStack} + iTarget).iStatus, 0);
  EXPECT_EQ(Run(QStringList{second, iStack} + iTarget).iStatus, 0);
  EXPECT_EQ(PictureIn(iStack)->Name(), u"second.bmp"_s);
  const TCliResult check = CliRun::Run({u"check"_s, iStack});
  EXPECT_EQ(check.iStatus, 0) << check.iOut.toStdString();
}

TEST_F(CVelumImportPictureCommand, FailuresLeaveTheStackAsItWas) {
  const QString good = iFolder.Write(u"good.gif"_s, TestPictures::Gif());
  struct TCase {
    QStringList iArguments;
    const char* iMessage;
  };
  const TCase cases[] = {
      {QStringList{iFolder.Write(u"text.gif"_s, "no picture at all"), iStack} + iTarget,
       "EMsgUnknownPicFormat"},
      {QStringList{iFolder.Write(u"cut.gif"_s, TestPictures::Gif().left(20)), iStack} + iTarget, "damaged"},
      {QStringList{iFolder.Path(u"none.gif"_s), iStack} + iTarget, "EMsgFileNotFound"},
      {QStringList{iFolder.Path(), iStack} + iTarget, "EMsgFileNotFound"},
      {QStringList{iFolder.Write(u"p.ppm"_s, "P6 1 1 255 abc"), iStack} + iTarget,
       "EMsgUnsupportedPicFormat"},
      {{good, iStack, u"--card"_s, u"Nobody"_s, u"--field"_s, u"Photo"_s}, "EMsgCardNotFound"},
      {{good, iStack, u"--card"_s, u"Home"_s, u"--field"_s, u"Nothing"_s}, "EMsgControlNotFound"},
      {{good, iStack, u"--card"_s, u"Home"_s, u"--field"_s, u"Text"_s}, "holds no pictures"},
  };
  for (const TCase& each : cases) {
    const TCliResult result = Run(each.iArguments);
    EXPECT_EQ(result.iStatus, 1) << each.iMessage;
    EXPECT_TRUE(result.iErr.contains(each.iMessage)) << result.iErr.toStdString();
    EXPECT_TRUE(Untouched()) << each.iMessage;
  }
  EXPECT_FALSE(iFolder.Has(u"none.gif"_s));
}

TEST_F(CVelumImportPictureCommand, YesKeepsAFormatThatThePhoneLacks) {
  const QString picture = iFolder.Write(u"p.ppm"_s, "P6 1 1 255 abc");
  EXPECT_EQ(Run(QStringList{u"--yes"_s, picture, iStack} + iTarget).iStatus, 0);
  EXPECT_EQ(PictureIn(iStack)->MimeType(), u"unknown"_s);
}

TEST_F(CVelumImportPictureCommand, CardAndFieldAreNeeded) {
  const QString picture = iFolder.Write(u"dot.gif"_s, TestPictures::Gif());
  EXPECT_EQ(Run({picture, iStack, u"--card"_s, u"Home"_s}).iStatus, 2);
  EXPECT_EQ(Run({picture, iStack, u"--field"_s, u"Photo"_s}).iStatus, 2);
  EXPECT_EQ(Run({picture}).iStatus, 2);
}

} // namespace
