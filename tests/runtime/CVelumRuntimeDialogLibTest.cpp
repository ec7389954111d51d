#include "runtime/CVelumRuntimeDialogLib.h"

#include "model/order/CVelumSortKey.h"
#include "runtime/RuntimeFixture.h"
#include "support/Raised.h"
#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumListWidget.h"

#include <QLabel>
#include <QLineEdit>

namespace {

class CVelumRuntimeDialogLibTest : public RuntimeTest {
protected:
  QStringList Lines() const {
    QStringList lines;
    for (int i = 0; i < iBox->NumLines(); ++i) lines.append(iBox->Line(i));
    return lines;
  }
  QStringList Shown() const {
    QStringList lines;
    for (int i = 0; i < iCombo.count(); ++i) lines.append(iCombo.itemText(i));
    return lines;
  }
  QWidget iForm;
  CVelumComboWidget iCombo{&iForm};
  Ref<CVelumListBox> iBox = MakeRef<CVelumListBox>(ELisCombo, &iCombo, &iForm);
};

} // namespace

TEST_F(CVelumRuntimeDialogLibTest, BackgroundsWithTheirObjects) {
  const Ref<CVelumControlSet> second = AddBackground(u"Second"_s);
  CVelumDialogLib::FillBackgroundList(*iBox, gStack.Get(), u"(All)"_s, nullptr);
  EXPECT_EQ(Lines(), (QStringList{u"(All)"_s, iSet->Name(), u"Second"_s}));
  EXPECT_EQ(Shown(), Lines());
  EXPECT_FALSE(iBox->Obj(0));
  EXPECT_EQ(iBox->Obj(1).Get(), iSet.Get());
  EXPECT_EQ(iBox->Obj(2).Get(), second.Get());
  CVelumDialogLib::FillBackgroundList(*iBox, gStack.Get(), {}, iSet.Get());
  EXPECT_EQ(Lines(), QStringList{u"Second"_s});
}

TEST_F(CVelumRuntimeDialogLibTest, NoStackIsSaidInOneLine) {
  CVelumDialogLib::FillBackgroundList(*iBox, nullptr, u"(All)"_s, nullptr);
  EXPECT_EQ(Lines(), QStringList{u"(No stack available)"_s});
  EXPECT_FALSE(iBox->Obj(0));
}

TEST_F(CVelumRuntimeDialogLibTest, ControlsInDisplayOrder) {
  const Ref<CVelumControl> b = AddField(iSet, u"b"_s, EConText);
  AddField(iSet, u"a"_s, EConReal);
  AddField(iSet, u"c"_s, EConDate);
  AddField(iSet, u"d"_s, EConCommand);
  CVelumDialogLib::FillControlList(*iBox, iSet.Get(), u"(None)"_s, false, false);
  EXPECT_EQ(Lines(), (QStringList{u"(None)"_s, u"b"_s, u"a"_s, u"c"_s, u"d"_s}));
  EXPECT_FALSE(iBox->Obj(0));
  EXPECT_EQ(iBox->Obj(1).Get(), b.Get());
  EXPECT_EQ(Shown(), Lines());
  CVelumDialogLib::FillControlList(*iBox, nullptr, {}, false, false);
  EXPECT_TRUE(Lines().isEmpty());
}

TEST_F(CVelumRuntimeDialogLibTest, OnlyWhatCanBePartOfACombo) {
  for (qint32 type = EConText; type <= EConPicture; ++type) AddField(iSet, QString::number(type), type);
  CVelumDialogLib::FillControlList(*iBox, iSet.Get(), {}, false, true);
  EXPECT_EQ(Lines(), (QStringList{u"0"_s, u"1"_s, u"2"_s}));
}

