#include "shell/frame/CVelumScriptBar.h"

#include "core/CVelumLib.h"
#include "script/CVelumCompiler.h"
#include "script/CVelumPlainHost.h"
#include "support/ScriptedPresenter.h"
#include "support/WidgetApp.h"
#include "toolkit/CVelumToolkitPump.h"

#include <QMenu>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

// An endless script of a stack without windows, and the bar in a window.
class CVelumScriptBarTest : public testing::Test {
protected:
  CVelumScriptBarTest() {
    CVelumModel::Install();
    CVelumSeams::SetEventPump(&iPump);
    gInterpreter = MakeRef<CVelumInterpreter>();
    iStack = MakeRef<CVelumStack>(u"Test"_s);
    iStack->AddCard(MakeRef<CVelumCard>(u"a"_s, iStack->Background(0)), nullptr, false);
    iHost = std::make_unique<CVelumPlainHost>(iStack, gInterpreter);
    CVelumCompiler compiler;
    const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
    compiler.Compile(CVelumLib::ToCrLf(u"On run\nRepeat While 1 = 1\nx = 1\nEnd Repeat\nEnd\n"_s), *handlers);
    iStack->SetScript(handlers);
    iBar = new CVelumScriptBar(&iWindow);
    iWindow.resize(300, 60);
    iBar->resize(250, 40);
    iWindow.show();
  }
  ~CVelumScriptBarTest() override {
    iHost.reset();
    gInterpreter = nullptr;
    CVelumSeams::SetEventPump(nullptr);
  }
  // Runs the script, with aDuring in its first turn of events.
  void Run(const std::function<void()>& aDuring) {
    QTimer::singleShot(0, &iWindow, aDuring);
    iHost->Send(iHost->CurCard(), nullptr, u"run"_s);
    EXPECT_FALSE(gInterpreter->Running());
  }

  QApplication& iApp = WidgetApp();
  ScriptedPresenter iPresenter;
  CVelumToolkitPump iPump;
  Ref<CVelumStack> iStack;
  std::unique_ptr<CVelumPlainHost> iHost;
  QWidget iWindow;
  CVelumScriptBar* iBar = nullptr;
};

TEST_F(CVelumScriptBarTest, EscapeStopsAScript) {
  Run([this] { QTest::keyClick(&iWindow, Qt::Key_Escape); });
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Script breaked"_s});
}

TEST_F(CVelumScriptBarTest, AClickStopsAScript) {
  Run([this] {
    iBar->ShowProgress(30);
    QTest::mouseClick(iBar->findChild<QWidget*>(u"fScriptStop"_s), Qt::LeftButton);
  });
  Run([this] {
    iBar->ShowProgress(60);
    QTest::mouseClick(iBar, Qt::LeftButton, {}, QPoint(5, 5));
  });
  EXPECT_EQ(iPresenter.Told().size(), 2);
}

TEST_F(CVelumScriptBarTest, ShowsWhileAScriptRuns) {
  EXPECT_FALSE(iBar->isVisible());
  iBar->ShowProgress(0);
  EXPECT_TRUE(iBar->isVisible());
  iBar->ShowProgress(100);
  EXPECT_FALSE(iBar->isVisible());
}

TEST_F(CVelumScriptBarTest, EscapeIsLeftAloneWithoutAScript) {
  QTest::keyClick(&iWindow, Qt::Key_Escape);
  EXPECT_TRUE(iPresenter.Told().isEmpty());
}

// Escape belongs to an open menu.
TEST_F(CVelumScriptBarTest, EscapeInAMenuClosesTheMenu) {
  Run([this] {
    QMenu menu(&iWindow);
    menu.addAction(u"Item"_s);
    menu.popup(iWindow.mapToGlobal(QPoint(5, 5)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    QTest::keyClick(&menu, Qt::Key_Escape);
    EXPECT_FALSE(menu.isVisible());
    EXPECT_TRUE(iPresenter.Told().isEmpty());
    QTest::keyClick(&iWindow, Qt::Key_Escape);
  });
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Script breaked"_s});
}

TEST_F(CVelumScriptBarTest, AClosingCommandWaitsForTheScript) {
  bool ran = false;
  Run([&ran] {
    CVelumDialogLib::WhenNoScriptRuns([&ran] {
      EXPECT_FALSE(gInterpreter->Running());
      ran = true;
    });
    EXPECT_FALSE(ran);
  });
  EXPECT_FALSE(ran) << "not before what started the script is done";
  QCoreApplication::processEvents();
  EXPECT_TRUE(ran);
  bool atOnce = false;
  CVelumDialogLib::WhenNoScriptRuns([&atOnce] { atOnce = true; });
  EXPECT_TRUE(atOnce);
}

} // namespace
