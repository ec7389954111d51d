// The card window as a child window with a frame: sizes, and a desktop that changes while the window is open.
#include "runtime/RuntimeFixture.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumMdiArea.h"

#include <QAbstractScrollArea>
#include <QBuffer>
#include <QMdiSubWindow>
#include <QScrollBar>
#include <QTest>

namespace {

class AreaFrame final : public FakeFrame {
public:
  AreaFrame() {
    iMdi.resize(1000, 800);
    iMdi.show();
  }
  void AddChild(QWidget* aForm) override { iMdi.AddChild(aForm); }
  void RemoveChild(QWidget* aForm) override { iMdi.RemoveChild(aForm); }
  void ShowChild(QWidget* aForm, bool aRaise) override { iMdi.ShowChild(aForm, aRaise); }
  void HideChild(QWidget* aForm) override { iMdi.HideChild(aForm); }

  CVelumMdiArea iMdi;
};

// Notes whether anything was painted while a resize was at work.
class ResizeWatch final : public QObject, public CVelumEventPump {
public:
  explicit ResizeWatch(QWidget& aForm) : iForm(aForm) {
    CVelumSeams::SetEventPump(this);
    aForm.installEventFilter(this);
  }
  ~ResizeWatch() override { CVelumSeams::SetEventPump(nullptr); }
  void Pump() override { iPumps += iResizing ? 1 : 0; }
  // Gives the window a size and tells how often events were let in before the resize was over.
  int Resize(const QSize& aSize) {
    iResizing = true;
    iForm.resize(aSize);
    iResizing = false;
    return iPumps;
  }

private:
  QWidget& iForm;
  bool iResizing = false;
  int iPumps = 0;
};

// Lets events in, and once, when it is time, does something of its own before.
class OnePump final : public CVelumEventPump {
public:
  void Pump() override {
    ++iPumps;
    if (iOnce && iIsTime()) std::exchange(iOnce, {})();
    QCoreApplication::processEvents();
  }
  std::function<bool()> iIsTime;
  std::function<void()> iOnce;
  int iPumps = 0;
};

class CVelumCardWindowTest : public RuntimeTest {
protected:
  ~CVelumCardWindowTest() override {
    // The view goes while its frame is there.
    if (gStackView) gStackView->Release();
    gStackView = nullptr;
  }
  QMdiSubWindow& Child() { return *qobject_cast<QMdiSubWindow*>(Form().parentWidget()); }
  [[nodiscard]] QColor Pixel(const QPoint& aAt) { return Form().grab().toImage().pixelColor(aAt); }
  // A change of the desktop comes in two steps.
  static void Settle() {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }
  static QPalette Dark() {
    QPalette palette(QColor(56, 56, 60), QColor(45, 45, 48));
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    return palette;
  }

  AreaFrame iArea;
};

TEST_F(CVelumCardWindowTest, NothingIsLetInDuringAResize) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  field->SetVisChar(200);
  AddCard(u"a"_s);
  Open();
  QCoreApplication::processEvents();
  const float before = Base(field).Width();
  ResizeWatch watch(Child());
  EXPECT_EQ(watch.Resize(QSize(700, 600)), 0);
  EXPECT_EQ(Base(field).Width(), before) << "laid out when it is over";
  QCoreApplication::processEvents();
  EXPECT_EQ(Base(field).Width(), Form().ClientWidth() - Base(field).Left() - 20);
}

TEST_F(CVelumCardWindowTest, AResizeInTheMiddleOfALayoutIsMadeUpFor) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  field->SetVisChar(200);
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s, AddBackground(u"Other"_s));
  Open();
  QCoreApplication::processEvents();
  OnePump pump;
  CVelumSeams::SetEventPump(&pump);
  View().GoToCard(second);
  // The layout of the first card stands, and its values are still to come.
  pump.iIsTime = [&] { return View().CurCard() != second && field->BaseControl(); };
  pump.iOnce = [this] { Child().resize(700, 600); };
  Ref<CVelumCard> card;
  EXPECT_TRUE(View().OrderPrev(card));
  QTest::qWait(60);
  CVelumSeams::SetEventPump(nullptr);
  EXPECT_FALSE(View().ResizePending());
  EXPECT_EQ(Base(field).Width(), Form().ClientWidth() - Base(field).Left() - 20);
}

TEST_F(CVelumCardWindowTest, ASizeThatStaysIsNotLaidOutAgain) {
  AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  QCoreApplication::processEvents();
  EXPECT_TRUE(View().CardView()->FitsForm());
  OnePump pump;
  CVelumSeams::SetEventPump(&pump);
  View().BaseFormResize();
  CVelumSeams::SetEventPump(nullptr);
  EXPECT_EQ(pump.iPumps, 0);
}