TEST_F(CVelumRuntimeDialogLibTest, TypesBesideNamesAsTheListHasRoom) {
  AddField(iSet, u"Size"_s, EConInteger);
  CVelumDialogLib::FillControlList(*iBox, iSet.Get(), {}, true, false);
  EXPECT_EQ(Lines(), QStringList{u"Size  (Integer)"_s});
  CVelumListWidget widget(&iForm);
  const auto list = MakeRef<CVelumListBox>(ELisSingle, &widget, &iForm);
  list->Define1Column(u"Name"_s);
  CVelumDialogLib::FillControlList(*list, iSet.Get(), {}, true, false);
  EXPECT_EQ(list->Line(0), u"Size  (Integer)"_s);
  list->DefineColumnsList(u"Name:0.5,Type:0.5"_s);
  CVelumDialogLib::FillControlList(*list, iSet.Get(), {}, true, false);
  EXPECT_EQ(list->Line(0), u"Size\tInteger"_s);
  EXPECT_EQ(widget.CellText(0, 1), u"Integer"_s);
}

TEST_F(CVelumRuntimeDialogLibTest, SortKeysOfOneBackground) {
  const Ref<CVelumControlSet> second = AddBackground(u"Second"_s);
  const auto mine = MakeRef<CVelumSortKey>(gStack->IdGen().NextId(), u"mine"_s, iSet->Id());
  gStack->AddSortKey(mine);
  gStack->AddSortKey(MakeRef<CVelumSortKey>(gStack->IdGen().NextId(), u"other"_s, second->Id()));
  CVelumDialogLib::FillSortKeyList(*iBox, iSet.Get(), u"(None)"_s);
  EXPECT_EQ(Lines(), (QStringList{u"(None)"_s, u"mine"_s}));
  EXPECT_EQ(iBox->Obj(1).Get(), mine.Get());
  CVelumDialogLib::FillSortKeyList(*iBox, second.Get(), {});
  EXPECT_EQ(Lines(), QStringList{u"other"_s});
}

TEST_F(CVelumRuntimeDialogLibTest, CardsOfABackgroundInOrder) {
  const Ref<CVelumControlSet> second = AddBackground(u"Second"_s);
  const Ref<CVelumCard> z = AddCard(u"z"_s);
  AddCard(u"m"_s, second);
  AddCard(u"a"_s);
  CVelumListWidget widget(&iForm);
  const auto list = MakeRef<CVelumListBox>(ELisSingle, &widget, &iForm);
  CVelumDialogLib::FillCardList(*list, *iSet);
  ASSERT_EQ(list->NumLines(), 2);
  EXPECT_EQ(list->Line(0), u"z"_s);
  EXPECT_EQ(list->Line(1), u"a"_s);
  EXPECT_EQ(list->Obj(0).Get(), z.Get());
  CVelumDialogLib::FillCardList(*list, *iSet, z.Get());
  ASSERT_EQ(list->NumLines(), 1);
  EXPECT_EQ(list->Line(0), u"a"_s);
}

TEST_F(CVelumRuntimeDialogLibTest, PositionsOfTypesAndStandardCommands) {
  iBox->AddLine(u"old"_s, nullptr);
  CVelumDialogLib::FillTypeCombo(*iBox);
  ASSERT_EQ(iBox->NumLines(), 9);
  EXPECT_EQ(iBox->Line(EConText), u"Text"_s);
  EXPECT_EQ(iBox->Line(EConInteger), u"Integer"_s);
  EXPECT_EQ(iBox->Line(EConReal), u"Float"_s);
  EXPECT_EQ(iBox->Line(EConDate), u"Date"_s);
  EXPECT_EQ(iBox->Line(EConTime), u"Time"_s);
  EXPECT_EQ(iBox->Line(EConBoolean), u"Boolean"_s);
  EXPECT_EQ(iBox->Line(EConList), u"List"_s);
  EXPECT_EQ(iBox->Line(EConCommand), u"Command"_s);
  EXPECT_EQ(iBox->Line(EConPicture), u"Picture"_s);
  CVelumDialogLib::FillStdCmdCombo(*iBox);
  EXPECT_EQ(Lines(), (QStringList{u"(None)"_s, u"First Card"_s, u"Previous Card"_s, u"Next Card"_s,
                                  u"Last Card"_s, u"Back in History"_s, u"Forward in History"_s,
                                  u"Go to Card by Name"_s, u"Show Card List"_s, u"Select Card"_s}));
  EXPECT_EQ(Shown(), Lines());
}

