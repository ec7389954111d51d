#include "shell/help/CVelumHelpForm.h"

#include "shell/ShellTest.h"
#include "shell/help/CVelumHelpKeys.h"
#include "shell/help/CVelumHelpPage.h"
#include "toolkit/CVelumBaseColor.h"

#include <QDir>
#include <QDirIterator>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>

namespace {

class CVelumHelpFormTest : public ShellTest {
protected:
  CVelumHelpFormTest() { qputenv("XDG_CACHE_HOME", iFolder.Path(u"cache"_s).toLocal8Bit()); }
  ~CVelumHelpFormTest() override {
    delete CVelumHelpForm::Instance();
    qunsetenv("XDG_CACHE_HOME");
  }

  template <class T> static T& Part(const QString& aName) {
    auto* part = CVelumHelpForm::Instance()->findChild<T*>(aName);
    EXPECT_NE(part, nullptr) << aName.toStdString();
    return *part;
  }
  static CVelumHelpPage& Page() { return Part<CVelumHelpPage>(u"fPage"_s); }
  static QString Shown() { return CVelumHelpBook::Name(Page().source()); }
  static QString InContents() {
    return Part<QHelpContentWidget>(u"fContents"_s).currentIndex().data().toString();
  }
  static void Click(const QString& aButton) {
    QTest::mouseClick(&Part<QPushButton>(aButton), Qt::LeftButton);
  }
};

} // namespace

TEST_F(CVelumHelpFormTest, ShowsThePageOfItsName) {
  CVelumHelpForm::ShowPage(u"MsgFormEMsgDeleteCardOk"_s);
  EXPECT_EQ(Shown(), u"MsgFormEMsgDeleteCardOk"_s);
  EXPECT_TRUE(Page().toPlainText().contains(u"Delete this card?"_s));
  CVelumHelpForm::ShowPage(u"FrameSaveStack"_s);
  EXPECT_EQ(Shown(), u"FrameSaveStack"_s);
}

TEST_F(CVelumHelpFormTest, FindsThePageOfTheFormWhereAControlHasNone) {
  const CVelumHelpBook book;
  ASSERT_TRUE(book.IsOpen());
  const auto found = [&](const char* aName) {
    return CVelumHelpBook::Name(book.Find(QString::fromLatin1(aName))).toStdString();
  };
  EXPECT_EQ(found("GenFormGenTextBox17"), "GenFormGenTextBox");
  EXPECT_EQ(found("FrameHistory3"), "FrameHistory");
  EXPECT_EQ(found("MsgFormHelp0"), "MsgFormHelp");
  EXPECT_EQ(found("SaveQuestion"), "Save");
  EXPECT_EQ(found("XyzNothing"), "Start");
  EXPECT_EQ(found(""), "Start");
}

TEST_F(CVelumHelpFormTest, ContentsFollowThePage) {
  CVelumHelpForm::ShowPage(u"Frame"_s);
  EXPECT_TRUE(QTest::qWaitFor([] { return InContents() == u"The main window"_s; }));
  Page().setSource(QUrl(u"FrameSaveStack.htm"_s));
  EXPECT_EQ(Shown(), u"FrameSaveStack"_s);
  EXPECT_EQ(InContents(), u"Save"_s);
}

TEST_F(CVelumHelpFormTest, ContentsLeadToThePage) {
  CVelumHelpForm::ShowPage(u"Frame"_s);
  ASSERT_TRUE(QTest::qWaitFor([] { return InContents() == u"The main window"_s; }));
  auto& contents = Part<QHelpContentWidget>(u"fContents"_s);
  const QModelIndex first = contents.model()->index(0, 0);
  QTest::mouseClick(contents.viewport(), Qt::LeftButton, {}, contents.visualRect(first).center());
  EXPECT_EQ(Shown(), u"Start"_s);
}

TEST_F(CVelumHelpFormTest, GoesBackAndForwardThroughLinks) {
  CVelumHelpForm::ShowPage({});
  EXPECT_EQ(Shown(), u"Start"_s);
  EXPECT_FALSE(Part<QPushButton>(u"fBackBut"_s).isEnabled());
  // The first link of the page by keyboard.
  Page().setFocus();
  QTest::keyClick(&Page(), Qt::Key_Tab);
  QTest::keyClick(&Page(), Qt::Key_Return);
  EXPECT_EQ(Shown(), u"Tutorial"_s);
  Click(u"fBackBut"_s);
  EXPECT_EQ(Shown(), u"Start"_s);
  Click(u"fForwBut"_s);
  EXPECT_EQ(Shown(), u"Tutorial"_s);
  Click(u"fHomeBut"_s);
  EXPECT_EQ(Shown(), u"Start"_s);
  Click(u"fCloseBut"_s);
  EXPECT_FALSE(CVelumHelpForm::Instance() && CVelumHelpForm::Instance()->isVisible());
}

