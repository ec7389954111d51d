#include "shell/frame/CVelumFrame.h"

#include "core/CVelumMsg.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/FrameTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumSave.h"
#include "shell/frame/CVelumCommandTable.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"

#include <QAbstractEventDispatcher>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>

namespace {

class CVelumFrameTest : public FrameTest {};

// Lets the program run until the caption has the mark of changes, or has it no more; not for ever.
bool RunUntilMarked(bool aMarked) {
  QEventLoop loop;
  QTimer poll;
  QElapsedTimer clock;
  clock.start();
  QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
    if (gFrame->isWindowModified() == aMarked || clock.elapsed() > 5000) loop.quit();
  });
  poll.start(10);
  loop.exec();
  return gFrame->isWindowModified() == aMarked;
}

} // namespace

TEST_F(CVelumFrameTest, MenusHaveTheirItemsInOrder) {
  Start();
  QStringList titles;
  for (const QAction* action : gFrame->menuBar()->actions())
    if (action->isVisible()) titles.append(action->text());
  EXPECT_EQ(titles, (QStringList{u"&Stack"_s, u"&Edit"_s, u"&Background"_s, u"&Card"_s, u"&Field"_s,
                                 u"&Cmds"_s, u"&Orvelles"_s}));
  EXPECT_EQ(Captions(*Menu(u"fStack"_s)),
            (QStringList{u"&Open..."_s, u"Open &Recent"_s, u"&Save"_s, u"Save &as..."_s, u"&New..."_s,
                         u"I&mport..."_s, u"&Export..."_s, u"-"_s, u"&Info..."_s, u"Searc&h..."_s,
                         u"&Backgrounds..."_s, u"&Cards..."_s, u"&Fields && Controls"_s, u"Sort &Keys..."_s,
                         u"Field &Values..."_s, u"-"_s, u"C&lose"_s}));
  EXPECT_EQ(Captions(*Menu(u"fEdit"_s)), (QStringList{u"&Undo"_s, u"&Redo"_s, u"-"_s, u"Cu&t"_s, u"&Copy"_s,
                                                      u"&Paste"_s, u"&Delete"_s, u"-"_s, u"Select &all"_s}));
  EXPECT_EQ(Captions(*Menu(u"fBackground"_s)), (QStringList{u"&Info..."_s, u"&Fields && Controls..."_s}));
  EXPECT_EQ(Captions(*Menu(u"fCard"_s)), (QStringList{u"Sele&ct..."_s, u"&New..."_s, u"&Delete"_s,
                                                      u"Delete &all"_s, u"-"_s, u"&Info..."_s}));
  EXPECT_EQ(Captions(*Menu(u"fField"_s)), (QStringList{u"&Picture"_s, u"&Info..."_s}));
  EXPECT_EQ(Captions(*Menu(u"fPicture"_s)), (QStringList{u"I&mport..."_s, u"&Show..."_s}));
  EXPECT_EQ(Captions(*Menu(u"fOrvelles"_s)),
            (QStringList{u"&Options..."_s, u"&Help..."_s, u"&About..."_s, u"&Close"_s}));
  const QList<QAction*> commands = Menu(u"fCmd"_s)->actions();
  ASSERT_EQ(commands.size(), 11);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(commands[i]->objectName(), u"fGenFunc%1"_s.arg(i));
  EXPECT_EQ(commands[10]->objectName(), u"fNoCmd"_s);
  EXPECT_EQ(commands[10]->text(), u"(No Cmd)"_s);
  EXPECT_FALSE(Menu(u"fDevelopment"_s)->menuAction()->isVisible());
  EXPECT_EQ(Captions(*Menu(u"fDevelopment"_s)), (QStringList{u"HTTP Server"_s, u"&Size 208x255"_s}));
}

