#include "toolkit/CVelumWinMan.h"

#include "core/CVelumError.h"
#include "core/CVelumMsg.h"
#include "support/WidgetTest.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumMdiArea.h"
#include "toolkit/CVelumReg.h"
#include "toolkit/CVelumScreenFit.h"
#include "toolkit/CVelumToolkitPump.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

namespace {

class TestObject final : public CVelumObject {
public:
  [[nodiscard]] QString ObjDescr() const override { return u"TestObject"_s; }
};

// A form that notes what happens to it.
class TestForm final : public CVelumDialogForm {
public:
  explicit TestForm(const QString& aName, bool aSizable = true) : CVelumDialogForm(aName, aSizable) {
    resize(300, 200);
  }
  void Load() override {
    ++iLoads;
    CVelumDialogForm::Load();
  }
  void Unload() override {
    ++iUnloads;
    CVelumDialogForm::Unload();
  }
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override {
    iKinds.append(aKind);
    iObj1 = aObj1;
    iObj2 = aObj2;
    if (iOnNotify) iOnNotify();
  }
  int iLoads = 0;
  int iUnloads = 0;
  QList<int> iKinds;
  CVelumObject* iObj1 = nullptr;
  CVelumObject* iObj2 = nullptr;
  std::function<void()> iOnNotify;
};

class TestFrame final : public QWidget, public CVelumForm {
public:
  TestFrame() : CVelumForm(u"CVelumFrame"_s, true) { resize(600, 400); }
  QWidget* Widget() override { return this; }
};

// Counts the yields.
class CountingPump final : public CVelumEventPump {
public:
  CountingPump() { CVelumSeams::SetEventPump(this); }
  ~CountingPump() override { CVelumSeams::SetEventPump(nullptr); }
  void Pump() override { ++iPumps; }
  void PumpPaint() override { ++iPaints; }
  int iPumps = 0;
  int iPaints = 0;
};

class CVelumWinManTest : public WidgetTest {
protected:
  CVelumWinManTest() {
    CVelumReg::SetFolder(iFolder.Path());
    CVelumWinMan::InitWinMan();
  }
  ~CVelumWinManTest() override {
    CVelumWinMan::SetFactory(u"CVelumWelcome"_s, {});
    CVelumSeams::SetChangeSink(nullptr);
    CVelumReg::SetFolder({});
  }
  static void Put(const QString& aName, const QString& aText) {
    CVelumReg::PutVal(u"Windows"_s, aName, aText, false);
  }
  static QString Stored(const QString& aName) {
    QString text;
    bool found = false;
    CVelumReg::GetVal(u"Windows"_s, aName, text, found, false);
    return text;
  }
  static double Twips(int aPixels) { return aPixels * 15.0; }
};

} // namespace

TEST_F(CVelumWinManTest, RegistersTheNamesInTheirOrder) {
  const QStringList names{u"CVelumFrame"_s,
                          u"CVelumStackEdit"_s,
                          u"CVelumGenForm"_s,
                          u"CVelumCardListForm"_s,
                          u"CVelumSearchForm"_s,
                          u"CVelumNewStackForm"_s,
                          u"CVelumSortKeyEdit"_s,
                          u"CVelumControlEdit"_s,
                          u"CVelumOptionEdit"_s,
                          u"CVelumFontSelect"_s,
                          u"CVelumCardSelect"_s,
                          u"CVelumBackgroundEdit"_s,
                          u"CVelumCardEdit"_s,
                          u"CVelumValueEdit"_s,
                          u"CVelumCsvImportOptions"_s,
                          u"CVelumWikiTextEdit"_s,
                          u"CVelumSortKeyEdit1"_s,
                          u"CVelumControlSelect"_s,
                          u"CVelumScriptEdit"_s,
                          u"CVelumWelcome"_s,
                          u"CVelumExportOptions"_s,
                          u"CVelumCsvExportOptions"_s,
                          u"CVelumImportOptions"_s,
                          u"CVelumPictureViewer"_s};
  ASSERT_EQ(CVelumWinMan::FormCount(), 24);
  for (int i = 0; i < 24; ++i) EXPECT_EQ(CVelumWinMan::FormName(i), names[i]);
  EXPECT_THROW(static_cast<void>(CVelumWinMan::FormName(24)), CVelumException);
  EXPECT_THROW(static_cast<void>(CVelumWinMan::FormName(-1)), CVelumException);
}

