#include "toolkit/CVelumMdiArea.h"

#include "support/WidgetTest.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QTest>
#include <QTextEdit>

namespace {

class ChildForm final : public QWidget {
public:
  ChildForm() { resize(100, 80); }
  bool iRefuse = false;
  int iCloses = 0;

protected:
  void closeEvent(QCloseEvent* aEvent) override {
    ++iCloses;
    aEvent->setAccepted(!iRefuse);
  }
};

// Stands for the main window: notes the keys that reach it.
class KeyWindow final : public QWidget {
public:
  QList<int> iKeys;

protected:
  void keyPressEvent(QKeyEvent* aEvent) override {
    if (aEvent->key() != Qt::Key_Alt) iKeys.append(aEvent->key());
  }
};

class CVelumMdiAreaTest : public WidgetTest {
protected:
  CVelumMdiAreaTest() {
    iWindow.resize(700, 500);
    iArea.setGeometry(iWindow.rect());
    iWindow.show();
  }
  ~CVelumMdiAreaTest() override {
    iArea.RemoveChild(&iForm);
    iArea.RemoveChild(&iOther);
  }
  // How light the title of iOther is.
  int Title() { return iOther.parentWidget()->grab().toImage().pixelColor(100, 5).lightness(); }
  KeyWindow iWindow;
  CVelumMdiArea iArea{&iWindow};
  ChildForm iForm;
  ChildForm iOther;
};

} // namespace

TEST_F(CVelumMdiAreaTest, ChildIsHiddenUntilShown) {
  iArea.AddChild(&iForm);
  EXPECT_FALSE(iForm.isVisible());
  iArea.ShowChild(&iForm, true);
  EXPECT_TRUE(iForm.isVisible());
  EXPECT_EQ(iArea.activeSubWindow(), iForm.parentWidget());
  iArea.HideChild(&iForm);
  EXPECT_FALSE(iForm.isVisible());
  iArea.ShowChild(&iForm, false);
  EXPECT_TRUE(iForm.isVisible());
}

TEST_F(CVelumMdiAreaTest, OnlyRaisingMakesAChildActive) {
  for (ChildForm* form : {&iForm, &iOther}) iArea.AddChild(form);
  iArea.ShowChild(&iForm, true);
  iArea.ShowChild(&iOther, false);
  EXPECT_EQ(iArea.activeSubWindow(), iForm.parentWidget());
  iArea.ShowChild(&iOther, true);
  EXPECT_EQ(iArea.activeSubWindow(), iOther.parentWidget());
}

TEST_F(CVelumMdiAreaTest, RaisingOpensAMinimisedChild) {
  iArea.AddChild(&iForm);
  iArea.ShowChild(&iForm, true);
  auto* child = qobject_cast<QMdiSubWindow*>(iForm.parentWidget());
  child->showMinimized();
  iArea.ShowChild(&iForm, false);
  EXPECT_TRUE(child->isMinimized());
  iArea.ShowChild(&iForm, true);
  EXPECT_FALSE(child->isMinimized());
  EXPECT_TRUE(iForm.isVisible());
  // A maximised one stays as it is.
  child->showMaximized();
  iArea.ShowChild(&iForm, true);
  EXPECT_TRUE(child->isMaximized());
}

TEST_F(CVelumMdiAreaTest, KeepsThePlaceOfAMaximisedChild) {
  iArea.AddChild(&iForm);
  iArea.SetChildRect(&iForm, QRect(10, 20, 300, 200));
  iArea.ShowChild(&iForm, true);
  EXPECT_EQ(iArea.ChildRect(&iForm), QRect(10, 20, 300, 200));
  for (const bool maximise : {true, false}) {
    maximise ? iForm.parentWidget()->showMaximized() : iForm.parentWidget()->showMinimized();
    QApplication::processEvents();
    EXPECT_EQ(iArea.ChildRect(&iForm), QRect(10, 20, 300, 200));
  }
  iArea.SetChildRect(&iForm, QRect(30, 40, 310, 210));
  EXPECT_EQ(iForm.parentWidget()->geometry(), QRect(30, 40, 310, 210));
  iForm.parentWidget()->move(31, 41);
  EXPECT_EQ(iArea.ChildRect(&iForm), QRect(31, 41, 310, 210));
}

