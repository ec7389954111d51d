#include "shell/frame/CVelumProgressBox.h"

#include "support/WidgetTest.h"

#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

constexpr int EPatience = 500;

class CVelumProgressBoxTest : public WidgetTest {
protected:
  CVelumProgressBoxTest() { iOwner.show(); }
  QProgressDialog& Dialog() { return *iOwner.findChild<QProgressDialog*>(u"CVelumProgressBox"_s); }

  QWidget iOwner;
};

} // namespace

TEST_F(CVelumProgressBoxTest, ComesUpAfterAMoment) {
  CVelumProgressBox box(&iOwner, u"t"_s, u"x"_s);
  EXPECT_TRUE(box.Step(1, 100));
  EXPECT_FALSE(Dialog().isVisible());
  QTest::qWait(EPatience + 50);
  EXPECT_FALSE(Dialog().isVisible()) << "only when the work goes on";
  EXPECT_TRUE(box.Step(2, 100));
  EXPECT_TRUE(Dialog().isVisible());
  EXPECT_TRUE(box.Step(50, 100));
  EXPECT_EQ(Dialog().value(), 500);
}

TEST_F(CVelumProgressBoxTest, WorkWithoutAKnownEndIsShownToo) {
  CVelumProgressBox box(&iOwner, u"t"_s, u"x"_s);
  QTest::qWait(EPatience + 50);
  EXPECT_TRUE(box.Step(7, 0));
  EXPECT_TRUE(box.Step(8, 0));
  EXPECT_TRUE(Dialog().isVisible());
  EXPECT_EQ(Dialog().maximum(), 0);
}

TEST_F(CVelumProgressBoxTest, StaysAwayWhileAMessageWaits) {
  CVelumProgressBox box(&iOwner, u"t"_s, u"x"_s);
  EXPECT_TRUE(box.Step(1, 100));
  QMessageBox message(&iOwner);
  QTimer::singleShot(EPatience + 200, &message, [&] {
    EXPECT_FALSE(Dialog().isVisible());
    EXPECT_EQ(QApplication::activeModalWidget(), &message);
    message.accept();
  });
  message.exec();
  EXPECT_TRUE(box.Step(2, 100));
  EXPECT_TRUE(Dialog().isVisible());
}

TEST_F(CVelumProgressBoxTest, ItsButtonGivesTheWorkUp) {
  CVelumProgressBox box(&iOwner, u"t"_s, u"x"_s);
  QTest::qWait(EPatience + 50);
  EXPECT_TRUE(box.Step(2, 100));
  QTest::mouseClick(Dialog().findChild<QPushButton*>(), Qt::LeftButton);
  EXPECT_FALSE(box.Step(3, 100));
}
