#include "toolkit/CVelumSvgIcon.h"

#include "support/WidgetTest.h"
#include "toolkit/CVelumBaseButton.h"
#include "toolkit/CVelumBaseColor.h"

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QWidget>

namespace {

class CVelumSvgIconTest : public WidgetTest {
protected:
  CVelumSvgIconTest() {
    iPath = iFolder.Write(u"x.svg"_s,
                          "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 2 1\">"
                          "<rect x=\"0\" y=\"0\" width=\"1\" height=\"1\" fill=\"currentColor\"/>"
                          "<rect x=\"1\" y=\"0\" width=\"1\" height=\"1\" fill=\"Highlight\"/></svg>");
  }
  ~CVelumSvgIconTest() override { QApplication::setPalette(QPalette()); }
  // The colours in the middle of the two halves.
  static std::pair<QColor, QColor> Colors(const QIcon& aIcon, QIcon::Mode aMode) {
    const QImage image = aIcon.pixmap(QSize(40, 20), 1.0, aMode).toImage();
    return {image.pixelColor(10, 10), image.pixelColor(30, 10)};
  }
  QString iPath;
};

} // namespace

TEST_F(CVelumSvgIconTest, FollowsThePaletteOfTheMoment) {
  const QIcon icon = CVelumSvgIcon::Load(iPath);
  for (const QColor& text : {QColor(10, 20, 30), QColor(240, 230, 220)}) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Window, text.lightness() < 128 ? Qt::white : Qt::black);
    palette.setColor(QPalette::Highlight, QColor(120, 120, 130));
    palette.setColor(QPalette::HighlightedText, QColor(1, 2, 3));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(99, 98, 97));
    QApplication::setPalette(palette);
    EXPECT_EQ(Colors(icon, QIcon::Normal).first, text);
    EXPECT_NE(Colors(icon, QIcon::Normal).second, text);
    EXPECT_EQ(Colors(icon, QIcon::Disabled).first, QColor(99, 98, 97));
    EXPECT_EQ(Colors(icon, QIcon::Disabled).second, QColor(99, 98, 97));
    EXPECT_EQ(Colors(icon, QIcon::Selected).first, QColor(1, 2, 3));
  }
}

TEST_F(CVelumSvgIconTest, TakesOtherColoursWhereItIsTold) {
  const QIcon icon = CVelumSvgIcon::Load(iPath);
  const QColor desktop = Colors(icon, QIcon::Normal).first;
  QPalette palette;
  palette.setColor(QPalette::WindowText, QColor(10, 200, 30));
  {
    const CVelumSvgIcon::CColors colors(palette);
    EXPECT_EQ(Colors(icon, QIcon::Normal).first, QColor(10, 200, 30));
    palette.setColor(QPalette::WindowText, QColor(1, 2, 3));
    {
      const CVelumSvgIcon::CColors inner(palette);
      EXPECT_EQ(Colors(icon, QIcon::Normal).first, QColor(1, 2, 3));
    }
    EXPECT_EQ(Colors(icon, QIcon::Normal).first, QColor(10, 200, 30));
  }
  EXPECT_EQ(Colors(icon, QIcon::Normal).first, desktop);
}

TEST_F(CVelumSvgIconTest, PictureOfAButtonStandsOutFromItsFace) {
  QApplication::setPalette(QPalette(QColor(56, 56, 60), QColor(45, 45, 48)));
  QWidget form;
  form.setPalette(CVelumBaseColor::CardPalette(0xE0F0FF, QApplication::palette()));
  CVelumBaseButton button(u"b"_s, &form, nullptr);
  button.SetPicture(CVelumSvgIcon::Load(iPath), u"tip"_s);
  button.SetSize(900, 600);
  button.SetVisible(true);
  form.resize(100, 60);
  form.show();
  const QImage image = button.Widget()->grab().toImage();
  QPoint middle = image.rect().center();
  middle.rx() -= 3;
  EXPECT_LT(image.pixelColor(middle).lightness(), 60) << "a dark picture";
  EXPECT_GT(image.pixelColor(4, image.height() / 2).lightness(), 180) << "on a light button";
}

TEST_F(CVelumSvgIconTest, HasThePixelsOfTheScreen) {
  const QIcon icon = CVelumSvgIcon::Load(iPath);
  const QPixmap pixmap = icon.pixmap(QSize(24, 24), 2.0);
  EXPECT_EQ(pixmap.size(), QSize(48, 48));
  EXPECT_EQ(pixmap.devicePixelRatio(), 2.0);
  // Drawn, not blown up: the edge between the halves is sharp.
  const QImage image = pixmap.toImage();
  EXPECT_NE(image.pixelColor(23, 24), image.pixelColor(24, 24));
  EXPECT_EQ(image.pixelColor(22, 24), image.pixelColor(23, 24));
}

TEST_F(CVelumSvgIconTest, MissingFileIsANullIcon) {
  EXPECT_TRUE(CVelumSvgIcon::Load(iFolder.Path(u"none.svg"_s)).isNull());
}