TEST_F(CVelumFrameTest, ToolbarHasItsButtonsInOrder) {
  Start();
  QStringList keys;
  for (const QAction* action : gFrame->findChild<QToolBar*>(u"fToolbar"_s)->actions()) {
    if (action->isSeparator()) continue;
    keys.append(action->objectName());
    EXPECT_FALSE(action->icon().isNull()) << action->objectName().toStdString();
    EXPECT_FALSE(action->text().isEmpty());
  }
  EXPECT_EQ(keys,
            (QStringList{u"NewStack"_s, u"OpenStack"_s, u"SaveStack"_s, u"FirstCard"_s, u"PrevCard"_s,
                         u"NextCard"_s, u"LastCard"_s, u"BackInHistory"_s, u"ForwInHistory"_s, u"EditStack"_s,
                         u"EditBackgrounds"_s, u"EditCards"_s, u"EditControls"_s, u"Undo"_s, u"Redo"_s}));
  QStringList tips;
  for (const QString& key : std::as_const(keys)) tips.append(Action(key)->toolTip());
  EXPECT_EQ(tips, (QStringList{u"New Stack"_s, u"Open Stack"_s, u"Save Stack"_s, u"First Card"_s,
                               u"Previous Card"_s, u"Next Card"_s, u"Last Card"_s, u"Back in History"_s,
                               u"Forward in History"_s, u"Edit Stack"_s, u"Edit Backgrounds"_s,
                               u"Edit Cards"_s, u"Edit Controls"_s, u"Undo"_s, u"Redo"_s}));
}

TEST_F(CVelumFrameTest, EveryToolbarButtonHasACommand) {
  Start();
  for (const TVelumCommand& command : CVelumCommandTable::Toolbar()) {
    QAction* button = Action(command.iAction.toString());
    button->setEnabled(true);
    button->trigger();
  }
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 0);
}

TEST_F(CVelumFrameTest, CommandsFollowTheOpenStack) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start();
  const QStringList ofStack{u"fSaveStack"_s,  u"fSaveStackAs"_s, u"fCloseStack"_s, u"fDeleteCard"_s,
                            u"fEmptyStack"_s, u"SaveStack"_s,    u"NextCard"_s,    u"LastCard"_s};
  const auto expect = [&](bool aOpen) {
    for (const QString& name : ofStack) EXPECT_EQ(Action(name)->isEnabled(), aOpen) << name.toStdString();
    EXPECT_EQ(gFrame->FindAction(u"fCmd"_s)->isEnabled(), aOpen);
    for (const QString& name : {u"fOpenStack"_s, u"fHelp"_s, u"fClose"_s, u"OpenStack"_s})
      EXPECT_TRUE(Action(name)->isEnabled()) << name.toStdString();
  };
  expect(false);
  iPath = path;
  Choose(u"fOpenStack"_s);
  expect(true);
  Choose(u"fCloseStack"_s);
  expect(false);
}

TEST_F(CVelumFrameTest, CaptionTakesTheNameLiterally) {
  const QString path = CopyStack(u"a[*]b & c.Orvelle"_s);
  Start(path);
  EXPECT_EQ(gFrame->windowTitle(), QString(path).replace(u"[*]"_s, u"[*][*]"_s) + u"[*] - Orvelles"_s);
}

TEST_F(CVelumFrameTest, ToolbarLeafsThroughCardsAndHistory) {
  Start(CopyStack(u"a.Orvelle"_s));
  Click(u"NextCard"_s);
  EXPECT_EQ(CardName(), u"card 01"_s);
  Click(u"LastCard"_s);
  EXPECT_EQ(CardName(), u"card 12"_s);
  Click(u"NextCard"_s);
  EXPECT_EQ(CardName(), u"card 12"_s);
  Click(u"PrevCard"_s);
  EXPECT_EQ(CardName(), u"card 11"_s);
  Click(u"FirstCard"_s);
  EXPECT_EQ(CardName(), u"card 00"_s);
  Click(u"BackInHistory"_s);
  EXPECT_EQ(CardName(), u"card 11"_s);
  Click(u"BackInHistory"_s);
  EXPECT_EQ(CardName(), u"card 12"_s);
  Click(u"ForwInHistory"_s);
  EXPECT_EQ(CardName(), u"card 11"_s);
}

