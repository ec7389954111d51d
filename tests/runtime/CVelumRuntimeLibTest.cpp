#include "runtime/CVelumRuntimeLib.h"

#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"
#include "runtime/RuntimeFixture.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <QFile>

namespace {

class CNotes final : public CVelumChangeSink {
public:
  CNotes() { CVelumSeams::SetChangeSink(this); }
  ~CNotes() override { CVelumSeams::SetChangeSink(nullptr); }
  void ChangeNotify(int aKind, CVelumObject*, CVelumObject*) override { iKinds.append(aKind); }
  QList<int> iKinds;
};

class CVelumRuntimeLibTest : public RuntimeTest {
protected:
  // Saves the test's stack with one card of this name and a card window at a place of its own.
  QString Saved(const QString& aCard) {
    AddField(iSet, u"Name"_s, EConText);
    AddCard(aCard);
    const auto state = MakeRef<CVelumViewState>(u"View"_s);
    state->iCardViewRect = MakeRef<CVelumRect>(150.0F, 300.0F, 4500.0F, 6000.0F);
    state->iCardListOpen = false;
    const QString path = iFolder.Path(aCard + u".Orvelle"_s);
    gStack->SetFlags(EStaBinary);
    CVelumStackFile(path).SaveStack(gStack, state);
    return path;
  }
  TempFolder iFolder;
};

TEST_F(CVelumRuntimeLibTest, AStackIsLoadedAndItsFirstCardShown) {
  const QString path = Saved(u"Ada"_s);
  gStack = nullptr;
  CNotes notes;
  EXPECT_TRUE(CVelumLib::HandleLoadStack(path));
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->Filename(), path);
  EXPECT_EQ(View().CurCard()->Name(), u"Ada"_s);
  EXPECT_EQ(Form().geometry(), QRect(10, 20, 300, 400));
  EXPECT_EQ(notes.iKinds, QList<int>{0});
  EXPECT_TRUE(iFrame.iCalls.contains(u"AddToFileHistory "_s + path));
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_FALSE(View().CardListIsOpen());
}

TEST_F(CVelumRuntimeLibTest, CorrectionsOfTheOrderAreTold) {
  const QString path = iFolder.Path(u"moved.Orvelle"_s);
  ASSERT_TRUE(QFile::copy(TestTree::Data() + u"/stacks/good/order_corrections.Orvelle"_s, path));
  EXPECT_TRUE(CVelumLib::HandleLoadStack(path));
  ASSERT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgOrderCorrections);
  EXPECT_TRUE(iPresenter.LastText().contains(u"There were 2 card order corrections"_s));
}

TEST_F(CVelumRuntimeLibTest, AFailedLoadLeavesTheOpenStackAndItsWindow) {
  const auto field = AddField(iSet, u"Name"_s, EConText);
  const auto card = AddCard(u"a"_s);
  Open();
  const Ref<CVelumStack> before = gStack;
  const Ref<CVelumStackView> view = gStackView;
  Type(field, u"Ada"_s);
  CNotes notes;
  for (const QString& path : {iFolder.Path(u"none"_s), iFolder.Path(), iFolder.Write(u"empty"_s, {}),
                              iFolder.Write(u"text"_s, "hello"), iFolder.Write(u"cut"_s, "Orvelle\x0d")}) {
    iPresenter.Clear();
    EXPECT_FALSE(CVelumLib::HandleLoadStack(path)) << path.toStdString();
    EXPECT_EQ(iPresenter.Count(), 1) << path.toStdString();
  }
  EXPECT_EQ(gStack, before);
  EXPECT_EQ(gStackView, view);
  EXPECT_TRUE(Form().isVisible());
  EXPECT_TRUE(notes.iKinds.isEmpty());
  View().ValidateCurControl();
  EXPECT_EQ(TextOf(card, field), u"Ada"_s);
}

TEST_F(CVelumRuntimeLibTest, AStackThatCannotBeShownGivesTheOldOneBack) {
  const QString path = Saved(u"Ada"_s);
  AddCard(u"Bob"_s);
  Open();
  const Ref<CVelumStack> before = gStack;
  const Ref<CVelumStackView> view = gStackView;
  iFrame.iFailures = 1;
  CNotes notes;
  EXPECT_FALSE(CVelumLib::HandleLoadStack(path));
  EXPECT_EQ(iPresenter.LastText(), u"The Host Runtime System reported the error: Out of memory"_s);
  EXPECT_EQ(gStack, before);
  EXPECT_EQ(gStackView, view);
  EXPECT_EQ(Form().Caption(), u"Ada - 1 of 2"_s);
  EXPECT_TRUE(Form().isVisible());
  EXPECT_TRUE(notes.iKinds.isEmpty());
}

TEST_F(CVelumRuntimeLibTest, AMissingFileIsTold) {
  EXPECT_FALSE(CVelumLib::HandleLoadStack(iFolder.Path(u"none"_s)));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgFileNotFound);
  EXPECT_TRUE(iPresenter.LastText().contains(iFolder.Path(u"none"_s)));
  EXPECT_FALSE(iFolder.Has(u"none"_s));
}

TEST_F(CVelumRuntimeLibTest, AnotherStackReplacesTheOpenOne) {
  const QString path = Saved(u"Ada"_s);
  Open();
  const Ref<CVelumStack> before = gStack;
  EXPECT_TRUE(CVelumLib::HandleLoadStack(path));
  EXPECT_NE(gStack, before);
  EXPECT_EQ(Form().Caption(), u"Ada - 1 of 1"_s);
}

TEST_F(CVelumRuntimeLibTest, FontsBecomeToolkitFonts) {
  CVelumFont font(u"DejaVu Serif"_s, 220, ENoInt);
  font.SetFlags(EFntBold | EFntUnderline);
  const QFont shown = CVelumLib::MakeToolkitFont(font, false);
  EXPECT_EQ(shown.family(), u"DejaVu Serif"_s);
  EXPECT_EQ(shown.pointSizeF(), 8.0);
  EXPECT_TRUE(shown.bold());
  EXPECT_FALSE(shown.italic());
  EXPECT_TRUE(shown.underline());
  EXPECT_EQ(CVelumLib::MakeToolkitFont(font, true).pointSizeF(), 11.0);
}

} // namespace
