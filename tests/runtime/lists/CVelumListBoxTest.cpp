#include "runtime/lists/CVelumListBox.h"

#include "core/text/CVelumCollation.h"
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumListWidget.h"

#include <QClipboard>
#include <QHeaderView>
#include <QTest>
#include <QWheelEvent>

namespace {

// Lines "line 0" ... that count how often they are asked for.
class CountingLines final : public CVelumLineProvider {
public:
  CountingLines(int aNum, int& aAsked) : iNum(aNum), iAsked(aAsked) {}
  [[nodiscard]] int NumLines() const override { return iNum; }
  [[nodiscard]] QString Line(int aIndex) const override { return u"line "_s + QString::number(aIndex); }
  [[nodiscard]] Ref<CVelumObject> Obj(int) const override { return nullptr; }
  [[nodiscard]] int IndexOf(const CVelumObject*) const override { return -1; }
  [[nodiscard]] QString Part(int aLine, int aColumn) const override {
    ++iAsked;
    return aColumn == 0 ? Line(aLine) : QString();
  }

private:
  int iNum;
  int& iAsked;
};

class CVelumListBoxTest : public RuntimeTest {
protected:
  CVelumListBoxTest() {
    iForm.resize(400, 300);
    iWidget = new CVelumListWidget(&iForm);
    iWidget->setGeometry(10, 10, 320, 200);
    iCombo = new CVelumComboWidget(&iForm);
    iForm.show();
    iForm.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&iForm));
  }
  Ref<CVelumListBox> List() { return MakeRef<CVelumListBox>(ELisSingle, iWidget, &iForm); }
  Ref<CVelumListBox> Combo() { return MakeRef<CVelumListBox>(ELisCombo, iCombo, &iForm); }
  Ref<CVelumListBox> Towns() {
    const auto list = List();
    for (const auto& line : {u"Ulm\t10"_s, u"Bonn\t9"_s, u"Bern\t30"_s}) list->AddLine(line, nullptr);
    list->DefineColumns({u"Town"_s, u"Size"_s}, {1500, 1500});
    return list;
  }
  [[nodiscard]] QStringList Seen() const {
    QStringList seen;
    for (int i = 0; i < iWidget->model()->rowCount(); ++i) seen.append(iWidget->CellText(i, 0));
    return seen;
  }
  void ClickTitle(int aColumn) {
    QHeaderView* titles = iWidget->horizontalHeader();
    const QPoint at(titles->sectionViewportPosition(aColumn) + 10, titles->height() / 2);
    QTest::mouseClick(titles->viewport(), Qt::LeftButton, {}, at);
  }
  // The text of the assertion that aCall runs into when it is denied.
  template <class T> QString Asserted(T aCall) {
    EXPECT_THROW(aCall(), CVelumException);
    return iPresenter.LastText();
  }
  template <class T> qint32 RaisedOverruled(T aCall) {
    iPresenter.SetDefaultAnswer(true);
    qint32 number = 0;
    try {
      aCall();
    } catch (const CVelumException& e) {
      number = e.Number();
    }
    iPresenter.SetDefaultAnswer(false);
    return number;
  }

  QWidget iForm;
  CVelumListWidget* iWidget = nullptr;
  CVelumComboWidget* iCombo = nullptr;
};

TEST_F(CVelumListBoxTest, BeginsWithOneColumnOfTheWholeWidth) {
  const auto list = List();
  EXPECT_EQ(list->ObjDescr(), u"CVelumListBox type=0,numLines=0"_s);
  EXPECT_EQ(list->NumCols(), 1);
  EXPECT_EQ(list->ColTitles().at(0), QString());
  EXPECT_EQ(list->ColWidths().at(0), 1.0F);
  EXPECT_TRUE(list->ColsFrac());
  EXPECT_EQ(list->Flags(), 0);
  EXPECT_FALSE(list->Hold());
  EXPECT_EQ(list->SelIndex(), -1);
}

