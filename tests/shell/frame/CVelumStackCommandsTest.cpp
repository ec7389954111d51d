#include "shell/frame/CVelumStackCommands.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumWinMan.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QTest>

namespace {

// What the windows were told, a line each: the kind, whether a stack was open, and the objects.
QStringList gHeard;

class Listener final : public CVelumDialogForm {
public:
  Listener() : CVelumDialogForm(u"CVelumSearchForm"_s, false) {}
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override {
    const auto* card = dynamic_cast<CVelumCard*>(aObj2);
    gHeard.append(u"%1 %2%3%4"_s.arg(aKind).arg(
        gStack ? u"open"_s : u"closed"_s, aObj1 ? u" object"_s : QString(),
        card ? u' ' + card->Name() + (card->Stack() ? u" there"_s : u" gone"_s) : QString()));
  }
};

class CVelumStackCommandsTest : public ShellTest {
protected:
  ~CVelumStackCommandsTest() override {
    CloseDialogs();
    CVelumWinMan::SetFactory(u"CVelumSearchForm"_s, {});
    gHeard.clear();
  }
  // Starts with a stack, and a window that hears what happens.
  void Open() {
    Start(CopyStack(u"a.Orvelle"_s));
    CVelumWinMan::SetFactory(u"CVelumSearchForm"_s, [] { return new Listener; });
    Choose(u"fSearch"_s);
    gHeard.clear();
  }
  // Types into the first field, and leaves the cursor there.
  QLineEdit* Type(const QString& aText) {
    gFrame->activateWindow();
    auto* edit = gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
    QTest::mouseClick(edit, Qt::LeftButton);
    iField = gStackView->CardView()->FocusControl()->Id();
    edit->selectAll();
    QTest::keyClicks(edit, aText);
    return edit;
  }
  QString InFile(const QString& aPath) const {
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> state;
    CVelumStackFile(aPath).LoadStack(stack, state);
    Ref<CVelumCard> card;
    EXPECT_TRUE(stack->GetCardByNum(0, card));
    return card->GetControlVal(iField, false).Str();
  }

  qint32 iField = ENoInt;
};

} // namespace

TEST_F(CVelumStackCommandsTest, SaveTakesWhatWasTyped) {
  Open();
  Type(u"typed"_s);
  gFrame->Commands().SaveStack();
  EXPECT_EQ(InFile(gStack->Filename()), u"typed"_s);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
}

TEST_F(CVelumStackCommandsTest, SaveAsLeavesOutWhatWasTypedButDoesNotLoseIt) {
  Open();
  Type(u"typed"_s);
  iPath = iFolder.Path(u"b.Orvelle"_s);
  gFrame->Commands().SaveStackAs();
  EXPECT_NE(InFile(iPath), u"typed"_s);
  gStackView->ValidateCurControl();
  EXPECT_TRUE(gStack->Changed());
  gFrame->Commands().SaveStack();
  EXPECT_EQ(InFile(iPath), u"typed"_s);
}

TEST_F(CVelumStackCommandsTest, SaveOfAStackWithoutNameTakesNothingEither) {
  Open();
  gStack->SetFilename({});
  Type(u"typed"_s);
  iPath = iFolder.Path(u"b.Orvelle"_s);
  gFrame->Commands().SaveStack();
  EXPECT_EQ(gStack->Filename(), iPath);
  EXPECT_NE(InFile(iPath), u"typed"_s);
}

TEST_F(CVelumStackCommandsTest, FailedSaveEndsTheWaitCursor) {
  Open();
  Change();
  gStack->SetFilename(iFolder.Path(u"no/such/folder/a.Orvelle"_s));
  gFrame->Commands().SaveStack();
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
  EXPECT_EQ(gHeard, QStringList());
}

TEST_F(CVelumStackCommandsTest, SaveAsTellsOfTheNewName) {
  Open();
  iPath = iFolder.Path(u"b.Orvelle"_s);
  Choose(u"fSaveStackAs"_s);
  EXPECT_EQ(gHeard, QStringList(u"0 open"_s));
}

TEST_F(CVelumStackCommandsTest, SaveAsOverAFileThatIsThereReplacesIt) {
  Open();
  iPath = CopyStack(u"b.Orvelle"_s);
  Change();
  Choose(u"fSaveStackAs"_s);
  EXPECT_EQ(iPresenter.Count(), 0);
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> state;
  CVelumStackFile(iPath).LoadStack(stack, state);
  EXPECT_EQ(stack->Descr(), gStack->Descr());
}

TEST_F(CVelumStackCommandsTest, CloseTellsBeforeAndAfter) {
  Open();
  Choose(u"fCloseStack"_s);
  EXPECT_EQ(gHeard, (QStringList{u"7 open"_s, u"8 closed"_s}));
}

