#include "shell/ShellTest.h"

#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumSave.h"
#include "shell/frame/CVelumMain.h"
#include "support/TestTree.h"
#include "toolkit/CVelumReg.h"
#include "toolkit/CVelumWinMan.h"

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>

ShellTest::ShellTest() {
  CVelumReg::SetFolder(iFolder.Path(u"settings"_s));
  CVelumReg::PutBoolVal(u"ShowWelcome"_s, false);
  CVelumFileDialog::SetAnswer([this](const CVelumFileDialog&, bool) {
    ++iDialogs;
    return iPath;
  });
}

ShellTest::~ShellTest() {
  CloseDialogs();
  CVelumMain::End();
  CVelumFileDialog::SetAnswer({});
  CVelumReg::SetFolder({});
  gOptions = {};
  gFileHistory.fill({});
}

void ShellTest::Start(const QString& aCommandLine) {
  CVelumMain::Main(aCommandLine, &iPresenter, [this] { iEnded = true; });
}

void ShellTest::CloseDialogs() {
  for (int i = 0; i < CVelumWinMan::FormCount(); ++i) {
    const QString& name = CVelumWinMan::FormName(i);
    if (!CVelumWinMan::FormIsLoaded(name)) continue;
    auto* dialog = qobject_cast<QDialog*>(CVelumWinMan::NameToForm(name)->Widget());
    if (dialog) dialog->close();
  }
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString ShellTest::CopyStack(const QString& aName) {
  const QString path = iFolder.Path(aName);
  const QString source = TestTree::Data() + u"/stacks/good/multi_background.Orvelle"_s;
  EXPECT_TRUE(QFile::copy(source, path));
  QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
  return path;
}

QAction* ShellTest::Action(const QString& aName) {
  auto* action = gFrame->findChild<QAction*>(aName);
  EXPECT_NE(action, nullptr) << aName.toStdString();
  return action;
}

void ShellTest::Choose(const QString& aName) {
  QAction* action = Action(aName);
  for (QObject* owner : action->associatedObjects())
    if (auto* menu = qobject_cast<QMenu*>(owner)) Q_EMIT menu->aboutToShow();
  EXPECT_TRUE(action->isEnabled()) << aName.toStdString();
  action->trigger();
}

QString ShellTest::CardName() {
  return gStackView && gStackView->CurCard() ? gStackView->CurCard()->Name() : QString();
}

QString ShellTest::Report() {
  return gFrame->findChild<QLabel*>(u"fReport"_s)->text();
}

void ShellTest::Change() {
  gStack->SetDescr(gStack->Descr() + u"x"_s);
  EXPECT_TRUE(gStack->Changed());
}

void ShellTest::WhenOpen(std::function<void(QWidget&)> aUse) {
  QTimer::singleShot(0, gFrame, [use = std::move(aUse)] {
    QWidget* dialog = QApplication::activeModalWidget();
    ASSERT_NE(dialog, nullptr);
    use(*dialog);
    if (dialog->isVisible()) dialog->close();
  });
}

void ShellTest::AnswerSave(const QString& aButton) {
  iAsked = false;
  // Paints and timers run before the question too, so that it is looked for until it is there.
  auto* timer = new QTimer(gFrame);
  QObject::connect(timer, &QTimer::timeout, gFrame, [this, timer, aButton] {
    auto* save = qobject_cast<CVelumSave*>(QApplication::activeModalWidget());
    if (!save) return;
    iAsked = true;
    delete timer;
    if (aButton.isEmpty())
      save->close();
    else
      QTest::mouseClick(save->findChild<QPushButton*>(aButton), Qt::LeftButton);
  });
  timer->start(1);
}