TEST_F(CVelumListBoxTest, AnUnknownTypeOrAWidgetOfAnotherKindAsserts) {
  EXPECT_TRUE(Asserted([] { static_cast<void>(MakeRef<CVelumListBox>(2)); }).contains(u"Construct TypeOf"_s));
  EXPECT_TRUE(Asserted([&] {
                static_cast<void>(MakeRef<CVelumListBox>(ELisSingle, iCombo, &iForm));
              }).contains(u"Construct TypeOf"_s));
  EXPECT_TRUE(Asserted([&] {
                static_cast<void>(MakeRef<CVelumListBox>(ELisCombo, iWidget, &iForm));
              }).contains(u"Construct TypeOf"_s));
  iPresenter.SetDefaultAnswer(true);
  const auto list = MakeRef<CVelumListBox>(7, iCombo, &iForm);
  list->AddLine(u"a"_s, nullptr);
  list->Show();
  EXPECT_EQ(list->NumLines(), 1) << "without a widget it keeps lines all the same";
}

TEST_F(CVelumListBoxTest, LinesHaveTextsAndObjects) {
  const auto list = List();
  const auto obj = MakeRef<CVelumFont>();
  list->AddLine(u"a"_s, nullptr);
  list->AddLine(u"c"_s, obj);
  list->CreateLineAt(1, u"b"_s, nullptr);
  EXPECT_EQ(list->NumLines(), 3);
  EXPECT_EQ(list->Line(1), u"b"_s);
  EXPECT_TRUE(list->Obj(2) == obj.Get());
  EXPECT_FALSE(list->Obj(0));
  EXPECT_EQ(Seen(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  list->ModifyLineAt(0, u"A"_s, obj);
  EXPECT_EQ(list->Line(0), u"A"_s);
  EXPECT_EQ(Seen().first(), u"A"_s);
  int index = 0;
  bool found = false;
  list->GetObjIndex(obj.Get(), index, found);
  EXPECT_TRUE(found);
  EXPECT_EQ(index, 0) << "the first of two";
  EXPECT_EQ(list->FindInList(u"c"_s), 2);
  EXPECT_TRUE(list->IsInList(u"b"_s));
  EXPECT_FALSE(list->IsInList(u"B"_s));
  list->Clear();
  EXPECT_EQ(list->NumLines(), 0);
  list->ClearAndShow();
  EXPECT_TRUE(Seen().isEmpty());
}

TEST_F(CVelumListBoxTest, IndicesAreChecked) {
  const auto list = List();
  list->AddLine(u"a"_s, nullptr);
  EXPECT_FALSE(list->Obj(-1));
  EXPECT_EQ(iPresenter.Count(), 0) << "-1 is no index that asserts";
  EXPECT_TRUE(Asserted([&] { static_cast<void>(list->Obj(1)); }).contains(u"1,1"_s));
  EXPECT_EQ(gLastError.iProc, u"GetObj"_s);
  EXPECT_TRUE(Asserted([&] { static_cast<void>(list->Line(1)); }).contains(u"Get Line index"_s));
  EXPECT_TRUE(Asserted([&] { list->SetSelIndex(1); }).contains(u"SetSelIndex index"_s));
  EXPECT_TRUE(Asserted([&] { list->SetSelIndexByObj(list.Get()); }).contains(u"found"_s));
  EXPECT_EQ(gLastError.iProc, u"SetSelIndexByObj"_s);
  EXPECT_EQ(RaisedOverruled([&] { static_cast<void>(list->Obj(1)); }), EHostIndex);
  EXPECT_EQ(RaisedOverruled([&] { static_cast<void>(list->Line(-1)); }), EHostIndex);
  EXPECT_EQ(RaisedOverruled([&] { list->ModifyLineAt(5, {}, nullptr); }), EHostIndex);
  EXPECT_EQ(RaisedOverruled([&] { list->SetSelIndex(5); }), 0);
  EXPECT_EQ(list->SelIndex(), -1);
}

TEST_F(CVelumListBoxTest, TheSelectionFollowsIndexLineAndObject) {
  const auto list = List();
  const auto obj = MakeRef<CVelumFont>();
  list->AddLine(u"a"_s, nullptr);
  list->AddLine(u"b"_s, obj);
  list->SetSelIndex(0);
  EXPECT_EQ(list->SelIndex(), 0);
  EXPECT_EQ(list->SelLine(), u"a"_s);
  list->SetSelIndexByLine(u"b"_s);
  EXPECT_EQ(list->SelIndex(), 1);
  EXPECT_TRUE(list->SelObj() == obj.Get());
  list->SetSelIndexByLine(u"none"_s);
  EXPECT_EQ(list->SelIndex(), -1);
  EXPECT_EQ(list->SelLine(), QString());
  EXPECT_FALSE(list->SelObj());
  list->SetSelIndexByObj(obj.Get());
  EXPECT_EQ(list->SelIndex(), 1);
  list->SetSelIndexOrClear(9);
  EXPECT_EQ(list->SelIndex(), -1);
}

TEST_F(CVelumListBoxTest, WhileHeldTheWidgetWaitsForShow) {
  const auto list = List();
  list->SetHold(true);
  list->AddLine(u"a"_s, nullptr);
  list->AddLine(u"b"_s, nullptr);
  EXPECT_TRUE(Seen().isEmpty());
  list->SetHold(false);
  list->Show();
  EXPECT_EQ(Seen().size(), 2);
}

TEST_F(CVelumListBoxTest, ColumnsInTwipsAndInFractions) {
  const auto list = List();
  list->DefineColumns({u"A"_s, u"B"_s}, {1500, 750});
  EXPECT_EQ(iWidget->columnWidth(0), 100);
  EXPECT_EQ(iWidget->columnWidth(1), 50);
  EXPECT_FALSE(list->ColsFrac());
  list->DefineColumnsList(u"a:0.5,b:0.5"_s);
  EXPECT_TRUE(list->ColsFrac());
  EXPECT_EQ(list->ColTitles(), (QList<QString>{u"a"_s, u"b"_s}));
  EXPECT_EQ(iWidget->columnWidth(0), iWidget->columnWidth(1));
  EXPECT_NEAR(iWidget->columnWidth(0) * 15, iWidget->UsableWidth() / 2, 15);
  EXPECT_LT(iWidget->columnWidth(0) + iWidget->columnWidth(1), iWidget->width());
  list->DefineColumnsList(u"a:1000,b:0.5"_s);
  EXPECT_FALSE(list->ColsFrac());
  EXPECT_EQ(list->ColWidths(), (QList<float>{1000, 0.5F}));
  list->DefineColumnsList(u"a:1.0"_s);
  EXPECT_TRUE(list->ColsFrac()) << "the whole width, not one twip";
  EXPECT_GT(iWidget->columnWidth(0), 100);
  list->Define1Column(u"Name"_s);
  EXPECT_EQ(list->NumCols(), 1);
  EXPECT_TRUE(list->ColsFrac());
}

TEST_F(CVelumListBoxTest, ColumnsAreBounded) {
  const auto list = List();
  list->DefineColumns(QList<QString>(101, u"A"_s), QList<float>(101, 100));
  EXPECT_EQ(list->NumCols(), 101);
  EXPECT_EQ(RaisedOverruled([&] { list->DefineColumns(QList<QString>(102), QList<float>(102, 1)); }),
            EHostIndex);
  const QString item = u"a:1,"_s;
  list->DefineColumnsList(item.repeated(21));
  EXPECT_EQ(list->NumCols(), 21);
  EXPECT_EQ(RaisedOverruled([&] { list->DefineColumnsList(item.repeated(22)); }), EHostIndex);
  list->AddCommaList(u"x,"_s.repeated(101));
  EXPECT_EQ(list->NumLines(), 101);
  EXPECT_EQ(RaisedOverruled([&] { list->AddCommaList(u"x,"_s.repeated(102)); }), EHostIndex);
}

TEST_F(CVelumListBoxTest, ColumnsAreForListsAndTextsForCombos) {
  const auto combo = Combo();
  EXPECT_TRUE(Asserted([&] { combo->DefineColumns({u"a"_s}, {1}); }).contains(u"DefineColums ELisSingle"_s));
  EXPECT_TRUE(Asserted([&] { combo->Define1Column(u"a"_s); }).contains(u"DefineColums ELisSingle"_s));
  const auto list = List();
  EXPECT_TRUE(Asserted([&] { list->SetComboText(u"a"_s); }).contains(u"SetComboText combo"_s));
  EXPECT_TRUE(Asserted([&] { list->SetEmpty(); }).contains(u"combo"_s));
  EXPECT_EQ(gLastError.iProc, u"SetEmpty"_s);
}

TEST_F(CVelumListBoxTest, AComboKeepsToWhatItIsTold) {
  const auto combo = Combo();
  combo->AddCommaList(u"one,two,three"_s);
  EXPECT_EQ(combo->ObjDescr(), u"CVelumListBox type=1,numLines=3"_s);
  EXPECT_EQ(iCombo->count(), 3);
  EXPECT_EQ(combo->SelIndex(), -1) << "a first line does not choose itself";
  combo->SetSelIndex(1);
  EXPECT_EQ(combo->SelLine(), u"two"_s);
  combo->SetEmpty();
  EXPECT_EQ(combo->SelIndex(), -1);
  iCombo->MakeEditable();
  EXPECT_EQ(iCombo->completer(), nullptr);
  combo->SetComboText(u"typed"_s);
  EXPECT_EQ(iCombo->currentText(), u"typed"_s);
  EXPECT_EQ(combo->SelIndex(), -1);
  QTest::keyClick(iCombo, Qt::Key_Return);
  EXPECT_EQ(iCombo->count(), 3) << "nothing is added by typing";
  combo->SetEmpty();
  EXPECT_EQ(iCombo->currentText(), QString());
}

TEST_F(CVelumListBoxTest, TheWheelTurnsAComboOnlyWithTheFocus) {
  const auto combo = Combo();
  combo->AddCommaList(u"one,two,three"_s);
  combo->SetSelIndex(0);
  const auto wheel = [&] {
    QWheelEvent event(QPointF(5, 5), iCombo->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(iCombo, &event);
    return combo->SelIndex();
  };
  iWidget->setFocus();
  EXPECT_EQ(wheel(), 0);
  iCombo->setFocus();
  EXPECT_EQ(wheel(), 1);
}

TEST_F(CVelumListBoxTest, FlagFourGivesTheFontToTheWidget) {
  const auto list = List();
  const auto font = MakeRef<CVelumFont>(u"Arial"_s, qint16{460}, ENoInt);
  const QFont before = iWidget->font();
  list->SetFont(font);
  EXPECT_EQ(iWidget->font(), before) << "only kept";
  list->SetFlag(ELisOwnFont, true);
  EXPECT_TRUE(list->Flag(4));
  EXPECT_EQ(iWidget->font(), CVelumLib::MakeToolkitFont(*font, false));
  list->SetFont(MakeRef<CVelumFont>(u"Arial"_s, qint16{220}, ENoInt));
  EXPECT_EQ(iWidget->font().pointSizeF(), 11.0) << "exactly as large as it says";
  list->SetFont(nullptr);
  EXPECT_TRUE(static_cast<bool>(list->Font())) << "nothing stands for the defaults";
}

TEST_F(CVelumListBoxTest, ResizeFillsTheFormAsTheFlagsSay) {
  const auto list = List();
  list->DefineColumnsList(u"a:0.5,b:0.5"_s);
  list->Resize();
  EXPECT_EQ(iWidget->size(), QSize(320, 200)) << "no flag, no change";
  list->SetFlags(ELisFollowWidth);
  iForm.resize(800, 600);
  list->Resize();
  EXPECT_GT(iWidget->width(), 700);
  EXPECT_EQ(iWidget->height(), 200);
  EXPECT_GT(iWidget->columnWidth(0), 340);
  list->SetFlags(ELisFollowWidth | ELisFollowHeight);
  list->Resize();
  EXPECT_GT(iWidget->height(), 500);
  iForm.resize(5, 5);
  list->Resize();
  EXPECT_GE(iWidget->width(), 70) << "never below the least size";
  EXPECT_GE(iWidget->height(), 50);
}

TEST_F(CVelumListBoxTest, NothingOfALineIsMadeBeforeItIsSeen) {
  int asked = 0;
  const auto list = List();
  list->DefineColumnsList(u"a:0.5,b:0.5"_s);
  list->SetProvider(std::make_unique<CountingLines>(1000000, asked));
  EXPECT_EQ(list->NumLines(), 1000000);
  iWidget->grab();
  EXPECT_GT(asked, 0);
  EXPECT_LT(asked, 500);
  EXPECT_EQ(list->Line(999999), u"line 999999"_s);
  list->SetSelIndex(999999);
  EXPECT_EQ(list->SelIndex(), 999999);
  EXPECT_GT(iWidget->TopRow(), 999000) << "what is selected is seen";
  iWidget->grab();
  EXPECT_LT(asked, 1000);
}

TEST_F(CVelumListBoxTest, ATitleSortsTheDisplayOnly) {
  const auto list = Towns();
  list->SetSelIndex(0);
  ClickTitle(0);
  EXPECT_EQ(Seen(), (QStringList{u"Bern"_s, u"Bonn"_s, u"Ulm"_s}));
  EXPECT_TRUE(iWidget->DisplaySorted());
  EXPECT_EQ(list->SelIndex(), 0) << "the selection is counted as the list is";
  EXPECT_EQ(list->Line(0), u"Ulm\t10"_s);
  ClickTitle(0);
  EXPECT_EQ(Seen(), (QStringList{u"Ulm"_s, u"Bonn"_s, u"Bern"_s}));
  ClickTitle(0);
  EXPECT_EQ(Seen(), (QStringList{u"Ulm"_s, u"Bonn"_s, u"Bern"_s}));
  EXPECT_FALSE(iWidget->DisplaySorted());
  list->AddLine(u"Aarau\t1"_s, nullptr);
  ClickTitle(0);
  EXPECT_EQ(Seen().first(), u"Aarau"_s);
  ClickTitle(1);
  EXPECT_EQ(iWidget->horizontalHeader()->sortIndicatorSection(), 1);
}

TEST_F(CVelumListBoxTest, TypingJumpsToTheNextLineThatBeginsSo) {
  const auto list = Towns();
  iWidget->setFocus();
  QTest::keyClicks(iWidget, u"b"_s);
  EXPECT_EQ(list->SelLine(), u"Bonn\t9"_s);
  QTest::keyClicks(iWidget, u"b"_s);
  EXPECT_EQ(list->SelLine(), u"Bern\t30"_s);
  QTest::qWait(QApplication::keyboardInputInterval() + 50);
  QTest::keyClicks(iWidget, u"bo"_s);
  EXPECT_EQ(list->SelLine(), u"Bonn\t9"_s);
}

TEST_F(CVelumListBoxTest, CtrlCCopiesTheSelectedLinesAsTheyAreSeen) {
  const auto list = Towns();
  iWidget->SetMultiSelect(true);
  iWidget->setFocus();
  ClickTitle(0);
  QTest::keyClick(iWidget, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(iWidget, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), u"Bern\t30\nBonn\t9\nUlm\t10"_s);
  EXPECT_EQ(list->SelIndexes(), (QList<int>{2, 1, 0}));
}

TEST_F(CVelumListBoxTest, AWidgetThatGoesOrIsTakenByAnotherBoxIsLetGoOf) {
  const auto first = Towns();
  {
    const auto second = List();
    second->AddLine(u"x"_s, nullptr);
    EXPECT_EQ(Seen(), QStringList{u"x"_s});
    first->SetBaseObj(nullptr);
    EXPECT_EQ(Seen(), QStringList{u"x"_s});
  }
  EXPECT_TRUE(Seen().isEmpty());
  iWidget->grab();
  const auto third = List();
  delete iWidget;
  third->AddLine(u"y"_s, nullptr);
  third->Show();
  EXPECT_EQ(third->SelIndex(), -1);
  EXPECT_EQ(third->BaseObj(), nullptr);
}

} // namespace
