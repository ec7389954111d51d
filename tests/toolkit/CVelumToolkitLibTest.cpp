#include "toolkit/CVelumToolkitLib.h"

#include "support/WidgetTest.h"
#include "toolkit/CVelumFileDialog.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QScreen>
#include <QTest>
#include <QWidget>

using CVelumToolkitLibTest = WidgetTest;

TEST_F(CVelumToolkitLibTest, FontTakesEachAttribute) {
  const QFont font = CVelumLib::MakeToolkitFont(u"Courier New"_s, 15, true, false, true);
  EXPECT_EQ(font.family(), u"Courier New"_s);
  EXPECT_EQ(font.pointSizeF(), 15);
  EXPECT_TRUE(font.bold());
  EXPECT_FALSE(font.italic());
  EXPECT_TRUE(font.underline());
  EXPECT_TRUE(CVelumLib::MakeToolkitFont(u"X"_s, 8, false, true, false).italic());
  EXPECT_EQ(CVelumLib::MakeToolkitFont({}, -3, false, false, false).pointSizeF(), 1);
  EXPECT_EQ(CVelumLib::MakeToolkitFont({}, 31999, false, false, false).pointSizeF(), 1000);
}

TEST_F(CVelumToolkitLibTest, ClipboardTextIsRawWithoutItsLastLineEnd) {
  QClipboard* clipboard = QGuiApplication::clipboard();
  for (const auto& [text, expected] : QList<QPair<QString, QString>>{
           {u"a\u00a0b"_s, u"a\u00a0b"_s},
           {u"line\r\n"_s, u"line"_s},
           {u"line\n"_s, u"line"_s},
           {u"a\r\nb"_s, u"a\r\nb"_s},
           {u"two\r\n\r\n"_s, u"two\r\n"_s},
           {QString(), QString()},
       }) {
    clipboard->setText(text);
    EXPECT_EQ(CVelumLib::GetClipboardText(), expected);
  }
  clipboard->setMimeData(new QMimeData);
  EXPECT_EQ(CVelumLib::GetClipboardText(), QString());
}

TEST_F(CVelumToolkitLibTest, ClientSizeAddsTheFrameOfAChild) {
  const QSize frame = CVelumLib::ChildFrameSize();
  EXPECT_GT(frame.width(), 0);
  EXPECT_GT(frame.height(), frame.width());
  EXPECT_EQ(CVelumLib::ClientSizeToWindow(QSizeF(4160, 5100)),
            QSizeF(4160 + frame.width() * 15.0, 5100 + frame.height() * 15.0));
  QMdiArea area;
  area.resize(800, 600);
  area.show();
  QWidget content;
  QMdiSubWindow* child = area.addSubWindow(&content);
  child->show();
  child->resize(300 + frame.width(), 200 + frame.height());
  QApplication::processEvents();
  EXPECT_EQ(content.size(), QSize(300, 200));
  area.removeSubWindow(&content);
}

TEST_F(CVelumToolkitLibTest, CentresOverAnotherWindow) {
  QWidget frame;
  frame.setGeometry(100, 50, 500, 400);
  QWidget form;
  form.setGeometry(0, 0, 200, 101);
  CVelumLib::CentreOver(form, &frame);
  EXPECT_EQ(form.pos(), QPoint(250, 199));
  CVelumLib::CentreOver(form, nullptr);
  EXPECT_EQ(form.pos(), QPoint(250, 199));
}

TEST_F(CVelumToolkitLibTest, FolderOfTheDialogAndNoneWhenCancelled) {
  QString answer = iFolder.Path();
  QString start;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool) {
    start = aDialog.InitDir();
    return answer;
  });
  EXPECT_EQ(CVelumLib::BrowseForFolder(nullptr, u"Folder"_s, u"/start"_s), iFolder.Path());
  EXPECT_EQ(start, u"/start"_s);
  answer.clear();
  EXPECT_EQ(CVelumLib::BrowseForFolder(nullptr, u"Folder"_s), QString());
  CVelumFileDialog::SetAnswer({});
}

TEST_F(CVelumToolkitLibTest, AWindowThatIsShownAlreadyBecomesTheActiveOne) {
  QWidget one;
  QWidget other;
  for (QWidget* window : {&one, &other}) {
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  }
  CVelumLib::BringUp(one);
  EXPECT_TRUE(QTest::qWaitForWindowActive(&one));
}

TEST_F(CVelumToolkitLibTest, DroppedListFitsItsLongestLineAndTheScreen) {
  QWidget form;
  QComboBox combo(&form);
  combo.addItem(u"a"_s);
  combo.addItem(QString(60, u'M'));
  CVelumLib::SetComboDropWidth(combo, form);
  EXPECT_GE(combo.view()->minimumWidth(), combo.fontMetrics().horizontalAdvance(combo.itemText(1)));
  combo.addItem(QString(6000, u'M'));
  CVelumLib::SetComboDropWidth(combo, form);
  EXPECT_EQ(combo.view()->minimumWidth(), form.screen()->availableSize().width());
}