TEST_F(CVelumWinManTest, TableHoldsThirtyOneNames) {
  for (int i = 24; i < 31; ++i) CVelumWinMan::RegisterFormName(u"More"_s + QString::number(i));
  EXPECT_EQ(CVelumWinMan::FormCount(), 31);
  try {
    CVelumWinMan::RegisterFormName(u"OneTooMany"_s);
    FAIL() << "no error";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostIndex);
  }
}

TEST_F(CVelumWinManTest, NameToFormMakesOneInstance) {
  int made = 0;
  CVelumWinMan::SetFactory(u"CVelumWelcome"_s, [&] {
    ++made;
    return new TestForm(u"CVelumWelcome"_s);
  });
  CVelumForm* form = CVelumWinMan::NameToForm(u"CVelumWelcome"_s);
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(CVelumWinMan::NameToForm(u"CVelumWelcome"_s), form);
  EXPECT_EQ(made, 1);
  EXPECT_FALSE(form->IsLoaded());
  delete form;
  EXPECT_NE(CVelumWinMan::NameToForm(u"CVelumWelcome"_s), nullptr);
  EXPECT_EQ(made, 2);
  delete CVelumWinMan::NameToForm(u"CVelumWelcome"_s);
}

TEST_F(CVelumWinManTest, NameToFormAssertsForNamesWithoutForm) {
  for (const QString& name : {u"CVelumNothing"_s, u"CVelumSortKeyEdit"_s, u"cvelumframe"_s}) {
    EXPECT_THROW(static_cast<void>(CVelumWinMan::NameToForm(name)), CVelumException);
    EXPECT_TRUE(iPresenter.LastText().contains(u"NameToForm name "_s + name));
    iPresenter.Answer(true);
    EXPECT_EQ(CVelumWinMan::NameToForm(name), nullptr);
  }
}

TEST_F(CVelumWinManTest, KnownFormsAndTheFrame) {
  TestForm known(u"CVelumWelcome"_s);
  TestForm unknown(u"CVelumSave"_s);
  TestFrame frame;
  EXPECT_TRUE(CVelumWinMan::IsKnownForm(known));
  EXPECT_FALSE(CVelumWinMan::IsKnownForm(unknown));
  EXPECT_TRUE(CVelumWinMan::IsFrame(frame));
  EXPECT_FALSE(CVelumWinMan::IsFrame(known));
  EXPECT_EQ(CVelumWinMan::Frame(), nullptr);
  CVelumWinMan::LoadForm(frame);
  EXPECT_EQ(CVelumWinMan::Frame(), &frame);
}

TEST_F(CVelumWinManTest, ShowDialogLoadsOnceAndUnloadForgets) {
  auto* form = new TestForm(u"CVelumWelcome"_s);
  const QPointer<TestForm> alive(form);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s));
  CVelumWinMan::ShowDialog(*form);
  CVelumWinMan::ShowDialog(*form);
  EXPECT_EQ(form->iLoads, 1);
  EXPECT_TRUE(form->isVisible());
  EXPECT_FALSE(form->isModal());
  EXPECT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s));
  CVelumWinMan::UnloadForm(*form);
  CVelumWinMan::UnloadForm(*form);
  EXPECT_EQ(form->iUnloads, 1);
  EXPECT_FALSE(form->isVisible());
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(alive.isNull());
}