TEST_F(CVelumCardWindowTest, AMaximisedWindowIsLaidOutForTheSizeThatItHas) {
  iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
  AddCard(u"a card with a long name"_s);
  Open();
  const QRectF free = Form().Place();
  const float inside = Form().ClientWidth();
  EXPECT_GT(free.width(), static_cast<qreal>(inside)) << "there is a frame";
  EXPECT_EQ(Pool(u"fGenLine0"_s).Width(), static_cast<float>(free.width()));
  Child().showMaximized();
  QCoreApplication::processEvents();
  const float outer = CVelumTwips::FromPixel(Child().width());
  EXPECT_EQ(Child().width(), iArea.iMdi.width());
  EXPECT_EQ(Form().OuterWidth(), outer);
  EXPECT_EQ(Pool(u"fGenLine0"_s).Width(), outer);
  EXPECT_EQ(Pool(u"fGenLabel0"_s).Width(), outer);
  EXPECT_EQ(Pool(u"fProgressBox"_s).Left(), outer - Pool(u"fProgressBox"_s).Width() - 20);
  EXPECT_EQ(Form().Place(), free) << "the place to be stored is that of the free window";
  iArea.iMdi.resize(900, 700);
  QCoreApplication::processEvents();
  EXPECT_EQ(Pool(u"fGenLine0"_s).Width(), CVelumTwips::FromPixel(900));
  View().UpdateRect();
  EXPECT_EQ(View().CardViewPlace(), free);
  Child().showNormal();
  QCoreApplication::processEvents();
  EXPECT_EQ(Pool(u"fGenLine0"_s).Width(), static_cast<float>(free.width()));
}

TEST_F(CVelumCardWindowTest, AWallpaperIsCentredByTheSizeWithTheFrame) {
  const auto blob = MakeRef<CVelumBlob>(gStack->IdGen().NextId());
  QByteArray bytes;
  QPixmap picture(20, 20);
  picture.fill(Qt::green);
  QBuffer buffer(&bytes);
  picture.save(&buffer, "PNG");
  blob->SetBytes(bytes);
  gStack->BlobStore()->AddBlob(blob);
  blob->IncRefCount();
  iSet->SetFlags(ECseDenseLayout | ECseShowWallPaper);
  iSet->SetWallPaperId(blob->Id());
  AddCard(u"a"_s);
  Open();
  const auto expectCentred = [this] {
    QCoreApplication::processEvents();
    const QSize outer = Child().size();
    ASSERT_NE(outer, Form().size());
    const QRect spot((outer.width() - 20) / 2, (outer.height() - 20) / 2, 20, 20);
    EXPECT_EQ(Pixel(spot.topLeft()), QColor(Qt::green));
    EXPECT_EQ(Pixel(spot.bottomRight()), QColor(Qt::green));
    EXPECT_NE(Pixel(spot.topLeft() - QPoint(1, 1)), QColor(Qt::green));
    EXPECT_NE(Pixel(spot.bottomRight() + QPoint(1, 1)), QColor(Qt::green));
  };
  Child().resize(400, 300);
  expectCentred();
  Child().resize(500, 404);
  expectCentred();
}

TEST_F(CVelumCardWindowTest, StatedColoursStayWhenTheDesktopChanges) {
  iSet->SetBackColor(0xC0E0F0);
  const auto text = AddField(iSet, u"A"_s, EConText);
  text->SetVisLines(3);
  text->SetBackColor(0xE0FFFF);
  text->SetFont(MakeRef<CVelumFont>(QString(), ENoShort, 0x203060));
  const auto plain = AddField(iSet, u"B"_s, EConText);
  const auto card = AddCard(u"a"_s);
  AddCard(u"b"_s);
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"many\r\n"_s.repeated(20)));
  Open();
  QCoreApplication::processEvents();
  auto* area = qobject_cast<QAbstractScrollArea*>(Base(text).Widget());
  const auto colors = [&] {
    Settle();
    const QPalette& inner = area->viewport()->palette();
    return QList<QColor>{inner.color(QPalette::Base), inner.color(QPalette::Text),
                         Form().palette().color(QPalette::Window),
                         Label(text).Widget()->palette().color(QPalette::WindowText),
                         Base(plain).Widget()->palette().color(QPalette::Base)};
  };
  const QList<QColor> before = colors();
  const QColor bar = area->verticalScrollBar()->palette().color(QPalette::Button);
  const QImage picture = Form().grab().toImage();
  const QPalette light = QApplication::palette();
  QApplication::setPalette(Dark());
  EXPECT_EQ(colors(), before);
  EXPECT_GT(area->verticalScrollBar()->palette().color(QPalette::Button).lightness(), 200);
  // Some desktops give each widget the new palette as one of its own.
  for (QWidget* widget : Form().findChildren<QWidget*>()) widget->setPalette(Dark());
  QEvent change(QEvent::ThemeChange);
  QCoreApplication::sendEvent(&Form(), &change);
  EXPECT_EQ(colors(), before);
  Ref<CVelumCard> next;
  EXPECT_TRUE(View().OrderNext(next));
  EXPECT_TRUE(View().OrderPrev(next));
  EXPECT_EQ(colors(), before) << "and on the next card";
  QApplication::setPalette(light);
  EXPECT_EQ(colors(), before);
  EXPECT_EQ(area->verticalScrollBar()->palette().color(QPalette::Button), bar);
  EXPECT_EQ(Form().grab().toImage(), picture);
}

TEST_F(CVelumCardWindowTest, ACardWithoutColoursFollowsTheDesktop) {
  const auto text = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  QCoreApplication::processEvents();
  const QPalette light = QApplication::palette();
  QApplication::setPalette(Dark());
  Settle();
  EXPECT_LT(Form().palette().color(QPalette::Window).lightness(), 80);
  EXPECT_LT(Base(text).Widget()->palette().color(QPalette::Base).lightness(), 80);
  QApplication::setPalette(light);
  Settle();
  EXPECT_EQ(Form().palette().color(QPalette::Window), light.color(QPalette::Window));
}

} // namespace