TEST_F(CVelumHelpFormTest, IndexListsTitlesAndFurtherWords) {
  CVelumHelpForm::ShowPage({});
  auto& index = Part<QHelpIndexWidget>(u"fIndex"_s);
  ASSERT_TRUE(QTest::qWaitFor([&] { return index.model()->rowCount() > 50; }));
  Part<QTabWidget>(u"fTabs"_s).setCurrentIndex(1);
  QTest::keyClicks(&Part<QLineEdit>(u"fIndexText"_s), u"grammar of"_s);
  EXPECT_TRUE(QTest::qWaitFor([&] { return index.model()->rowCount() == 1; }));
  QTest::keyClick(&Part<QLineEdit>(u"fIndexText"_s), Qt::Key_Return);
  EXPECT_EQ(Shown(), u"language"_s);
}

TEST_F(CVelumHelpFormTest, SearchFindsWordsOfTheText) {
  CVelumHelpForm::ShowPage({});
  Part<QTabWidget>(u"fTabs"_s).setCurrentIndex(2);
  auto& results = Part<QListWidget>(u"fResults"_s);
  auto& text = Part<QLineEdit>(u"fSearchText"_s);
  const auto titles = [&] {
    QStringList found;
    for (int i = 0; i < results.count(); ++i) found.append(results.item(i)->text());
    return found;
  };
  // Whatever is typed, quotes and operators too, is only words.
  QTest::keyClicks(&text, u"\"odyssey* AND ("_s);
  EXPECT_EQ(results.count(), 0);
  text.clear();
  QTest::keyClicks(&text, u"odyss"_s);
  ASSERT_TRUE(QTest::qWaitFor([&] { return results.count() > 0; }, 20000));
  EXPECT_EQ(titles(), QStringList{u"Make a collection of your own"_s});
  results.setCurrentRow(0);
  EXPECT_EQ(Shown(), u"Tutorial"_s);
  text.clear();
  QTest::keyClicks(&text, u"wallpaper tiles"_s);
  EXPECT_TRUE(QTest::qWaitFor([&] { return titles().contains(u"The wallpaper"_s); }));
  QTest::keyClicks(&text, u"qqqqqq"_s);
  EXPECT_TRUE(QTest::qWaitFor([&] { return results.count() == 0; }));
}

TEST_F(CVelumHelpFormTest, TheSearchAnswersWhatIsAskedMost) {
  CVelumHelpForm::ShowPage({});
  Part<QTabWidget>(u"fTabs"_s).setCurrentIndex(2);
  auto& results = Part<QListWidget>(u"fResults"_s);
  auto& text = Part<QLineEdit>(u"fSearchText"_s);
  const std::pair<QString, QString> questions[] = {
      {u"how do I undo"_s, u"Undo"_s},     {u"undo"_s, u"Undo"_s},
      {u"print"_s, u"Printing"_s},         {u"read-only file"_s, u"ReadOnlyFile"_s},
      {u"read-only"_s, u"ReadOnlyFile"_s}, {u"Excel"_s, u"Excel"_s},
      {u"date format"_s, u"DateFormat"_s}, {u"password"_s, u"Password"_s},
      {u"add a field"_s, u"AddField"_s}};
  for (const auto& [question, page] : questions) {
    text.clear();
    QTest::keyClicks(&text, question);
    const auto found = [&, wanted = page] {
      for (int i = 0; i < std::min(3, results.count()); ++i)
        if (CVelumHelpBook::Name(results.item(i)->data(Qt::UserRole).toUrl()) == wanted) return true;
      return false;
    };
    EXPECT_TRUE(QTest::qWaitFor(found, 20000)) << question.toStdString();
  }
}

TEST_F(CVelumHelpFormTest, LongTitlesOfResultsAreNotCut) {
  CVelumHelpForm::ShowPage({});
  Part<QTabWidget>(u"fTabs"_s).setCurrentIndex(2);
  auto& results = Part<QListWidget>(u"fResults"_s);
  QTest::keyClicks(&Part<QLineEdit>(u"fSearchText"_s), u"Excel"_s);
  ASSERT_TRUE(QTest::qWaitFor([&] { return results.count() > 0; }, 20000));
  results.setFixedWidth(120);
  QTest::qWait(50);
  EXPECT_EQ(results.horizontalScrollBar()->maximum(), 0);
  EXPECT_GT(results.visualItemRect(results.item(0)).height(), 2 * results.fontMetrics().height());
}