TEST_F(CVelumFrameTest, KeysLeafThroughCards) {
  Start(CopyStack(u"a.Orvelle"_s));
  QTest::keyClick(gFrame, Qt::Key_PageDown);
  QTest::keyClick(gFrame, Qt::Key_PageDown);
  EXPECT_EQ(CardName(), u"card 02"_s);
  QTest::keyClick(gFrame, Qt::Key_PageUp);
  EXPECT_EQ(CardName(), u"card 01"_s);
  ASSERT_TRUE(QTest::qWaitForWindowActive(gFrame));
  QTest::keyClick(gFrame, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(CardName(), u"card 02"_s);
  QTest::keyClick(gFrame, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(CardName(), u"card 01"_s);
}

TEST_F(CVelumFrameTest, ControlPageUpAndDownLeafFromEverywhere) {
  Start(CopyStack(u"a.Orvelle"_s));
  auto* edit = gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  ASSERT_TRUE(edit && edit->isVisible());
  edit->setFocus();
  QTest::keyClick(edit, Qt::Key_PageDown, Qt::ControlModifier);
  QTest::keyClick(edit, Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(CardName(), u"card 02"_s);
  QTest::keyClick(gFrame->menuBar(), Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(CardName(), u"card 01"_s);
  // A dialog that stays open beside the card window.
  QTextEdit beside;
  beside.setPlainText(u"a\nb\nc"_s);
  beside.show();
  beside.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&beside));
  QTest::keyClick(&beside, Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(CardName(), u"card 02"_s);
}

TEST_F(CVelumFrameTest, ControlPageDownTakesWhatWasTyped) {
  Start(CopyStack(u"a.Orvelle"_s));
  auto* edit = gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  edit->setFocus();
  edit->selectAll();
  QTest::keyClicks(edit, u"typed"_s);
  const Ref<CVelumCard> card = gStackView->CurCard();
  const Ref<CVelumControl> control = gStackView->CardView()->FocusControl();
  ASSERT_TRUE(control);
  QTest::keyClick(edit, Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_NE(gStackView->CurCard(), card);
  EXPECT_EQ(card->GetControlVal(control->Id(), false).Str(), u"typed"_s);
}

TEST_F(CVelumFrameTest, ModalBoxesKeepControlPageDownFromTheCards) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  // The question is looked for until it is there: timers run before it too.
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, gFrame, [&timer] {
    QWidget* question = QApplication::activeModalWidget();
    if (!question) return;
    timer.stop();
    QTest::keyClick(question, Qt::Key_PageDown, Qt::ControlModifier);
    question->close();
  });
  timer.start(1);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(timer.isActive()) << "it was asked";
  ASSERT_TRUE(gStackView);
  EXPECT_EQ(CardName(), u"card 00"_s);
}

TEST_F(CVelumFrameTest, NoMenuHidesTheToolbar) {
  Start();
  auto* toolbar = gFrame->findChild<QToolBar*>(u"fToolbar"_s);
  for (QWidget* widget : QList<QWidget*>{toolbar, ButtonOf(u"OpenStack"_s), gFrame->menuBar()}) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, {3, 3}, widget->mapToGlobal(QPoint(3, 3)));
    QApplication::sendEvent(widget, &event);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << widget->objectName().toStdString();
  }
  EXPECT_TRUE(toolbar->isVisible());
}

TEST_F(CVelumFrameTest, ACommandAsksTheSameQuestionOnce) {
  Start(CopyStack(u"a.Orvelle"_s));
  iPresenter.SetDefaultAnswer(true);
  iRunner.iOnMessage = [](const QString&) {
    for (int i = 0; i < 3; ++i) CVelumError::AssertObj(false, nullptr, u"Test"_s, u"often"_s);
  };
  Click(u"NextCard"_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  Click(u"NextCard"_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 2);
  QTest::keyClick(gFrame, Qt::Key_PageDown);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 3);
  Choose(u"fSaveStack"_s);
  iRunner.iOnMessage = {};
}

TEST_F(CVelumFrameTest, KeysReachTheFrameThroughTheCardWindow) {
  Start(CopyStack(u"a.Orvelle"_s));
  auto& form = gStackView->CardView()->ViewForm();
  QTest::keyClick(&form, Qt::Key_PageDown);
  EXPECT_EQ(CardName(), u"card 01"_s);
  // A text of several lines needs these keys itself.
  QTextEdit text(&form);
  text.show();
  text.setFocus();
  QTest::keyClick(&text, Qt::Key_PageDown);
  EXPECT_EQ(CardName(), u"card 01"_s);
}

TEST_F(CVelumFrameTest, ShortcutsOpenAndSave) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start();
  ASSERT_TRUE(QTest::qWaitForWindowActive(gFrame));
  iPath = path;
  QTest::keyClick(gFrame, Qt::Key_O, Qt::ControlModifier);
  ASSERT_TRUE(gStack);
  Change();
  QTest::keyClick(gFrame, Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(gStack->Changed());
}