TEST_F(CVelumWinManTest, ShowDialogBringsAMinimisedOneBack) {
  auto* form = new TestForm(u"CVelumWelcome"_s);
  CVelumWinMan::ShowDialog(*form);
  form->showMinimized();
  ASSERT_TRUE(form->isMinimized());
  CVelumWinMan::ShowDialog(*form);
  EXPECT_FALSE(form->isMinimized());
  EXPECT_TRUE(form->isVisible());
  EXPECT_TRUE(QTest::qWaitForWindowActive(form));
  CVelumWinMan::UnloadForm(*form);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(CVelumWinManTest, ShowDialogModalReturnsWhenClosed) {
  auto* form = new TestForm(u"CVelumWelcome"_s);
  bool modal = false;
  QTimer::singleShot(0, form, [&] {
    modal = form->isModal();
    form->close();
  });
  CVelumWinMan::ShowDialog(*form, true);
  EXPECT_TRUE(modal);
  EXPECT_EQ(form->iUnloads, 1);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(CVelumWinManTest, DialogEndsByEscapeAndByItsCloseBox) {
  for (const bool escape : {true, false}) {
    auto* form = new TestForm(u"CVelumWelcome"_s);
    CVelumWinMan::ShowDialog(*form);
    if (escape)
      QTest::keyClick(form, Qt::Key_Escape);
    else
      form->close();
    EXPECT_EQ(form->iUnloads, 1);
    EXPECT_FALSE(form->IsLoaded());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(CVelumWinManTest, WindowGoesAlsoWhenItsPlaceCannotBeKept) {
  iFolder.Write(u"blocked"_s, "x");
  CVelumReg::SetFolder(iFolder.Path(u"blocked"_s));
  const QPointer<TestForm> form(new TestForm(u"CVelumWelcome"_s));
  CVelumWinMan::ShowDialog(*form);
  EXPECT_THROW(CVelumWinMan::UnloadForm(*form), CVelumException);
  EXPECT_FALSE(form->isVisible());
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(form.isNull());
}

TEST_F(CVelumWinManTest, F1OpensTheHelpOfTheFocusedControl) {
  TestForm form(u"CVelumWelcome"_s);
  QLineEdit name(&form);
  name.setObjectName(u"fName"_s);
  CVelumWinMan::ShowDialog(form);
  form.setFocus();
  QTest::keyClick(&form, Qt::Key_F1);
  name.setFocus();
  QTest::keyClick(&name, Qt::Key_F1);
  EXPECT_EQ(iPresenter.HelpPages(), (QList<QString>{u"Welcome"_s, u"WelcomeName"_s}));
}

TEST_F(CVelumWinManTest, ChangeNotifyReachesLoadedKnownFormsInOrder) {
  CountingPump pump;
  TestForm first(u"CVelumWelcome"_s);
  TestForm second(u"CVelumCardEdit"_s);
  TestForm unloaded(u"CVelumStackEdit"_s);
  TestForm unknown(u"CVelumSave"_s);
  for (TestForm* form : {&second, &unknown, &first}) CVelumWinMan::LoadForm(*form);
  QList<int> order;
  first.iOnNotify = [&] { order.append(1); };
  second.iOnNotify = [&] { order.append(2); };
  const auto obj1 = MakeRef<TestObject>();
  const auto obj2 = MakeRef<TestObject>();
  CVelumSeams::ChangeNotify(EChangeBackgroundGoes, obj1.Get(), obj2.Get());
  EXPECT_EQ(order, (QList<int>{2, 1}));
  EXPECT_EQ(first.iKinds, QList<int>{6});
  EXPECT_EQ(first.iObj1, obj1.Get());
  EXPECT_EQ(first.iObj2, obj2.Get());
  EXPECT_TRUE(unknown.iKinds.isEmpty());
  EXPECT_TRUE(unloaded.iKinds.isEmpty());
  // A yield before and after each listener, of the kind that lets no commands in.
  EXPECT_EQ(pump.iPaints, 4);
  EXPECT_EQ(pump.iPumps, 0);
}

TEST_F(CVelumWinManTest, ChangeNotifyLeavesOutFormsThatWentMeanwhile) {
  auto* first = new TestForm(u"CVelumWelcome"_s);
  auto* second = new TestForm(u"CVelumCardEdit"_s);
  CVelumWinMan::LoadForm(*first);
  CVelumWinMan::LoadForm(*second);
  first->iOnNotify = [&] {
    CVelumWinMan::UnloadForm(*first);
    delete second;
  };
  CVelumWinMan::ChangeNotify(EChangeStackCloses, nullptr, nullptr);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardEdit"_s));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(CVelumWinManTest, PlaceIsKeptAsFourNumbers) {
  TestForm form(u"CVelumWelcome"_s);
  form.move(12, 34);
  CVelumWinMan::SaveWindow(form);
  EXPECT_EQ(Stored(u"CVelumWelcome"_s), u" 180, 510, 4500, 3000"_s);
  form.move(-100, 0);
  CVelumWinMan::SaveWindow(form);
  EXPECT_EQ(Stored(u"CVelumWelcome"_s), u"-1500, 0, 4500, 3000"_s);
  form.move(50, 60);
  form.resize(10, 10);
  CVelumWinMan::RestoreWindow(form);
  EXPECT_EQ(form.pos(), QPoint(-100, 0));
  EXPECT_EQ(form.size(), QSize(300, 200));
}

TEST_F(CVelumWinManTest, UnsoundPlacesAreNotRestored) {
  TestForm form(u"CVelumWelcome"_s);
  form.move(50, 60);
  for (const QString& text : {u""_s, u"1"_s, u"1,2,3"_s, u"1,2,3,"_s, u"a,2,3000,4000"_s, u"1,2,x,4000"_s,
                              u",,,"_s, u"0,0,0,4000"_s, u"0,0,-1,4000"_s, u"0,0,4000,0"_s, u"0,0,4000,-5"_s,
                              u"-4000,0,4000,4000"_s, u"-4001,0,4000,4000"_s, u"0,-4000,4000,4000"_s,
                              u"0,0,inf,4000"_s, u"nan,0,4000,4000"_s, u"1;2;3;4"_s}) {
    Put(form.Name(), text);
    CVelumWinMan::RestoreWindow(form);
    EXPECT_EQ(form.pos(), QPoint(50, 60)) << text.toStdString();
    EXPECT_EQ(form.size(), QSize(300, 200)) << text.toStdString();
  }
}

TEST_F(CVelumWinManTest, WindowThatStillShowsIsRestoredAsItWas) {
  TestForm form(u"CVelumWelcome"_s);
  Put(form.Name(), u"-3985,-1485,4500,3000"_s);
  CVelumWinMan::RestoreWindow(form);
  EXPECT_EQ(form.pos(), QPoint(-266, 0)); // nobody could reach a title bar above the screen
  Put(form.Name(), u" 150, 300 ,4500,3000,and more"_s);
  CVelumWinMan::RestoreWindow(form);
  EXPECT_EQ(form.pos(), QPoint(10, 20));
}

TEST_F(CVelumWinManTest, FixedDialogKeepsItsDesignSize) {
  TestForm form(u"CVelumWelcome"_s, false);
  Put(form.Name(), u"150,300,9000,9000"_s);
  CVelumWinMan::RestoreWindow(form);
  EXPECT_EQ(form.pos(), QPoint(10, 20));
  EXPECT_EQ(form.size(), QSize(300, 200));
}

TEST_F(CVelumWinManTest, EdgesBeyondTheFrameBecomeZero) {
  TestFrame frame;
  CVelumWinMan::LoadForm(frame);
  frame.resize(600, 400);
  TestForm form(u"CVelumWelcome"_s);
  CVelumWinMan::SetFormRect(form, QRectF(Twips(600), Twips(400), Twips(50), Twips(60)));
  EXPECT_EQ(form.pos(), QPoint(600, 400));
  EXPECT_EQ(form.size(), QSize(50, 60));
  CVelumWinMan::SetFormRect(form, QRectF(Twips(601), Twips(401), Twips(50), Twips(60)));
  EXPECT_EQ(form.pos(), QPoint(0, 0));
}

TEST_F(CVelumWinManTest, EdgesOfTheFrameBeyondTheScreenBecomeZero) {
  TestFrame frame;
  const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
  Put(frame.Name(), u"%1,%2,3000,4500"_s.arg(Twips(screen.width() + 1)).arg(Twips(screen.height())));
  CVelumWinMan::RestoreWindow(frame);
  EXPECT_EQ(frame.x(), 0);
  EXPECT_EQ(frame.size(), QSize(200, 300));
  CVelumWinMan::SetFormRect(frame, QRectF(0, Twips(screen.height()), 3000, 4500));
  EXPECT_EQ(frame.pos(), QPoint(0, screen.height()));
}

TEST_F(CVelumWinManTest, PlacesOfALargerScreenComeBackOntoThisOne) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  const auto inside = [&screen](const QWidget& aWindow) {
    return screen.contains(QRect(aWindow.pos(), aWindow.size())) &&
           aWindow.y() + aWindow.height() < screen.bottom() - 10; // room for the title bar
  };
  TestFrame frame;
  CVelumWinMan::LoadForm(frame);
  Put(frame.Name(), u"960,600,15000,18000"_s);
  CVelumWinMan::RestoreWindow(frame);
  EXPECT_TRUE(inside(frame)) << frame.x() << ' ' << frame.y() << ' ' << frame.width() << ' '
                             << frame.height();
  for (const bool sizable : {true, false}) {
    TestForm form(u"CVelumWelcome"_s, sizable);
    Put(form.Name(), u"%1,%2,6000,4500"_s.arg(Twips(screen.width() - 20)).arg(Twips(screen.height() - 30)));
    CVelumWinMan::RestoreWindow(form);
    EXPECT_TRUE(inside(form)) << form.x() << ' ' << form.y();
    EXPECT_EQ(form.size(), sizable ? QSize(400, 300) : QSize(300, 200));
  }
}

TEST_F(CVelumWinManTest, ScreensAreFittedByMovingAndOnlyThenByCutting) {
  const QRect screen(100, 50, 1000, 600);
  const auto fit = [&](const QRect& aPlace) { return CVelumScreenFit::Fit(aPlace, screen, 30); };
  EXPECT_EQ(fit({200, 100, 300, 200}), QRect(200, 100, 300, 200));
  EXPECT_EQ(fit({900, 100, 300, 200}), QRect(800, 100, 300, 200));
  EXPECT_EQ(fit({200, 500, 300, 200}), QRect(200, 420, 300, 200));
  EXPECT_EQ(fit({200, 20, 300, 200}), QRect(200, 50, 300, 200));
  EXPECT_EQ(fit({-50, 60, 300, 200}), QRect(-50, 60, 300, 200));
  EXPECT_EQ(fit({200, 100, 2000, 2000}), QRect(100, 50, 1000, 570));
}

TEST_F(CVelumWinManTest, EndlessSizesAreCut) {
  TestFrame frame;
  CVelumWinMan::SetFormRect(frame, QRectF(0, 0, 1e30, 1e30));
  EXPECT_EQ(frame.size(), QGuiApplication::primaryScreen()->virtualSize());
  TestForm form(u"CVelumWelcome"_s);
  CVelumWinMan::SetFormRect(form, QRectF(-1e30, 1e30, 1e30, 1e30));
  EXPECT_LE(form.width(), 32767);
  EXPECT_EQ(form.y(), 0);
}

TEST_F(CVelumWinManTest, OnlyTheFrameHasADefaultPlace) {
  TestFrame frame;
  CVelumWinMan::RestoreWindow(frame);
  const QSize screen = QGuiApplication::primaryScreen()->size();
  EXPECT_EQ(frame.pos(), QPoint(screen.width() / 20, screen.height() / 20));
  EXPECT_EQ(frame.size(), QSize(std::min(1000, screen.width() - screen.width() / 10),
                                std::min(800, screen.height() - screen.height() / 10)));
  TestForm form(u"CVelumWelcome"_s);
  form.move(5, 6);
  CVelumWinMan::RestoreWindow(form);
  EXPECT_EQ(form.pos(), QPoint(5, 6));
}

TEST_F(CVelumWinManTest, PlaceOfAChildIsThatOfItsSubWindow) {
  CVelumMdiArea area;
  TestFrame form;
  area.AddChild(&form);
  form.SetPlace(QRectF(Twips(10), Twips(20), Twips(250), Twips(150)), true);
  EXPECT_EQ(form.parentWidget()->geometry(), QRect(10, 20, 250, 150));
  form.SetPlace(QRectF(Twips(11), Twips(22), 0, 0), false);
  EXPECT_EQ(form.Place(), QRectF(Twips(11), Twips(22), Twips(250), Twips(150)));
  area.RemoveChild(&form);
}

TEST_F(CVelumWinManTest, PumpDeliversCommandsOnlyWhenAsked) {
  CVelumToolkitPump pump;
  QLineEdit edit;
  edit.show();
  edit.setFocus();
  bool timer = false;
  QTimer::singleShot(0, &edit, [&] { timer = true; });
  pump.PumpPaint();
  EXPECT_TRUE(timer);
  bool called = false;
  QMetaObject::invokeMethod(
      &edit, [&] { called = true; }, Qt::QueuedConnection);
  pump.Pump();
  EXPECT_TRUE(called);
}

TEST_F(CVelumWinManTest, WaitCursorIsOnOrOff) {
  CVelumToolkitPump pump;
  pump.SetWaitCursor(true);
  pump.SetWaitCursor(true);
  ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
  pump.SetWaitCursor(false);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  pump.SetWaitCursor(false);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}
