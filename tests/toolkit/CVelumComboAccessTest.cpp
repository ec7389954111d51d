#include "toolkit/CVelumComboAccess.h"

#include "support/WidgetTest.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

namespace {

class CVelumComboAccessTest : public WidgetTest {
protected:
  CVelumComboAccessTest() : iLabel(u"&Kind:"_s, &iWindow), iCombo(&iWindow) {
    CVelumComboAccess::Install();
    iCombo.addItems({u"one"_s, u"two"_s});
  }
  QAccessibleInterface& Face() { return *QAccessible::queryAccessibleInterface(&iCombo); }

  QWidget iWindow;
  QLabel iLabel;
  QComboBox iCombo;
};

} // namespace

TEST_F(CVelumComboAccessTest, TheNameIsThatOfTheLabelAndTheTextIsTheValue) {
  EXPECT_EQ(Face().text(QAccessible::Name), u"one"_s) << "without a label as the toolkit does";
  iLabel.setBuddy(&iCombo);
  EXPECT_EQ(Face().text(QAccessible::Name), u"Kind:"_s);
  iCombo.setAccessibleName(u"Background"_s);
  EXPECT_EQ(Face().text(QAccessible::Name), u"Background"_s);
  EXPECT_EQ(Face().text(QAccessible::Value), u"one"_s);
  EXPECT_EQ(Face().text(QAccessible::Description), u"one"_s);
  iCombo.setCurrentIndex(1);
  EXPECT_EQ(Face().text(QAccessible::Name), u"Background"_s);
  EXPECT_EQ(Face().text(QAccessible::Value), u"two"_s);
  iCombo.setAccessibleDescription(u"what it is for"_s);
  EXPECT_EQ(Face().text(QAccessible::Description), u"what it is for"_s);
}

TEST_F(CVelumComboAccessTest, ItsPartsAreTheListAndTheEntry) {
  EXPECT_EQ(Face().role(), QAccessible::ComboBox);
  ASSERT_EQ(Face().childCount(), 1);
  EXPECT_EQ(Face().child(0)->object(), iCombo.view());
  EXPECT_EQ(Face().child(1), nullptr);
  EXPECT_FALSE(Face().state().editable);
  iCombo.setEditable(true);
  ASSERT_EQ(Face().childCount(), 2);
  const QObject* entry = iCombo.lineEdit();
  EXPECT_EQ(Face().child(1)->object(), entry);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Face().indexOfChild(Face().child(i)), i);
  EXPECT_TRUE(Face().state().editable);
}

TEST_F(CVelumComboAccessTest, ItsActionOpensAndClosesTheList) {
  iWindow.show();
  QAccessibleActionInterface* actions = Face().actionInterface();
  ASSERT_NE(actions, nullptr);
  EXPECT_TRUE(Face().state().expandable);
  EXPECT_FALSE(Face().state().expanded);
  actions->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_TRUE(iCombo.view()->isVisible());
  EXPECT_TRUE(Face().state().expanded);
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(iCombo.view()->isVisible());
  actions->doAction(u"nothing of its own"_s);
  EXPECT_FALSE(iCombo.view()->isVisible());
}
