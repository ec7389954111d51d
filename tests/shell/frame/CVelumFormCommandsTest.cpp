#include "shell/frame/CVelumFormCommands.h"

#include "runtime/lists/CVelumCardSelect.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/frame/CVelumEditors.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumWinMan.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

// What the editors of a test were told, a line each.
QStringList gTold;

QString Named(const CVelumScripted* aObj) {
  return aObj ? aObj->Name() : u"nothing"_s;
}

class FakeBackgroundEdit final : public CVelumDialogForm, public CVelumBackgroundEditor {
public:
  FakeBackgroundEdit() : CVelumDialogForm(u"CVelumBackgroundEdit"_s, false) {}
  void SetAndShowBackground(const Ref<CVelumControlSet>& aSet) override {
    EXPECT_TRUE(isVisible());
    gTold.append(u"background "_s + Named(aSet.Get()));
  }
};

class FakeControlEdit final : public CVelumDialogForm, public CVelumControlEditor {
public:
  FakeControlEdit() : CVelumDialogForm(u"CVelumControlEdit"_s, false) {}
  void SetAndShowBackground(const Ref<CVelumControlSet>& aSet) override {
    EXPECT_TRUE(isVisible());
    gTold.append(u"fields of "_s + Named(aSet.Get()));
  }
  void SetAndShowControl(const Ref<CVelumControlSet>& aSet, const Ref<CVelumControl>& aControl) override {
    EXPECT_TRUE(isVisible());
    gTold.append(u"field "_s + Named(aSet.Get()) + u'.' + Named(aControl.Get()));
  }
};

class FakeCardEdit final : public CVelumDialogForm, public CVelumCardEditor {
public:
  FakeCardEdit() : CVelumDialogForm(u"CVelumCardEdit"_s, false) {}
  void SetAndShowCard(const Ref<CVelumCard>& aCard) override {
    EXPECT_TRUE(isVisible());
    gTold.append(u"card "_s + Named(aCard.Get()));
  }
  void NewCard(const Ref<CVelumControlSet>& aSet) override {
    EXPECT_TRUE(isVisible());
    gTold.append(u"new card of "_s + Named(aSet.Get()));
  }
};

class CVelumFormCommandsTest : public ShellTest {
protected:
  ~CVelumFormCommandsTest() override {
    delete CVelumNotBuilt::Instance();
    CloseDialogs();
    for (const QString& name : iFakes) CVelumWinMan::SetFactory(name, {});
    gTold.clear();
  }
  template <class T> void Fake(const QString& aName) {
    CVelumWinMan::SetFactory(aName, [] { return new T; });
    iFakes.append(aName);
  }
  void StartWithEditors() {
    Start(CopyStack(u"a.Orvelle"_s));
    Fake<FakeBackgroundEdit>(u"CVelumBackgroundEdit"_s);
    Fake<FakeControlEdit>(u"CVelumControlEdit"_s);
    Fake<FakeCardEdit>(u"CVelumCardEdit"_s);
  }
  void EmptyTheStack() {
    iPresenter.Answer(true);
    Choose(u"fEmptyStack"_s);
    EXPECT_TRUE(gStackView && !gStackView->CurCard());
  }
  static QLineEdit* FocusField() {
    auto* edit = gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
    edit->setFocus();
    return edit;
  }
  static QString NotBuiltText() {
    const CVelumNotBuilt* box = CVelumNotBuilt::Instance();
    return box && box->isVisible() ? box->findChild<QLabel*>(u"fText"_s)->text() : QString();
  }

  QStringList iFakes;
};

} // namespace

