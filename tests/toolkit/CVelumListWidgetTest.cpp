#include "toolkit/CVelumListWidget.h"

#include "support/WidgetTest.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

class Lines final : public CVelumLineSource {
public:
  [[nodiscard]] int NumLines() const override { return static_cast<int>(iLines.size()); }
  [[nodiscard]] QString Part(int aLine, int aColumn) const override {
    return iLines.at(aLine).section(u'\t', aColumn, aColumn);
  }
  QStringList iLines{u"Bob\t1"_s, u"Anna\t2"_s, u"Cyril\t3"_s};
};

class CVelumListWidgetTest : public WidgetTest {
protected:
  CVelumListWidgetTest() {
    iWindow.resize(400, 300);
    iBefore.setGeometry(0, 0, 100, 24);
    iList.setGeometry(0, 40, 200, 150);
    iList.SetSource(&iLines);
    iList.DefineColumns({u"Name"_s, u"Size"_s}, {1500, 1500});
    iWindow.show();
    iWindow.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&iWindow));
    iBefore.setFocus();
  }
  ~CVelumListWidgetTest() override { iList.SetSource(nullptr); }

  Lines iLines;
  QWidget iWindow;
  QLineEdit iBefore{&iWindow};
  CVelumListWidget iList{&iWindow};
};

TEST_F(CVelumListWidgetTest, WhoComesInByKeyFindsTheFirstLineSelected) {
  EXPECT_EQ(iList.SelLine(), -1);
  QTest::keyClick(&iBefore, Qt::Key_Tab);
  ASSERT_TRUE(iList.hasFocus());
  EXPECT_EQ(iList.SelLine(), 0);
  QTest::keyClick(&iList, Qt::Key_Down);
  EXPECT_EQ(iList.SelLine(), 1);
  iBefore.setFocus();
  QTest::keyClick(&iBefore, Qt::Key_Tab);
  EXPECT_EQ(iList.SelLine(), 1) << "what is selected stays so";
}

TEST_F(CVelumListWidgetTest, AnEmptyListIsEnteredWithoutHarm) {
  iLines.iLines.clear();
  iList.Reload();
  QTest::keyClick(&iBefore, Qt::Key_Tab);
  EXPECT_EQ(iList.SelLine(), -1);
  for (const auto key : {Qt::Key_Home, Qt::Key_End, Qt::Key_Down}) QTest::keyClick(&iList, key);
  EXPECT_EQ(iList.SelLine(), -1);
}

TEST_F(CVelumListWidgetTest, HomeAndEndGoToTheFirstAndLastLineAndSelectIt) {
  iList.DefineColumns({u"Name"_s, u"Size"_s}, {3000, 3000});
  iList.SetMultiSelect(true);
  iList.setFocus();
  iList.SetSelLine(1);
  QTest::keyClick(&iList, Qt::Key_End);
  EXPECT_EQ(iList.SelLines(), QList<int>{2});
  EXPECT_EQ(iList.horizontalScrollBar()->value(), 0) << "not to the last column";
  QTest::keyClick(&iList, Qt::Key_Home);
  EXPECT_EQ(iList.SelLines(), QList<int>{0});
  QTest::keyClick(&iList, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(iList.SelLines(), QList<int>{2}) << "and so with Ctrl";
  QTest::keyClick(&iList, Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(iList.SelLines(), QList<int>{0});
  QTest::keyClick(&iList, Qt::Key_End, Qt::ShiftModifier);
  EXPECT_EQ(iList.SelLines(), (QList<int>{0, 1, 2}));
}

TEST_F(CVelumListWidgetTest, TypingInASortedDisplaySelectsTheLineThatIsSeen) {
  iList.SortDisplay(0, Qt::AscendingOrder);
  iList.setFocus();
  iList.SetSelLine(1); // Anna, the first one seen
  QTest::keyClicks(&iList, u"b"_s);
  EXPECT_EQ(iList.SelLine(), 0);
  EXPECT_EQ(iList.SelText(), u"Bob\t1"_s);
}

TEST_F(CVelumListWidgetTest, AListOfOneLineHasNoBarOverIt) {
  iList.DefineColumns({QString(), QString()}, {3000, 3000});
  iList.resize(200, 150);
  QCoreApplication::processEvents();
  EXPECT_TRUE(iList.horizontalScrollBar()->isVisible());
  const int row = iList.rowHeight(0);
  const int frame = 2 * iList.frameWidth();
  const int bar = iList.horizontalScrollBar()->sizeHint().height();
  iList.resize(200, row + frame + bar);
  QCoreApplication::processEvents();
  EXPECT_TRUE(iList.horizontalScrollBar()->isVisible()) << "a whole line is left";
  EXPECT_GE(iList.viewport()->height(), row);
  iList.resize(200, row + frame + bar - 1);
  QCoreApplication::processEvents();
  EXPECT_FALSE(iList.horizontalScrollBar()->isVisible());
  EXPECT_GE(iList.viewport()->height(), row);
  iList.DefineColumns({u"Name"_s, u"Size"_s}, {3000, 3000});
  iList.resize(200, row + frame + bar + iList.horizontalHeader()->height() - 1);
  QCoreApplication::processEvents();
  EXPECT_FALSE(iList.horizontalScrollBar()->isVisible()) << "titles count";
}

} // namespace
