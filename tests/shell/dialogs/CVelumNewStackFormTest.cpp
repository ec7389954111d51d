#include "shell/dialogs/CVelumNewStackForm.h"

#include "core/CVelumMsg.h"
#include "shell/ShellTest.h"
#include "toolkit/CVelumWinMan.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

namespace {

class CVelumNewStackFormTest : public ShellTest {
protected:
  CVelumNewStackForm& OpenForm() {
    Choose(u"fNewStack"_s);
    auto* form = dynamic_cast<CVelumNewStackForm*>(CVelumWinMan::NameToForm(u"CVelumNewStackForm"_s));
    EXPECT_TRUE(form && form->isVisible());
    return *form;
  }
  static QLineEdit& Entry(const QWidget& aForm, const QString& aName) {
    return *aForm.findChild<QLineEdit*>(aName);
  }
  static void Press(const QWidget& aForm, const QString& aName) {
    QTest::mouseClick(aForm.findChild<QPushButton*>(aName), Qt::LeftButton);
  }
  static bool FormIsOpen() { return CVelumWinMan::FormIsLoaded(u"CVelumNewStackForm"_s); }
};

} // namespace

TEST_F(CVelumNewStackFormTest, ProposesNames) {
  Start();
  const CVelumNewStackForm& form = OpenForm();
  EXPECT_EQ(Entry(form, u"fDescr"_s).text(), QString());
  EXPECT_EQ(Entry(form, u"fBackgroundName"_s).text(), u"Normal Card"_s);
  EXPECT_EQ(Entry(form, u"fCardName"_s).text(), u"Start"_s);
}

TEST_F(CVelumNewStackFormTest, MakesAStackWithOneBackgroundAndOneCard) {
  Start();
  CVelumNewStackForm& form = OpenForm();
  QTest::keyClicks(&Entry(form, u"fDescr"_s), u"My books"_s);
  Entry(form, u"fBackgroundName"_s).setText(u"Book"_s);
  Entry(form, u"fCardName"_s).setText(u"First"_s);
  Press(form, u"fCreateBut"_s);
  ASSERT_TRUE(gStack && gStackView);
  EXPECT_EQ(gStack->Name(), u"Orvelle"_s);
  EXPECT_EQ(gStack->Descr(), u"My books"_s);
  EXPECT_TRUE(gStack->Flag(EStaBinary));
  EXPECT_TRUE(gStack->Filename().isEmpty());
  EXPECT_TRUE(gStack->Changed());
  EXPECT_EQ(gStack->NumBackgrounds(), 1);
  EXPECT_EQ(gStack->NumCards(), 1);
  Ref<CVelumControlSet> set;
  EXPECT_TRUE(gStack->GetBackgroundByName(u"Book"_s, set));
  EXPECT_EQ(gStackView->Name(), u"Orvelle"_s);
  EXPECT_EQ(CardName(), u"First"_s);
  EXPECT_TRUE(gStackView->CardViewIsOpen());
  EXPECT_TRUE(gStackView->CardListIsOpen());
  EXPECT_FALSE(FormIsOpen());
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumNewStackFormTest, TellsOthersOfTheNewStack) {
  Start();
  Press(OpenForm(), u"fCreateBut"_s);
  EXPECT_EQ(iRunner.CountOf(u"openStack"_s), 1);
  EXPECT_TRUE(Action(u"SaveStack"_s)->isEnabled());
}

TEST_F(CVelumNewStackFormTest, TakesThePlaceOfTheOpenStack) {
  Start(CopyStack(u"a.Orvelle"_s));
  const Ref<CVelumStack> old = gStack;
  CVelumNewStackForm& form = OpenForm();
  // Other windows of the stack go, this one stays until the new stack is there.
  Choose(u"fSelectCard"_s);
  Press(form, u"fCreateBut"_s);
  EXPECT_NE(gStack, old);
  EXPECT_EQ(CardName(), u"Start"_s);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
  EXPECT_FALSE(FormIsOpen());
}

TEST_F(CVelumNewStackFormTest, BackKeepsTheFormAndTheOldStackOpen) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  const Ref<CVelumStack> old = gStack;
  CVelumNewStackForm& form = OpenForm();
  AnswerSave(u"fBackBut"_s);
  Press(form, u"fCreateBut"_s);
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(gStack, old);
  EXPECT_TRUE(FormIsOpen());
  EXPECT_TRUE(form.isVisible());
  // It is no longer busy: the next close takes it along.
  CVelumSeams::ChangeNotify(EChangeStackCloses);
  EXPECT_FALSE(FormIsOpen());
}

TEST_F(CVelumNewStackFormTest, GoesWithTheStackUnlessItClosesItItself) {
  Start(CopyStack(u"a.Orvelle"_s));
  static_cast<void>(OpenForm());
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(FormIsOpen());
}

TEST_F(CVelumNewStackFormTest, EmptyNamesAreRefused) {
  Start(CopyStack(u"a.Orvelle"_s));
  const Ref<CVelumStack> old = gStack;
  CVelumNewStackForm& form = OpenForm();
  for (const QString& entry : {u"fBackgroundName"_s, u"fCardName"_s}) {
    const QString text = Entry(form, entry).text();
    Entry(form, entry).clear();
    Press(form, u"fCreateBut"_s);
    EXPECT_EQ(iPresenter.LastMsg(), EMsgEmptyName);
    EXPECT_EQ(gStack, old);
    EXPECT_EQ(form.focusWidget(), &Entry(form, entry));
    Entry(form, entry).setText(text);
  }
  EXPECT_EQ(iPresenter.Count(), 2);
}

TEST_F(CVelumNewStackFormTest, CancelAndEscapeMakeNothing) {
  Start(CopyStack(u"a.Orvelle"_s));
  const Ref<CVelumStack> old = gStack;
  Press(OpenForm(), u"fCancelBut"_s);
  EXPECT_FALSE(FormIsOpen());
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QTest::keyClick(&OpenForm(), Qt::Key_Escape);
  EXPECT_FALSE(FormIsOpen());
  EXPECT_EQ(gStack, old);
}

TEST_F(CVelumNewStackFormTest, NewStackIsSavedAndOpenedAgain) {
  Start();
  Press(OpenForm(), u"fCreateBut"_s);
  iPath = iFolder.Path(u"new.Orvelle"_s);
  Choose(u"fSaveStack"_s);
  EXPECT_FALSE(gStack->Changed());
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(gStack);
  Choose(u"fOpenStack"_s);
  EXPECT_EQ(CardName(), u"Start"_s);
  EXPECT_EQ(gStack->NumCards(), 1);
}