TEST_F(CVelumHelpFormTest, ATabThatIsOpenedCanBeTypedInto) {
  CVelumHelpForm::ShowPage({});
  CVelumHelpForm::Instance()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(CVelumHelpForm::Instance()));
  auto& tabs = Part<QTabWidget>(u"fTabs"_s);
  auto& page = Page();
  const auto hasFocus = [](const QString& aName) {
    const QWidget* widget = QApplication::focusWidget();
    return widget && widget->objectName() == aName;
  };
  const QStringList entries{u"fContents"_s, u"fIndexText"_s, u"fSearchText"_s};
  for (int i : {2, 1, 0, 2}) {
    for (int again = 0; again < 2; ++again) { // the second time it is open already
      page.setFocus();
      QTest::mouseClick(tabs.tabBar(), Qt::LeftButton, {}, tabs.tabBar()->tabRect(i).center());
      EXPECT_EQ(tabs.currentIndex(), i);
      EXPECT_TRUE(QTest::qWaitFor([&] { return hasFocus(entries.at(i)); })) << i;
    }
  }
  // The arrow keys go on from tab to tab.
  tabs.tabBar()->setFocus(Qt::TabFocusReason);
  QTest::keyClick(tabs.tabBar(), Qt::Key_Left);
  QTest::keyClick(tabs.tabBar(), Qt::Key_Left);
  EXPECT_EQ(tabs.currentIndex(), 0);
  EXPECT_TRUE(tabs.tabBar()->hasFocus());
}

TEST_F(CVelumHelpFormTest, PagesTakeTheColoursOfTheDesktop) {
  const CVelumHelpBook book;
  ASSERT_TRUE(book.IsOpen());
  for (const QUrl& url : book.Engine().files(u"orvelles"_s, QString(), {})) {
    const QString html = QString::fromUtf8(book.Data(url));
    EXPECT_FALSE(html.contains(u"color"_s) && html.contains(u"style="_s)) << url.toString().toStdString();
    EXPECT_FALSE(html.contains(u"<font"_s) || html.contains(u"<style"_s)) << url.toString().toStdString();
  }
}

TEST_F(CVelumHelpFormTest, LinksCanBeReadOnADarkDesktop) {
  const auto linkContrast = [] {
    for (QTextBlock block = Page().document()->begin(); block.isValid(); block = block.next())
      for (auto at = block.begin(); !at.atEnd(); ++at)
        if (const QTextCharFormat format = at.fragment().charFormat(); format.isAnchor())
          return CVelumBaseColor::Contrast(format.foreground().color(),
                                           Page().palette().color(QPalette::Base));
    return 0.0;
  };
  CVelumHelpForm::ShowPage(u"CVelumFrame"_s);
  EXPECT_GE(linkContrast(), 4.5);
  QPalette dark = Page().palette();
  dark.setColor(QPalette::Base, QColor(30, 30, 32));
  Page().setPalette(dark);
  EXPECT_GE(linkContrast(), 4.5);
}

TEST_F(CVelumHelpFormTest, WorksWhereTheCacheCannotBeWritten) {
  qputenv("XDG_CACHE_HOME", "/dev/null/nowhere");
  CVelumHelpForm::ShowPage(u"Frame"_s);
  EXPECT_EQ(Shown(), u"Frame"_s);
}

TEST_F(CVelumHelpFormTest, BrokenCacheIsMadeAnew) {
  {
    const CVelumHelpBook book;
    ASSERT_TRUE(book.IsOpen());
  }
  QStringList collections;
  QDirIterator files(iFolder.Path(u"cache"_s), {u"*.qhc"_s}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) collections.append(files.next());
  ASSERT_EQ(collections.size(), 1);
  QFile file(collections.first());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("no collection at all, but some text that is long enough to be read as one by mistake");
  file.close();
  CVelumHelpForm::ShowPage(u"Frame"_s);
  EXPECT_EQ(Shown(), u"Frame"_s);
}

TEST_F(CVelumHelpFormTest, F1OpensTheHelpOfWhatHasTheFocus) {
  const CVelumHelpKeys keys;
  QDialog form;
  form.setObjectName(u"CVelumOptionEdit"_s);
  QLineEdit entry(&form);
  entry.setObjectName(u"fStackFolder"_s);
  QTest::keyClick(&entry, Qt::Key_F1);
  EXPECT_EQ(iPresenter.HelpPages(), QList<QString>{u"OptionEditStackFolder"_s});
  QTest::keyClick(&form, Qt::Key_F1);
  EXPECT_EQ(iPresenter.HelpPages().last(), u"OptionEdit"_s);
  // With Ctrl it is another key.
  QTest::keyClick(&entry, Qt::Key_F1, Qt::ControlModifier);
  EXPECT_EQ(iPresenter.HelpPages().size(), 2);
}

TEST_F(CVelumHelpFormTest, F1InAMenuIsAboutTheChosenItem) {
  Start();
  auto* menu = gFrame->findChild<QMenu*>(u"fStack"_s);
  menu->popup(QPoint(0, 0));
  menu->setActiveAction(Action(u"fOpenStack"_s));
  QTest::keyClick(menu, Qt::Key_F1);
  EXPECT_EQ(iPresenter.HelpPages(), QList<QString>{u"FrameOpenStack"_s});
  menu->setActiveAction(gFrame->findChild<QMenu*>(u"fOpenRecent"_s)->menuAction());
  QTest::keyClick(menu, Qt::Key_F1);
  EXPECT_EQ(iPresenter.HelpPages().last(), u"FrameOpenRecent"_s);
  menu->close();
}
