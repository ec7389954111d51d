#include "toolkit/CVelumToolkitDialogLib.h"

#include "support/WidgetTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTextEdit>

namespace {

class CVelumToolkitDialogLibTest : public WidgetTest {
protected:
  static QColor Back(const QWidget& aCtl) { return aCtl.palette().color(QPalette::Base); }
  static QColor Usual() { return QApplication::palette().color(QPalette::Base); }
  static QColor Grey() { return QApplication::palette().color(QPalette::Window); }
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
