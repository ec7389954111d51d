#include "toolkit/CVelumBasePictureBox.h"

#include "support/WidgetTest.h"

#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QUrl>

namespace {

class Sink final : public CVelumBaseSink {
public:
  void BaseEvent(CVelumBaseControl&, EBaseEvent aEvent, bool&) override { iEvents.append(aEvent); }
  QList<EBaseEvent> iEvents;
};

class CVelumBasePictureBoxTest : public WidgetTest {
protected:
  CVelumBasePictureBoxTest() {
    iForm.resize(300, 200);
    iBox.SetPlace(0, 0);
    iBox.SetSize(1500, 1500);
    iBox.SetVisible(true);
    iForm.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&iForm));
  }
  [[nodiscard]] QLabel& Label() { return static_cast<QLabel&>(*iBox.Widget()); }
  [[nodiscard]] static QPixmap Pixmap(int aWidth, int aHeight) {
    QPixmap pixmap(aWidth, aHeight);
    pixmap.fill(Qt::green);
    return pixmap;
  }

  Sink iSink;
  QWidget iForm;
  CVelumBasePictureBox& iBox = *new CVelumBasePictureBox(u"fBox"_s, &iForm, &iSink);
};

TEST_F(CVelumBasePictureBoxTest, ThePictureStandsInTheCorner) {
  iBox.SetPicture(Pixmap(20, 10));
  const QImage shown = Label().grab().toImage();
  const QPoint corner = Label().contentsRect().topLeft();
  EXPECT_EQ(shown.pixelColor(corner), QColor(Qt::green));
  EXPECT_EQ(shown.pixelColor(corner + QPoint(19, 9)), QColor(Qt::green));
  EXPECT_NE(shown.pixelColor(corner + QPoint(20, 10)), QColor(Qt::green));
  iBox.SetPicture(Pixmap(2000, 2000));
  EXPECT_EQ(iBox.InnerSize(), Label().contentsRect().size()) << "the box does not grow";
  EXPECT_EQ(Label().size(), QSize(100, 100));
}

TEST_F(CVelumBasePictureBoxTest, ThePlaceholderIsSeenWithoutAPicture) {
  iBox.SetPlaceholder(u"nothing"_s);
  EXPECT_EQ(Label().text(), u"nothing"_s);
  iBox.SetPicture(Pixmap(5, 5));
  EXPECT_EQ(Label().text(), QString());
  iBox.SetPicture({});
  EXPECT_EQ(Label().text(), u"nothing"_s);
}

TEST_F(CVelumBasePictureBoxTest, ADoubleClickIsAClickADoubleClickAndAClick) {
  QTest::mouseClick(&Label(), Qt::LeftButton);
  QTest::mouseDClick(&Label(), Qt::LeftButton);
  QTest::mouseRelease(&Label(), Qt::LeftButton);
  EXPECT_EQ(iSink.iEvents, (QList<EBaseEvent>{EBaseClick, EBaseDblClick, EBaseClick}));
}

TEST_F(CVelumBasePictureBoxTest, OnlyAnInteractiveBoxHasKeysAndFocus) {
  EXPECT_EQ(Label().focusPolicy(), Qt::NoFocus);
  EXPECT_FALSE(Label().acceptDrops());
  QTest::keyClick(&Label(), Qt::Key_Space);
  EXPECT_TRUE(iSink.iEvents.isEmpty());
  iBox.SetInteractive();
  Label().setFocus();
  iSink.iEvents.clear();
  QTest::keyClick(&Label(), Qt::Key_Space);
  QTest::keyClick(&Label(), Qt::Key_Return);
  EXPECT_EQ(iSink.iEvents, (QList<EBaseEvent>{EBaseClick, EBaseDblClick}));
}

TEST_F(CVelumBasePictureBoxTest, KnowsWhatCanHoldAPicture) {
  QMimeData text;
  text.setText(u"text"_s);
  EXPECT_FALSE(CVelumBasePictureBox::CanHoldPicture(text));
  QMimeData web;
  web.setUrls({QUrl(u"https://example.org/a.png"_s)});
  EXPECT_FALSE(CVelumBasePictureBox::CanHoldPicture(web)) << "nothing is fetched";
  QMimeData file;
  file.setUrls({QUrl::fromLocalFile(u"/a.png"_s)});
  EXPECT_TRUE(CVelumBasePictureBox::CanHoldPicture(file));
  QMimeData bytes;
  bytes.setData(u"image/gif"_s, "GIF89a");
  EXPECT_TRUE(CVelumBasePictureBox::CanHoldPicture(bytes));
  QMimeData image;
  image.setImageData(Pixmap(3, 3).toImage());
  EXPECT_TRUE(CVelumBasePictureBox::CanHoldPicture(image));
}

} // namespace