TEST_F(CVelumRuntimeDialogLibTest, FontInItsThreeBoxes) {
  QLineEdit name;
  QLineEdit size;
  QLabel color;
  CVelumFont font(u"Courier"_s, 250, 0x0000FF);
  font.SetFlags(EFntBold);
  CVelumDialogLib::ShowFont(&font, name, size, color);
  EXPECT_EQ(name.text(), u"Courier Bold"_s);
  EXPECT_EQ(size.text(), u"12.5"_s);
  EXPECT_EQ(color.palette().color(QPalette::Window), QColor(255, 0, 0));
  EXPECT_TRUE(color.autoFillBackground());
  CVelumDialogLib::ShowFont(nullptr, name, size, color);
  EXPECT_EQ(name.text() + size.text(), QString());
  EXPECT_FALSE(color.autoFillBackground());
}

TEST_F(CVelumRuntimeDialogLibTest, NamesBecomeIdsAndBack) {
  const Ref<CVelumControl> a = AddField(iSet, u"a"_s, EConText);
  const Ref<CVelumControl> b = AddField(iSet, u"b c"_s, EConText);
  const Ref<CVelumArray> ids = CVelumDialogLib::ControlNameListToArray(u"b c,a"_s, *iSet);
  ASSERT_TRUE(ids);
  ASSERT_EQ(ids->Count(), 2);
  EXPECT_EQ(ids->IntNum(0), b->Id());
  EXPECT_EQ(ids->IntNum(1), a->Id());
  EXPECT_EQ(CVelumDialogLib::ArrayToControlNameList(ids.Get(), *iSet), u"b c,a"_s);
  EXPECT_FALSE(CVelumDialogLib::ControlNameListToArray({}, *iSet));
  EXPECT_EQ(CVelumDialogLib::ArrayToControlNameList(nullptr, *iSet), QString());
}

TEST_F(CVelumRuntimeDialogLibTest, UnknownNamesAndIdsAssert) {
  const Ref<CVelumControl> a = AddField(iSet, u"a"_s, EConText);
  EXPECT_THROW(static_cast<void>(CVelumDialogLib::ControlNameListToArray(u"a,x"_s, *iSet)), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"< ControlNameListToArray control found >"_s));
  iPresenter.Answer(true);
  const Ref<CVelumArray> ids = CVelumDialogLib::ControlNameListToArray(u"x,a"_s, *iSet);
  ASSERT_EQ(ids->Count(), 1);
  EXPECT_EQ(ids->IntNum(0), a->Id());
  const auto wrong = MakeRef<CVelumArray>(0, EValInt);
  wrong->CreateAtEnd({{}, ENoInt, TVelumValue::OfInt(12345)});
  EXPECT_THROW(static_cast<void>(CVelumDialogLib::ArrayToControlNameList(wrong.Get(), *iSet)),
               CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"< ArrayToControlNameList control found >"_s));
  iPresenter.Answer(true);
  EXPECT_EQ(CVelumDialogLib::ArrayToControlNameList(wrong.Get(), *iSet), QString());
}

TEST_F(CVelumRuntimeDialogLibTest, TwentyOneNamesAreTheMost) {
  QStringList names;
  for (int i = 0; i < 21; ++i) names.append(AddField(iSet, u"f"_s + QString::number(i), EConText)->Name());
  const QString list = names.join(u',');
  EXPECT_EQ(CVelumDialogLib::ControlNameListToArray(list, *iSet)->Count(), 21);
  EXPECT_EQ(
      Raised([&] { static_cast<void>(CVelumDialogLib::ControlNameListToArray(list + u",f0"_s, *iSet)); }),
      EHostIndex);
}
