#include "shell/dialogs/CVelumWelcome.h"

#include "shell/ShellTest.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumWinMan.h"

#include <QCoreApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

namespace {

class CVelumWelcomeTest : public ShellTest {
protected:
  CVelumWelcomeTest() { Start(); }
  static CVelumWelcome& OpenForm() {
    CVelumForm* form = CVelumWinMan::NameToForm(u"CVelumWelcome"_s);
    CVelumWinMan::ShowDialog(*form);
    return *dynamic_cast<CVelumWelcome*>(form);
  }
  static bool IsOpen() { return CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s); }
  static QTimer& WaitTimer(const CVelumWelcome& aForm) { return *aForm.findChild<QTimer*>(u"fWaitTimer"_s); }
};

} // namespace

TEST_F(CVelumWelcomeTest, ClosesByItselfAfterSevenSeconds) {
  const CVelumWelcome& form = OpenForm();
  QTimer& timer = WaitTimer(form);
  EXPECT_EQ(timer.interval(), 7000);
  EXPECT_TRUE(timer.isActive());
  EXPECT_TRUE(IsOpen());
  timer.start(1);
  EXPECT_TRUE(QTest::qWaitFor([] { return !IsOpen(); }, 2000));
}

TEST_F(CVelumWelcomeTest, StaysWhileAMessageOverItWaits) {
  QTimer& timer = WaitTimer(OpenForm());
  QDialog message(gFrame);
  QTimer::singleShot(50, &message, [&] {
    EXPECT_TRUE(IsOpen());
    EXPECT_TRUE(timer.isActive()) << "it begins anew";
    timer.stop();
    message.accept();
  });
  timer.start(1);
  message.exec();
}

TEST_F(CVelumWelcomeTest, StayBeginsTheSevenSecondsAnew) {
  CVelumWelcome& form = OpenForm();
  WaitTimer(form).stop();
  form.Stay();
  EXPECT_TRUE(WaitTimer(form).isActive());
}

TEST_F(CVelumWelcomeTest, AboutStaysUntilOk) {
  CVelumWelcome& form = OpenForm();
  form.StayUntilOk();
  EXPECT_FALSE(WaitTimer(form).isActive());
  EXPECT_TRUE(IsOpen());
  QTest::mouseClick(form.findChild<QPushButton*>(u"fOk"_s), Qt::LeftButton);
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumWelcomeTest, ReturnAndEscapeCloseIt) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    CVelumWelcome& form = OpenForm();
    QTest::keyClick(form.focusWidget(), key);
    EXPECT_FALSE(IsOpen());
    EXPECT_FALSE(WaitTimer(form).isActive());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(CVelumWelcomeTest, StandsOverTheFrame) {
  gFrame->setGeometry(40, 30, 700, 550);
  const CVelumWelcome& form = OpenForm();
  const QRect frame = gFrame->frameGeometry();
  ASSERT_LT(form.width(), frame.width());
  ASSERT_LT(form.height(), frame.height());
  EXPECT_NEAR(form.x(), frame.x() + (frame.width() - form.width()) / 2, 4);
  EXPECT_NEAR(form.y(), frame.y() + (frame.height() - form.height()) / 5, 4);
}

TEST_F(CVelumWelcomeTest, StandsAtTheEdgesOfASmallerFrame) {
  gFrame->setMinimumSize(0, 0);
  gFrame->setGeometry(40, 30, 200, 120);
  const CVelumWelcome& form = OpenForm();
  ASSERT_LT(gFrame->height(), form.height());
  EXPECT_EQ(form.y(), gFrame->frameGeometry().y());
}

TEST_F(CVelumWelcomeTest, TellsVersionAndLicences) {
  const QString version = QCoreApplication::applicationVersion();
  QCoreApplication::setApplicationVersion(u"9.8.7"_s);
  const CVelumWelcome& form = OpenForm();
  QCoreApplication::setApplicationVersion(version);
  EXPECT_EQ(form.findChild<QLabel*>(u"fVersion"_s)->text(), u"Version 9.8.7"_s);
  const QString licences = form.findChild<QTextBrowser*>(u"fLicences"_s)->toPlainText();
  for (const QString& name : {u"Orvelles"_s, u"Qt 6"_s, u"ICU"_s, u"FreeImage"_s})
    EXPECT_TRUE(licences.contains(name)) << name.toStdString();
}

TEST_F(CVelumWelcomeTest, LinksCanBeReadOnADarkDesktop) {
  QPalette dark(QColor(56, 56, 60), QColor(45, 45, 48));
  dark.setColor(QPalette::Base, QColor(30, 30, 32));
  CVelumWelcome& form = OpenForm();
  form.setPalette(dark);
  const auto* licences = form.findChild<QTextBrowser*>(u"fLicences"_s);
  const QString html = licences->toHtml();
  static const QRegularExpression link(u"<a [^>]*><span[^>]* color:(#[0-9a-f]{6});"_s);
  const QRegularExpressionMatch match = link.match(html);
  ASSERT_TRUE(match.hasMatch()) << html.toStdString();
  EXPECT_GE(CVelumBaseColor::Contrast(QColor(match.captured(1)), QColor(30, 30, 32)), 4.5);
}

TEST_F(CVelumWelcomeTest, OpensTheSample) {
  ASSERT_FALSE(CVelumWelcome::SampleFile().isEmpty());
  QTest::mouseClick(OpenForm().findChild<QPushButton*>(u"fSample"_s), Qt::LeftButton);
  EXPECT_FALSE(IsOpen());
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->Filename(), CVelumWelcome::SampleFile());
}

TEST_F(CVelumWelcomeTest, OutlivesTheStack) {
  Start(CopyStack(u"a.Orvelle"_s));
  static_cast<void>(OpenForm());
  Choose(u"fCloseStack"_s);
  EXPECT_TRUE(IsOpen());
}
