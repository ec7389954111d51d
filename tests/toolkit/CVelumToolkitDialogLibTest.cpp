#include "toolkit/CVelumToolkitDialogLib.h"

#include "core/CVelumError.h"
#include "support/WidgetTest.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTextEdit>
#include <QTimer>
#include <functional>

namespace {

class CVelumToolkitDialogLibTest : public WidgetTest {
protected:
  static QColor Back(const QWidget& aCtl) { return aCtl.palette().color(QPalette::Base); }
  static QColor Usual() { return QApplication::palette().color(QPalette::Base); }
  static QColor Grey() { return {212, 208, 200}; }
  // Runs aUse on the colour dialog that opens next.
  static void WhenColorDialog(const std::function<void(QColorDialog&)>& aUse) {
    QTimer::singleShot(0, qApp, [aUse] {
      auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      aUse(*dialog);
    });
  }
};

// A dark desktop for as long as it lives.
class CDarkDesktop {
public:
  CDarkDesktop() {
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Window, QColor(50, 50, 50));
    dark.setColor(QPalette::Text, Qt::white);
    QApplication::setPalette(dark);
  }
  ~CDarkDesktop() { QApplication::setPalette(iBefore); }

private:
  QPalette iBefore = QApplication::palette();
};

} // namespace

TEST_F(CVelumToolkitDialogLibTest, TextBoxIsLockedAndEmptiedOnlyWhenAsked) {
  QLineEdit line;
  line.setText(u"text"_s);
  CVelumDialogLib::SetEnabled(line, false, false);
  EXPECT_TRUE(line.isReadOnly());
  EXPECT_TRUE(line.isEnabled());
  EXPECT_EQ(line.text(), u"text"_s);
  EXPECT_EQ(Back(line), Grey());
  CVelumDialogLib::SetEnabled(line, true, true);
  EXPECT_FALSE(line.isReadOnly());
  EXPECT_EQ(line.text(), u"text"_s);
  EXPECT_EQ(Back(line), Usual());
  CVelumDialogLib::SetEnabled(line, false, true);
  EXPECT_EQ(line.text(), QString());
  QTextEdit text(u"text"_s);
  CVelumDialogLib::SetEnabled(text, false, true);
  EXPECT_TRUE(text.isReadOnly());
  EXPECT_EQ(text.toPlainText(), QString());
}

TEST_F(CVelumToolkitDialogLibTest, ComboBoxIsNeverCleared) {
  QComboBox combo;
  combo.addItem(u"one"_s);
  CVelumDialogLib::SetEnabled(combo, false, true);
  EXPECT_FALSE(combo.isEnabled());
  EXPECT_EQ(combo.currentText(), u"one"_s);
  EXPECT_EQ(Back(combo), Grey());
  CVelumDialogLib::SetEnabled(combo, true, true);
  EXPECT_TRUE(combo.isEnabled());
  EXPECT_EQ(Back(combo), Usual());
}

TEST_F(CVelumToolkitDialogLibTest, ColourSampleIsALabelByItsName) {
  QLabel sample(u"x"_s);
  sample.setObjectName(u"fFontColor"_s);
  CVelumDialogLib::SetEnabled(sample, true, false);
  EXPECT_EQ(sample.palette().color(QPalette::Window), Usual());
  EXPECT_EQ(sample.text(), u"x"_s);
  CVelumDialogLib::SetEnabled(sample, false, true);
  EXPECT_EQ(sample.palette().color(QPalette::Window), Grey());
  EXPECT_EQ(sample.text(), QString());
  EXPECT_TRUE(sample.isEnabled());
}

TEST_F(CVelumToolkitDialogLibTest, AnythingElseIsEnabledOrNot) {
  QLabel label(u"Name:"_s);
  label.setObjectName(u"fNameLabel"_s);
  QCheckBox box;
  for (QWidget* ctl : {static_cast<QWidget*>(&label), static_cast<QWidget*>(&box)}) {
    CVelumDialogLib::SetEnabled(*ctl, false, true);
    EXPECT_FALSE(ctl->isEnabled());
    CVelumDialogLib::SetEnabled(*ctl, true, true);
    EXPECT_TRUE(ctl->isEnabled());
  }
  EXPECT_EQ(label.text(), u"Name:"_s);
}