TEST_F(CVelumFormCommandsTest, CommandWithoutAWindowSaysSoAndNamesItself) {
  Start(CopyStack(u"a.Orvelle"_s));
  CVelumWinMan::SetFactory(u"CVelumSearchForm"_s, {});
  FocusField();
  for (const TVelumCommand& command : CVelumCommandTable::Menus()) {
    const QString form = command.iForm.toString();
    if (form.isEmpty() || CVelumWinMan::HasForm(form)) continue;
    Choose(command.iAction.toString());
    EXPECT_FALSE(NotBuiltText().isEmpty()) << form.toStdString();
    EXPECT_FALSE(CVelumNotBuilt::Instance()->isModal());
    QTest::mouseClick(CVelumNotBuilt::Instance()->findChild<QPushButton*>(u"fOkBut"_s), Qt::LeftButton);
    EXPECT_TRUE(NotBuiltText().isEmpty());
  }
  Choose(u"fSearch"_s);
  EXPECT_TRUE(NotBuiltText().startsWith(u"\u201cStack, Search\u201d is not built yet."_s))
      << NotBuiltText().toStdString();
  // The next one uses the same window.
  const CVelumNotBuilt* box = CVelumNotBuilt::Instance();
  Action(u"fHttpServer"_s)->trigger();
  EXPECT_EQ(CVelumNotBuilt::Instance(), box);
  EXPECT_TRUE(NotBuiltText().startsWith(u"\u201cDevelopment, HTTP Server\u201d"_s));
  QTest::keyClick(CVelumNotBuilt::Instance(), Qt::Key_Escape);
  EXPECT_TRUE(NotBuiltText().isEmpty());
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumFormCommandsTest, BackgroundCommandsNameTheBackgroundOfTheCard) {
  StartWithEditors();
  const QString background = gStackView->CurCard()->Background()->Name();
  Choose(u"fEditBackground"_s);
  Choose(u"fEditBackgroundControls"_s);
  EXPECT_EQ(gTold, (QStringList{u"background "_s + background, u"fields of "_s + background}));
  // Those of the whole stack leave it to the window what it shows.
  Choose(u"fEditBackgrounds"_s);
  Choose(u"fEditControls"_s);
  Choose(u"fEditCards"_s);
  EXPECT_EQ(gTold.size(), 2);
  for (const char* name : {"CVelumBackgroundEdit", "CVelumControlEdit", "CVelumCardEdit"})
    EXPECT_TRUE(CVelumWinMan::FormIsLoaded(QString::fromLatin1(name))) << name;
}

TEST_F(CVelumFormCommandsTest, CardCommandsNameTheCardOrItsBackground) {
  StartWithEditors();
  Action(u"NextCard"_s)->trigger();
  Choose(u"fEditCard"_s);
  Choose(u"fNewCard"_s);
  EXPECT_EQ(gTold, (QStringList{u"card card 01"_s,
                                u"new card of "_s + gStackView->CurCard()->Background()->Name()}));
  EXPECT_FALSE(CVelumWinMan::NameToForm(u"CVelumCardEdit"_s)->Widget()->isModal());
  EXPECT_EQ(CVelumWinMan::NameToForm(u"CVelumCardEdit"_s)->Widget()->parentWidget(), nullptr);
}

TEST_F(CVelumFormCommandsTest, WithoutACardOnlyTheEmptyEditorOpens) {
  StartWithEditors();
  EmptyTheStack();
  Choose(u"fEditCard"_s);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCardEdit"_s));
  Choose(u"fNewCard"_s);
  EXPECT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumCardEdit"_s));
  EXPECT_EQ(gTold, QStringList());
}

TEST_F(CVelumFormCommandsTest, FieldCommandNamesTheFieldWithTheFocus) {
  StartWithEditors();
  FocusField();
  const Ref<CVelumControl> field = gStackView->CardView()->FocusControl();
  ASSERT_TRUE(field);
  Choose(u"fEditField"_s);
  EXPECT_EQ(gTold,
            QStringList(u"field "_s + gStackView->CurCard()->Background()->Name() + u'.' + field->Name()));
}

TEST_F(CVelumFormCommandsTest, SelectCardGoesToTheCardThatIsChosen) {
  Start(CopyStack(u"a.Orvelle"_s));
  Choose(u"fSelectCard"_s);
  ASSERT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumCardSelect"_s));
  auto* select = qobject_cast<CVelumCardSelect*>(CVelumWinMan::NameToForm(u"CVelumCardSelect"_s)->Widget());
  ASSERT_TRUE(select);
  EXPECT_TRUE(select->isVisible());
  select->close();
}

TEST_F(CVelumFormCommandsTest, ToolbarButtonsDoAsTheirMenuItems) {
  StartWithEditors();
  for (const char* key : {"EditBackgrounds", "EditCards", "EditControls"})
    Action(QString::fromLatin1(key))->trigger();
  for (const char* name : {"CVelumBackgroundEdit", "CVelumCardEdit", "CVelumControlEdit"})
    EXPECT_TRUE(CVelumWinMan::FormIsLoaded(QString::fromLatin1(name))) << name;
  EXPECT_EQ(gTold, QStringList());
}

TEST_F(CVelumFormCommandsTest, AboutStaysUntilItIsClosed) {
  Start();
  Choose(u"fAbout"_s);
  ASSERT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s));
  const QWidget* box = CVelumWinMan::NameToForm(u"CVelumWelcome"_s)->Widget();
  EXPECT_TRUE(box->isVisible());
  EXPECT_FALSE(box->findChild<QTimer*>(u"fWaitTimer"_s)->isActive());
}