TEST_F(CVelumMdiAreaTest, AChildThatFollowsTheAreaKeepsItsFreePlace) {
  iArea.AddChild(&iForm);
  iArea.SetChildRect(&iForm, QRect(10, 20, 300, 200));
  iArea.ShowChild(&iForm, true);
  iForm.parentWidget()->showMaximized();
  for (const QSize size : {QSize(900, 700), QSize(400, 300)}) {
    iArea.resize(size);
    QApplication::processEvents();
    EXPECT_EQ(iForm.parentWidget()->size(), size);
    EXPECT_EQ(iArea.ChildRect(&iForm), QRect(10, 20, 300, 200));
  }
  iForm.parentWidget()->showNormal();
  EXPECT_EQ(iArea.ChildRect(&iForm), QRect(10, 20, 300, 200));
  iForm.parentWidget()->resize(320, 220);
  EXPECT_EQ(iArea.ChildRect(&iForm), QRect(10, 20, 320, 220)) << "noted again once it is free";
}

TEST_F(CVelumMdiAreaTest, TitlesFollowTheDesktop) {
  iArea.AddChild(&iForm);
  iArea.AddChild(&iOther);
  iArea.SetChildRect(&iForm, QRect(10, 20, 300, 200));
  iArea.SetChildRect(&iOther, QRect(10, 250, 300, 200));
  iArea.ShowChild(&iForm, true);
  iArea.ShowChild(&iOther, false);
  class Watch final : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* aEvent) override {
      iPaints += aEvent->type() == QEvent::Paint ? 1 : 0;
      return false;
    }
    int iPaints = 0;
  } watch;
  const QPalette before = QApplication::palette();
  QTest::qWait(300);
  const int light = Title();
  QApplication::setPalette(QPalette(QColor(56, 56, 60), QColor(45, 45, 48)));
  QApplication::processEvents();
  // The style of the desktop comes with it.
  for (ChildForm* form : {&iForm, &iOther}) {
    QEvent style(QEvent::StyleChange);
    QCoreApplication::sendEvent(form->parentWidget(), &style);
    form->parentWidget()->resize(form->parentWidget()->size() + QSize(1, 0));
  }
  QApplication::processEvents();
  iOther.parentWidget()->installEventFilter(&watch);
  QTest::qWait(250);
  watch.iPaints = 0;
  QTest::qWait(350);
  EXPECT_GT(watch.iPaints, 0) << "painted again when the toolkit uses the new colours";
  EXPECT_LT(Title(), light - 60);
  iOther.parentWidget()->removeEventFilter(&watch);
  QApplication::setPalette(before);
  QTest::qWait(600);
  EXPECT_EQ(Title(), light);
}

TEST_F(CVelumMdiAreaTest, CloseByTheUserReachesTheForm) {
  iArea.AddChild(&iForm);
  iArea.ShowChild(&iForm, true);
  iForm.iRefuse = true;
  EXPECT_FALSE(iForm.parentWidget()->close());
  EXPECT_EQ(iForm.iCloses, 1);
  EXPECT_TRUE(iForm.isVisible());
  iForm.iRefuse = false;
  EXPECT_TRUE(iForm.parentWidget()->close());
  EXPECT_FALSE(iForm.isVisible());
  // Still the same child.
  iArea.ShowChild(&iForm, true);
  EXPECT_TRUE(iForm.isVisible());
}

TEST_F(CVelumMdiAreaTest, RemovedFormIsItsOwnersAgain) {
  iArea.AddChild(&iForm);
  iArea.AddChild(&iForm);
  iArea.ShowChild(&iForm, true);
  EXPECT_EQ(iArea.subWindowList().size(), 1);
  iArea.RemoveChild(&iForm);
  EXPECT_EQ(iForm.parentWidget(), nullptr);
  EXPECT_FALSE(iForm.isVisible());
  EXPECT_TRUE(iArea.subWindowList().isEmpty());
  EXPECT_EQ(iArea.ChildRect(&iForm), QRect());
  iArea.RemoveChild(&iForm);
  iArea.ShowChild(&iForm, true);
  EXPECT_FALSE(iForm.isVisible());
}

TEST_F(CVelumMdiAreaTest, KeysThatNoChildTakesGoOn) {
  QLineEdit line(&iForm);
  QTextEdit text(&iForm);
  text.move(0, 30);
  text.setPlainText(u"a\nb\nc"_s);
  iArea.AddChild(&iForm);
  iArea.ShowChild(&iForm, true);
  line.show();
  text.show();
  line.setFocus();
  for (const int key : {Qt::Key_PageUp, Qt::Key_PageDown}) QTest::keyClick(&line, static_cast<Qt::Key>(key));
  QTest::keyClick(&line, Qt::Key_Left, Qt::AltModifier);
  QTest::keyClick(&line, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(iWindow.iKeys, (QList<int>{Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Left, Qt::Key_Right}));
  iWindow.iKeys.clear();
  text.setFocus();
  for (const int key : {Qt::Key_PageUp, Qt::Key_PageDown}) QTest::keyClick(&text, static_cast<Qt::Key>(key));
  EXPECT_TRUE(iWindow.iKeys.isEmpty());
}