TEST_F(CVelumStackCommandsTest, OpenTellsOfBothStacks) {
  Open();
  iPath = CopyStack(u"b.Orvelle"_s);
  Choose(u"fOpenStack"_s);
  EXPECT_EQ(gHeard, (QStringList{u"7 open"_s, u"8 closed"_s, u"0 open"_s}));
}

TEST_F(CVelumStackCommandsTest, WhoeverStaysWithAChangedStackOpensNoOther) {
  Open();
  const QString path = gStack->Filename();
  Change();
  iPath = CopyStack(u"b.Orvelle"_s);
  AnswerSave(u"fBackBut"_s);
  Choose(u"fOpenStack"_s);
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(gStack->Filename(), path);
  CVelumOptions::AddToFileHistory(iPath);
  AnswerSave(u"fBackBut"_s);
  Choose(u"fHistory1"_s);
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(gStack->Filename(), path);
  EXPECT_TRUE(gStack->Changed());
  EXPECT_EQ(gHeard, QStringList());
}

TEST_F(CVelumStackCommandsTest, FolderOfTheLastOpenIsKeptAlsoWhenItFailed) {
  Start();
  gOptions.iLoadDialogInitDir = u"/elsewhere"_s;
  iPath = iFolder.Write(u"bad.Orvelle"_s, "no stack");
  Choose(u"fOpenStack"_s);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_FALSE(gStack);
  EXPECT_EQ(gOptions.iLoadDialogInitDir, iFolder.Path());
  EXPECT_EQ(gFileHistory[0], QString());
}

TEST_F(CVelumStackCommandsTest, DialogBeginsInTheFolderOfTheOptionsAndThenWhereItWas) {
  Start();
  gOptions.iLoadDialogInitDir = iFolder.Path();
  QStringList begun;
  QStringList filters;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool) {
    begun.append(aDialog.InitDir());
    filters = aDialog.NameFilters();
    return QString();
  });
  Choose(u"fOpenStack"_s);
  gOptions.iLoadDialogInitDir = u"/other"_s;
  Choose(u"fOpenStack"_s);
  EXPECT_EQ(begun, (QStringList{iFolder.Path(), iFolder.Path()}));
  EXPECT_EQ(filters, (QStringList{u"Orvelle (*.Orvelle)"_s, u"All Files (*)"_s}));
}

TEST_F(CVelumStackCommandsTest, DeletionTellsOfTheCardBeforeItGoes) {
  Open();
  Choose(u"fDeleteCard"_s); // answered with no
  EXPECT_EQ(gHeard, QStringList());
  iPresenter.Answer(true);
  Choose(u"fDeleteCard"_s);
  ASSERT_FALSE(gHeard.isEmpty());
  EXPECT_EQ(gHeard.first(), u"9 open card 00 there"_s);
}

TEST_F(CVelumStackCommandsTest, EmptyingEndsTheWaitCursor) {
  Open();
  iPresenter.Answer(true);
  Choose(u"fEmptyStack"_s);
  EXPECT_EQ(gStack->NumCards(), 0);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
}

TEST_F(CVelumStackCommandsTest, OpeningAndSavingHaveDialogsOfTheirOwn) {
  Open();
  gOptions.iStackFolder = iFolder.Path(u"stacks"_s);
  ASSERT_TRUE(QDir().mkpath(gOptions.iStackFolder));
  gOptions.iLoadDialogInitDir = u"/"_s;
  QStringList seen;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool aSave) {
    seen = {aDialog.Title(), aDialog.ProposedName(), aDialog.InitDir(),
            aDialog.ExtensionFor(u"All Files (*)"_s), aSave ? u"save"_s : u"open"_s};
    return QString();
  });
  Choose(u"fOpenStack"_s);
  EXPECT_EQ(seen, (QStringList{u"Open Stack"_s, QString(), u"/"_s, u"Orvelle"_s, u"open"_s}));
  Choose(u"fSaveStackAs"_s);
  EXPECT_EQ(seen, (QStringList{u"Save Stack As"_s, u"a.Orvelle"_s, iFolder.Path(), u"Orvelle"_s, u"save"_s}))
      << "where the stack is";
  gStack->SetFilename({});
  gStack->SetDescr(u"My books"_s);
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(seen.mid(0, 3), (QStringList{u"Save Stack As"_s, u"My books.Orvelle"_s, gOptions.iStackFolder}));
  gOptions.iStackFolder.clear();
  Choose(u"fSaveStack"_s);
  EXPECT_TRUE(!seen.value(2).isEmpty() && QFileInfo(seen.value(2)).isDir()) << seen.value(2).toStdString();
  // In the stack folder, wherever the last stack was opened from.
  EXPECT_EQ(gOptions.iLoadDialogInitDir, u"/"_s);
}

TEST_F(CVelumStackCommandsTest, ClosingLetsGoOfTheFile) {
  Open();
  const Ref<CVelumStack> kept = gStack;
  ASSERT_TRUE(kept->BlobStore()->File());
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(kept->BlobStore()->File());
}