TEST_F(CVelumFrameTest, ItemsFollowTheirRulesEachTimeTheirMenuOpens) {
  // By menu: the items that are enabled while no stack is open, with a stack and a card, and with a stack
  // without cards. No field has the focus.
  struct TRule {
    QString iMenu;
    QStringList iNothing, iCard, iEmpty;
  };
  const QStringList ofStack{u"fOpenStack"_s,       u"fSaveStack"_s, u"fSaveStackAs"_s,  u"fNewStack"_s,
                            u"fImport"_s,          u"fExport"_s,    u"fEditStack"_s,    u"fSearch"_s,
                            u"fEditBackgrounds"_s, u"fEditCards"_s, u"fEditControls"_s, u"fEditSortKeys"_s,
                            u"fEditValues"_s,      u"fCloseStack"_s};
  const QStringList ofCard{u"fSelectCard"_s, u"fNewCard"_s, u"fDeleteCard"_s, u"fEmptyStack"_s,
                           u"fEditCard"_s};
  const QStringList ofBackground{u"fEditBackground"_s, u"fEditBackgroundControls"_s};
  const QStringList ofProgram{u"fOptions"_s, u"fHelp"_s, u"fAbout"_s, u"fClose"_s};
  const QList<TRule> rules{{u"fStack"_s, {u"fOpenStack"_s, u"fNewStack"_s, u"fImport"_s}, ofStack, ofStack},
                           {u"fBackground"_s, {}, ofBackground, {}},
                           {u"fCard"_s, {}, ofCard, ofCard},
                           {u"fField"_s, {}, {}, {}},
                           {u"fPicture"_s, {}, {u"fImportPicFile"_s}, {u"fImportPicFile"_s}},
                           {u"fOrvelles"_s, ofProgram, ofProgram, ofProgram}};
  const auto expect = [&rules](QStringList TRule::*aWhich, const char* aState) {
    for (const TRule& rule : rules) {
      for (QAction* item : Menu(rule.iMenu)->actions()) item->setEnabled(!item->isEnabled());
      Open(rule.iMenu);
      QStringList enabled;
      for (const QAction* item : Menu(rule.iMenu)->actions())
        if (item->isEnabled() && !item->isSeparator() && !item->menu()) enabled.append(item->objectName());
      EXPECT_EQ(enabled, rule.*aWhich) << rule.iMenu.toStdString() << ' ' << aState;
    }
    Open(u"fField"_s);
    EXPECT_FALSE(Menu(u"fPicture"_s)->menuAction()->isEnabled()) << aState;
    EXPECT_TRUE(Menu(u"fOpenRecent"_s)->menuAction()->isEnabled()) << aState;
  };
  Start();
  expect(&TRule::iNothing, "without a stack");
  iPath = CopyStack(u"a.Orvelle"_s);
  Choose(u"fOpenStack"_s);
  gStackView->CardView()->ViewForm().DropFocus();
  expect(&TRule::iCard, "with a card");
  iPresenter.Answer(true);
  Choose(u"fEmptyStack"_s);
  expect(&TRule::iEmpty, "without cards");
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  expect(&TRule::iNothing, "after closing");
}

TEST_F(CVelumFrameTest, FieldMenuNeedsAField) {
  Start();
  Open(u"fField"_s);
  EXPECT_FALSE(Menu(u"fPicture"_s)->menuAction()->isEnabled());
  EXPECT_FALSE(Action(u"fEditField"_s)->isEnabled());
}

TEST_F(CVelumFrameTest, AMenuOnTheScreenLeavesTheFieldItsFocus) {
  Start(CopyStack(u"a.Orvelle"_s));
  gFrame->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(gFrame));
  auto* edit = gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  QTest::mouseClick(edit, Qt::LeftButton);
  ASSERT_TRUE(edit->hasFocus());
  const QMenuBar* bar = gFrame->menuBar();
  QTest::mouseClick(gFrame->menuBar(), Qt::LeftButton, {},
                    bar->actionGeometry(Menu(u"fField"_s)->menuAction()).center());
  EXPECT_TRUE(Menu(u"fField"_s)->isVisible());
  EXPECT_TRUE(Action(u"fEditField"_s)->isEnabled());
  EXPECT_FALSE(Menu(u"fPicture"_s)->menuAction()->isEnabled()) << "the field holds text";
  QTest::keyClick(Menu(u"fField"_s), Qt::Key_Escape);
  EXPECT_TRUE(CVelumCommandTable::FocusedControl());
}

