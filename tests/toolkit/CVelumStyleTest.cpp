#include "toolkit/CVelumStyle.h"

#include "support/WidgetTest.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleFactory>
#include <QTest>
#include <QTextEdit>

namespace {

// A desktop that wants pictures on the buttons of dialogs.
class IconStyle final : public QProxyStyle {
public:
  IconStyle() : QProxyStyle(QStyleFactory::create(u"Fusion"_s)) {}
  int styleHint(StyleHint aHint, const QStyleOption* aOption, const QWidget* aWidget,
                QStyleHintReturn* aReturn) const override {
    if (aHint == SH_DialogButtonBox_ButtonsHaveIcons) return 1;
    return QProxyStyle::styleHint(aHint, aOption, aWidget, aReturn);
  }
};

int IconsOf(QStyle& aStyle) {
  QDialogButtonBox box;
  box.setStyle(&aStyle);
  box.setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Close);
  int icons = 0;
  for (const QAbstractButton* button : box.buttons()) icons += button->icon().isNull() ? 0 : 1;
  EXPECT_EQ(box.buttons().size(), 3);
  return icons;
}

} // namespace

using CVelumStyleTest = WidgetTest;

TEST_F(CVelumStyleTest, ButtonsOfDialogsHaveNoPictures) {
  IconStyle desktop;
  EXPECT_EQ(IconsOf(desktop), 3);
  CVelumStyle style(new IconStyle);
  EXPECT_EQ(IconsOf(style), 0);
}

TEST_F(CVelumStyleTest, TheRestIsTheDesktops) {
  const IconStyle iconStyle;
  const QStyle& desktop = iconStyle;
  const CVelumStyle style(new IconStyle);
  EXPECT_EQ(style.styleHint(QStyle::SH_DialogButtonLayout), desktop.styleHint(QStyle::SH_DialogButtonLayout));
  EXPECT_EQ(style.pixelMetric(QStyle::PM_ButtonMargin), desktop.pixelMetric(QStyle::PM_ButtonMargin));
}

TEST_F(CVelumStyleTest, ALongTextHasAFrameOfTheSelectionsColourWhileItHasTheFocus) {
  CVelumStyle style(QStyleFactory::create(u"Fusion"_s));
  QWidget window;
  QTextEdit text(&window);
  QLineEdit other(&window);
  text.setStyle(&style);
  text.setGeometry(20, 40, 100, 60);
  window.resize(200, 150);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const auto frame = [&] { return window.grab().toImage().pixelColor(70, 40); };
  other.setFocus();
  EXPECT_NE(frame(), text.palette().color(QPalette::Highlight));
  text.setFocus();
  EXPECT_EQ(frame(), text.palette().color(QPalette::Highlight));
  EXPECT_EQ(window.grab().toImage().pixelColor(119, 70), text.palette().color(QPalette::Highlight));
}