TEST_F(CVelumToolkitDialogLibTest, DarkDesktopKeepsItsOwnColours) {
  const CDarkDesktop dark;
  QLineEdit line;
  CVelumDialogLib::SetEnabled(line, false, false);
  EXPECT_EQ(Back(line), QColor(50, 50, 50));
  CVelumDialogLib::SetEnabled(line, true, false);
  EXPECT_EQ(Back(line), QColor(30, 30, 30));
}

TEST_F(CVelumToolkitDialogLibTest, EnabledEntryHasNoColoursOfItsOwn) {
  QLineEdit line;
  CVelumDialogLib::SetEnabled(line, false, false);
  EXPECT_TRUE(line.testAttribute(Qt::WA_SetPalette));
  CVelumDialogLib::SetEnabled(line, true, false);
  EXPECT_FALSE(line.testAttribute(Qt::WA_SetPalette));
}

TEST_F(CVelumToolkitDialogLibTest, NumbersOfBoxes) {
  QLineEdit box;
  EXPECT_EQ(CVelumDialogLib::TextBoxToI2(box), 31999);
  const QList<std::pair<QString, qint16>> texts{
      {u"7"_s, 7}, {u"-12"_s, -12}, {u"x"_s, 0}, {u"5 cm"_s, 5}, {u"32767"_s, 32767}};
  for (const auto& [text, num] : texts) {
    box.setText(text);
    EXPECT_EQ(CVelumDialogLib::TextBoxToI2(box), num) << text.toStdString();
  }
  for (const QString& text : {u"32768"_s, u"-32769"_s, u"1e300"_s}) {
    box.setText(text);
    EXPECT_THROW(static_cast<void>(CVelumDialogLib::TextBoxToI2(box)), CVelumException);
  }
  CVelumDialogLib::I2ToTextBox(box, -3);
  EXPECT_EQ(box.text(), u"-3"_s);
  CVelumDialogLib::I2ToTextBox(box, 31999);
  EXPECT_EQ(box.text(), QString());
}

TEST_F(CVelumToolkitDialogLibTest, SampleShowsItsColourOrWhatItStandsOn) {
  QWidget container;
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(1, 2, 3));
  container.setPalette(palette);
  QLabel sample(u"x"_s, &container);
  CVelumDialogLib::ShowColor(sample, 0x0000FF);
  EXPECT_EQ(sample.palette().color(QPalette::Window), QColor(255, 0, 0));
  EXPECT_TRUE(sample.autoFillBackground());
  EXPECT_EQ(sample.text(), QString());
  EXPECT_EQ(sample.accessibleDescription(), u"#ff0000"_s);
  sample.setText(u"y"_s);
  CVelumDialogLib::ShowColor(sample, 1999999999);
  EXPECT_EQ(sample.palette().color(QPalette::Window), QColor(1, 2, 3));
  EXPECT_EQ(sample.text(), QString());
}

TEST_F(CVelumToolkitDialogLibTest, ColourIsChosenFromTheOneThatIs) {
  QLabel sample;
  qint32 color = 0x00FF00;
  QColor start;
  WhenColorDialog([&](QColorDialog& aDialog) {
    start = aDialog.currentColor();
    aDialog.setCurrentColor(QColor(1, 2, 3));
    aDialog.accept();
  });
  EXPECT_TRUE(CVelumDialogLib::SelectColor(nullptr, sample, color));
  EXPECT_EQ(start, QColor(0, 255, 0));
  EXPECT_EQ(color, 0x030201);
  EXPECT_EQ(sample.palette().color(QPalette::Window), QColor(1, 2, 3));
}

TEST_F(CVelumToolkitDialogLibTest, CancelledColourLeavesAllAsItWas) {
  QLabel sample(u"x"_s);
  qint32 color = 1999999999;
  WhenColorDialog([](QColorDialog& aDialog) {
    aDialog.setCurrentColor(Qt::red);
    aDialog.reject();
  });
  EXPECT_FALSE(CVelumDialogLib::SelectColor(nullptr, sample, color));
  EXPECT_EQ(color, 1999999999);
  EXPECT_EQ(sample.text(), u"x"_s);
}