TEST_F(CVelumFrameTest, ConditionsFollowStackCardAndField) {
  using enum EVelumNeed;
  Start();
  EXPECT_TRUE(CVelumCommandTable::IsMet(Nothing));
  for (const EVelumNeed need : {Stack, CurCard, Field, Picture})
    EXPECT_FALSE(CVelumCommandTable::IsMet(need));
  iPath = CopyStack(u"a.Orvelle"_s);
  Choose(u"fOpenStack"_s);
  EXPECT_TRUE(CVelumCommandTable::IsMet(Stack));
  EXPECT_TRUE(CVelumCommandTable::IsMet(CurCard));
  EXPECT_FALSE(CVelumCommandTable::IsMet(Picture));
  iPresenter.Answer(true);
  Choose(u"fEmptyStack"_s);
  EXPECT_TRUE(CVelumCommandTable::IsMet(Stack));
  EXPECT_FALSE(CVelumCommandTable::IsMet(CurCard));
}

TEST_F(CVelumFrameTest, HelpOpensThePageOfTheFrame) {
  Start();
  Choose(u"fHelp"_s);
  EXPECT_EQ(iPresenter.HelpPages(), QList<QString>{u"Frame"_s});
}

TEST_F(CVelumFrameTest, HostFindsTheCommandsByTheirExactNames) {
  Start();
  for (int i = 0; i < 10; ++i) EXPECT_NE(gFrame->FindAction(u"fGenFunc%1"_s.arg(i)), nullptr);
  EXPECT_NE(gFrame->FindAction(u"fNoCmd"_s), nullptr);
  EXPECT_EQ(gFrame->FindAction(u"fCmd"_s), Menu(u"fCmd"_s)->menuAction());
  for (const QString& name : {u"fGenFunc10"_s, u"FGENFUNC0"_s, u"fOpenStack"_s, QString()})
    EXPECT_EQ(gFrame->FindAction(name), nullptr) << name.toStdString();
  EXPECT_FALSE(gFrame->ToolbarIcon(u"SelectCard"_s).isNull());
  EXPECT_TRUE(gFrame->ToolbarIcon(u"Nothing"_s).isNull());
  EXPECT_EQ(gFrame->ShowForm(u"CVelumSearchForm"_s), nullptr);
}

TEST_F(CVelumFrameTest, CommandsOfTheCardRunFromTheMenu) {
  Start(CopyStack(u"a.Orvelle"_s));
  const Ref<CVelumControlSet> set = gStackView->CurCard()->Background();
  for (const QString& name : {u"First"_s, u"Second"_s}) {
    const auto command = MakeRef<CVelumControl>(gStack->IdGen().NextId(), name, EConCommand);
    command->SetLabel(name);
    for (const qint32 flag : {EConInMenu, EConInCardView}) command->SetFlag(flag, true);
    set->AddControl(command, ENoInt);
  }
  CVelumSeams::ChangeNotify(EChangeStructure);
  iRunner.iSent.clear();
  Open(u"fCmd"_s);
  ASSERT_EQ(Action(u"fGenFunc1"_s)->text(), u"Second"_s);
  EXPECT_FALSE(Action(u"fGenFunc2"_s)->isVisible());
  EXPECT_FALSE(Action(u"fNoCmd"_s)->isVisible());
  Choose(u"fGenFunc1"_s);
  ASSERT_EQ(iRunner.iSent.size(), 1);
  EXPECT_TRUE(iRunner.iSent.first().endsWith(u" card 00.Second"_s)) << iRunner.iSent.first().toStdString();
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  Action(u"fGenFunc1"_s)->trigger(); // no stack: nothing
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumFrameTest, PhoneSizeGivesTheClientAreaOfAPhone) {
  Start(CopyStack(u"a.Orvelle"_s));
  Action(u"fSize"_s)->trigger();
  const QWidget* form = CVelumWinMan::NameToForm(u"CVelumGenForm"_s)->Widget();
  EXPECT_NEAR(form->width(), 208 * 20 / 15.0, 1);
  EXPECT_NEAR(form->height(), 255 * 20 / 15.0, 1);
}

TEST_F(CVelumFrameTest, NotificationsReachTheFrame) {
  Start(CopyStack(u"a.Orvelle"_s));
  const QString other = iFolder.Path(u"other.Orvelle"_s);
  gStack->SetFilename(other);
  CVelumSeams::ChangeNotify(EChangeStack);
  EXPECT_EQ(gFrame->windowTitle(), other + u"[*] - Orvelles"_s);
  for (const int kind : {1, 2, 3, 4, 5, 6, 9}) CVelumSeams::ChangeNotify(kind);
  EXPECT_EQ(CardName(), u"card 00"_s);
  EXPECT_EQ(iPresenter.Count(), 0);
  CVelumSeams::ChangeNotify(EChangeStackClosed);
  EXPECT_EQ(gFrame->windowTitle(), u"Orvelles"_s);
}

TEST_F(CVelumFrameTest, ViewsAreRefreshedByTheKindsThatConcernThem) {
  Start(CopyStack(u"a.Orvelle"_s));
  auto* edit = gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  edit->setFocus();
  const Ref<CVelumControl> field = gStackView->CardView()->FocusControl();
  ASSERT_TRUE(field);
  for (const int kind : {1, 2, 3, 4, 5, 6, 9}) {
    const QString before = edit->text();
    const QString now = u"value "_s + QString::number(kind);
    gStackView->CurCard()->SetControlVal(field->Id(), TVelumValue::OfStr(now));
    ASSERT_EQ(edit->text(), before);
    CVelumSeams::ChangeNotify(kind);
    EXPECT_EQ(edit->text(), kind == 1 || kind == 3 || kind == 9 ? now : before) << kind;
  }
}

TEST_F(CVelumFrameTest, CaptionOfAStackWithoutFileIsItsDescription) {
  Start(CopyStack(u"a.Orvelle"_s));
  gStack->SetFilename({});
  CVelumSeams::ChangeNotify(EChangeStack);
  EXPECT_EQ(gFrame->windowTitle(), u"Four backgrounds[*] - Orvelles"_s);
}

// Nobody looks for changes while nothing happens.
TEST_F(CVelumFrameTest, TheMarkOfChangesCostsNothingWhileTheProgramRests) {
  Start(CopyStack(u"a.Orvelle"_s));
  static_cast<void>(RunUntilMarked(false));
  QEventLoop loop;
  QTimer::singleShot(1000, &loop, &QEventLoop::quit);
  int woken = 0;
  const auto count = QObject::connect(QAbstractEventDispatcher::instance(),
                                      &QAbstractEventDispatcher::aboutToBlock, [&] { ++woken; });
  loop.exec();
  QObject::disconnect(count);
  EXPECT_LT(woken, 20);
}

TEST_F(CVelumFrameTest, CaptionMarksChangesThatAreNotSaved) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(path);
  EXPECT_FALSE(gFrame->isWindowModified());
  for (int i = 0; i < 2; ++i) {
    Change();
    EXPECT_TRUE(RunUntilMarked(true));
    Choose(u"fSaveStack"_s);
    EXPECT_TRUE(RunUntilMarked(false));
  }
  Change();
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(gFrame->isWindowModified());
  EXPECT_EQ(gFrame->windowTitle(), u"Orvelles"_s);
}

TEST_F(CVelumFrameTest, AKeyWithoutAButtonAsserts) {
  Start(CopyStack(u"a.Orvelle"_s));
  // Keys are compared exactly; the last two have a picture or a menu item, but no button.
  for (const QString& key : {QString(), u"nextcard"_s, u"Nothing"_s, u"ShowCardList"_s, u"Help"_s}) {
    EXPECT_THROW(gFrame->ButtonClick(key), CVelumException);
    EXPECT_EQ(iPresenter.LastMsg(), EMsgAssertFailedOk);
    EXPECT_TRUE(iPresenter.LastText().contains(u"< fToolbar_ButtonClick Button.Key %1 >"_s.arg(key)));
    iPresenter.Answer(true);
    gFrame->ButtonClick(key);
  }
  EXPECT_EQ(CardName(), u"card 00"_s);
}

TEST_F(CVelumFrameTest, SaveQuestionStandsInTheMiddleOfTheFrame) {
  Start(CopyStack(u"a.Orvelle"_s));
  CVelumSave save(u"x"_s, gFrame);
  save.show();
  const QPoint middle = gFrame->frameGeometry().center() - QPoint(save.width() / 2, save.height() / 2);
  EXPECT_LE((save.pos() - middle).manhattanLength(), 4);
}
