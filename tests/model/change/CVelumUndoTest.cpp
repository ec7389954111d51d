#include "model/change/CVelumUndo.h"

#include "core/CVelumMsg.h"
#include "model/ModelTest.h"
#include "model/change/DocumentForm.h"

#include <QHash>
#include <random>

using namespace ModelTest;

namespace {

// Names a command for as long as one lives.
using CStep = CVelumError::CCommand;

struct CVelumUndoTest : testing::Test {
  CVelumUndoTest() {
    CVelumModel::Install();
    iAnn = iSample.AddCard(iSample.iFirst, u"Ann"_s);
    iBob = iSample.AddCard(iSample.iFirst, u"Bob"_s);
  }
  void SetTown(const QString& aTown) {
    const CStep step(u"Change Town"_s);
    iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(aTown));
  }
  QString Town() { return iAnn->GetControlVal(iSample.iTown->Id(), true).Str(); }
  QByteArray Form() { return DocumentForm::Of(*iSample.iStack); }

  TSampleStack iSample;
  Ref<CVelumCard> iAnn;
  Ref<CVelumCard> iBob;
};

TEST_F(CVelumUndoTest, NamesItsSteps) {
  CVelumUndo undo(*iSample.iStack);
  EXPECT_FALSE(undo.CanUndo());
  EXPECT_EQ(undo.UndoName(), QString());
  SetTown(u"Bern"_s);
  {
    const CStep outer;
    const CStep inner(u"Delete card 'Bob'"_s);
    const CStep innermost(u"Never"_s);
    iSample.iStack->DeleteCard(iBob);
  }
  EXPECT_EQ(undo.UndoName(), u"Delete card 'Bob'"_s);
  static_cast<void>(undo.Undo());
  EXPECT_EQ(undo.UndoName(), u"Change Town"_s);
  EXPECT_EQ(undo.RedoName(), u"Delete card 'Bob'"_s);
  static_cast<void>(undo.Undo());
  EXPECT_FALSE(undo.CanUndo());
  EXPECT_EQ(Town(), QString());
}

TEST_F(CVelumUndoTest, ANestedCommandJoinsTheStepOfTheOuterOne) {
  CVelumUndo undo(*iSample.iStack);
  {
    const CStep outer(u"Two values"_s);
    SetTown(u"Bern"_s);
    SetTown(u"Graz"_s);
  }
  EXPECT_EQ(undo.NumSteps(), 1);
  EXPECT_EQ(undo.UndoName(), u"Two values"_s);
}

TEST_F(CVelumUndoTest, AStepThatChangesNothingIsNone) {
  CVelumUndo undo(*iSample.iStack);
  {
    const CStep step(u"Nothing"_s);
    iSample.iTown->SetLabel(iSample.iTown->Label());
  }
  EXPECT_FALSE(undo.CanUndo());
}

TEST_F(CVelumUndoTest, ANewChangeDropsWhatCouldBeMadeAgain) {
  CVelumUndo undo(*iSample.iStack);
  SetTown(u"Bern"_s);
  static_cast<void>(undo.Undo());
  EXPECT_TRUE(undo.CanRedo());
  SetTown(u"Graz"_s);
  EXPECT_FALSE(undo.CanRedo());
  static_cast<void>(undo.Undo());
  EXPECT_EQ(Town(), QString());
}

TEST_F(CVelumUndoTest, IdsOfWhatWasTakenBackLiveOnceOnly) {
  CVelumUndo undo(*iSample.iStack);
  const qint32 next = iSample.iStack->IdGen().PeekId();
  {
    const CStep step(u"New field"_s);
    static_cast<void>(iSample.AddField(iSample.iFirst, u"New"_s, EConText));
  }
  static_cast<void>(undo.Undo());
  EXPECT_EQ(iSample.iStack->IdGen().PeekId(), next);
  static_cast<void>(undo.Redo());
  EXPECT_EQ(iSample.iStack->IdGen().PeekId(), next + 1);
}

TEST_F(CVelumUndoTest, TheNameIsOneOfACommandThatChangesSomething) {
  CVelumUndo undo(*iSample.iStack);
  {
    const CStep event;
    { const CStep idle(u"Script of card 'Ann'"_s); }
    SetTown(u"Bern"_s);
    SetTown(u"Graz"_s);
  }
  EXPECT_EQ(undo.UndoName(), u"Change Town"_s);
}

TEST_F(CVelumUndoTest, AStackThatWasNeverSavedIsNotSaved) {
  iSample.iStack->SetDescr(u"New"_s);
  ASSERT_TRUE(iSample.iStack->Changed());
  CVelumUndo undo(*iSample.iStack);
  EXPECT_FALSE(undo.IsSaved());
  SetTown(u"Bern"_s);
  static_cast<void>(undo.Undo());
  EXPECT_FALSE(undo.IsSaved());
}

TEST_F(CVelumUndoTest, ACommandThatPassesTheBoundComesInPiecesAndCannotBeTakenBack) {
  class CPieces final : public CVelumStepWatch {
  public:
    void Stepped(const CVelumChangeGroup& aGroup, bool) override {
      ++iNum;
      iChanges += static_cast<int>(aGroup.Changes().size());
    }
    int iNum = 0;
    int iChanges = 0;
  };
  CPieces pieces;
  iSample.iStack->SetChanged(false);
  CVelumUndo undo(*iSample.iStack, 5000);
  undo.SetWatch(&pieces);
  SetTown(u"Before"_s);
  {
    const CStep step(u"Many"_s);
    for (int i = 0; i < 100; ++i) SetTown(QString(100, QChar(u'a' + i % 26)));
  }
  EXPECT_FALSE(undo.CanUndo()) << "nor what was before it";
  EXPECT_FALSE(undo.IsSaved());
  EXPECT_GT(pieces.iNum, 3);
  EXPECT_EQ(pieces.iChanges, 101);
  SetTown(u"After"_s);
  EXPECT_EQ(undo.NumSteps(), 1) << "what follows can be taken back again";
  static_cast<void>(undo.Undo());
  EXPECT_EQ(Town().size(), 100);
}

TEST_F(CVelumUndoTest, PicturesThatOnlyUndoHoldsTakeNoMemory) {
  constexpr int size = 1'000'000;
  const qint32 id = iSample.iStack->IdGen().NextId();
  CVelumUndo undo(*iSample.iStack, 100'000);
  {
    const CStep step(u"Import a.png"_s);
    const auto blob = MakeRef<CVelumBlob>(id);
    blob->SetBytes(QByteArray(size, 'x'));
    iSample.iStack->BlobStore()->AddBlob(blob);
  }
  EXPECT_EQ(undo.NumSteps(), 1);
  EXPECT_LT(undo.Cost(), 10'000) << "it is the document's";
  EXPECT_EQ(undo.Stash().Size(), 0);
  for (int round = 0; round < 3; ++round) {
    static_cast<void>(undo.Undo());
    EXPECT_FALSE(iSample.iStack->BlobStore()->HasBlob(id));
    EXPECT_LT(undo.Cost(), 10'000);
    EXPECT_GT(undo.Stash().Size(), size);
    static_cast<void>(undo.Redo());
    EXPECT_EQ(iSample.iStack->BlobStore()->ReadBlob(id, false)->Bytes(), QByteArray(size, 'x'));
    EXPECT_EQ(undo.Stash().Size(), 0) << "the space is free again";
  }
}

TEST_F(CVelumUndoTest, KnowsTheSavedState) {
  iSample.iStack->SetChanged(false);
  CVelumUndo undo(*iSample.iStack);
  EXPECT_TRUE(undo.IsSaved());
  SetTown(u"Bern"_s);
  EXPECT_FALSE(undo.IsSaved());
  undo.SetSaved();
  SetTown(u"Graz"_s);
  static_cast<void>(undo.Undo());
  EXPECT_TRUE(undo.IsSaved());
  static_cast<void>(undo.Undo());
  EXPECT_FALSE(undo.IsSaved());
  SetTown(u"Linz"_s); // the saved state cannot be reached any more
  static_cast<void>(undo.Undo());
  EXPECT_FALSE(undo.IsSaved());
}

TEST_F(CVelumUndoTest, GivesUpTheOldestStepsFirst) {
  SetTown(QString(1000, u'a'));
  CVelumUndo undo(*iSample.iStack, 10000);
  for (int i = 0; i < 10; ++i) SetTown(QString(1000, QChar(u'b' + i)));
  EXPECT_GT(undo.NumSteps(), 0);
  EXPECT_LT(undo.NumSteps(), 5);
  EXPECT_LE(undo.Cost(), 10000);
  EXPECT_FALSE(undo.IsSaved());
  while (undo.CanUndo()) static_cast<void>(undo.Undo());
  EXPECT_NE(Town().front(), u'a');
  EXPECT_FALSE(undo.IsSaved());
}

TEST_F(CVelumUndoTest, AThousandStepsOfSingleValuesFit) {
  CVelumUndo undo(*iSample.iStack);
  for (int i = 0; i < 1000; ++i) SetTown(QString::number(i));
  EXPECT_EQ(undo.NumSteps(), 1000);
  EXPECT_LE(undo.Cost() / 1000, 200 + 64) << "bytes a value, with the text";
  while (undo.CanUndo()) static_cast<void>(undo.Undo());
  EXPECT_EQ(Town(), QString());
}

TEST_F(CVelumUndoTest, WhatNoCommandClaimsIsAStepWithoutAName) {
  CVelumUndo undo(*iSample.iStack);
  iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  EXPECT_EQ(undo.Recorder().Strays(), 1);
  SetTown(u"Graz"_s);
  EXPECT_EQ(undo.NumSteps(), 2);
  static_cast<void>(undo.Undo());
  EXPECT_EQ(undo.UndoName(), QString());
  static_cast<void>(undo.Undo());
  EXPECT_EQ(Town(), QString());
}

TEST_F(CVelumUndoTest, AStackThatIsOtherwiseThanRecordedStaysAsItIs) {
  CVelumUndo undo(*iSample.iStack);
  {
    const CStep step(u"Two"_s);
    iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
    iBob->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Graz"_s));
  }
  {
    const CVelumRecord::CUnrecorded unheard;
    iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Linz"_s));
  }
  const QByteArray before = Form();
  EXPECT_EQ(Raised([&] { static_cast<void>(undo.Undo()); }), EMsgChangeDoesNotFit);
  EXPECT_EQ(DocumentForm::Difference(Form(), before), QString());
  EXPECT_FALSE(undo.CanUndo());
}

TEST_F(CVelumUndoTest, TellsWhatGoes) {
  CVelumUndo undo(*iSample.iStack);
  {
    const CStep step(u"Add"_s);
    iSample.AddCard(iSample.iFirst, u"Cat"_s);
  }
  ASSERT_EQ(undo.GoingWithUndo().iCards.size(), 1U);
  EXPECT_EQ(undo.GoingWithUndo().iCards.front()->Name(), u"Cat"_s);
  const TReplayed replayed = undo.Undo();
  EXPECT_TRUE(replayed.iCards);
  EXPECT_FALSE(replayed.iStructure);
  EXPECT_TRUE(undo.GoingWithRedo().iCards.empty());
}

TEST_F(CVelumUndoTest, TellsWhichCardCameBack) {
  CVelumUndo undo(*iSample.iStack);
  {
    const CStep step(u"Delete"_s);
    iSample.iStack->DeleteCard(iBob);
  }
  EXPECT_EQ(undo.Undo().iCardId, iBob->Id());
  Ref<CVelumCard> found;
  EXPECT_TRUE(iSample.iStack->GetCard(u"Bob"_s, found));
  EXPECT_EQ(found, iBob);
}

// Random operations of all kinds on a stack, each in a step of its own.
class CRandomWork {
public:
  explicit CRandomWork(quint32 aSeed) : iRandom(aSeed) {
    CVelumModel::Install();
    iKey = MakeRef<CVelumSortKey>(Stack().IdGen().NextId(), u"By town"_s, iSample.iFirst->Id());
    iKey->AddKeyPart(EConText, iSample.iTown->Id(), EWayAscending, 10);
    Stack().AddSortKey(iKey);
    Stack().SetControlDynFlags();
  }
  CVelumStack& Stack() { return *iSample.iStack; }
  void Act() {
    const CStep step(u"Act"_s);
    const int many = Pick(100) < 3 ? 5 : 1;
    for (int i = 0; i < many; ++i) One();
  }
  int Pick(int aCount) { return static_cast<int>(iRandom() % static_cast<quint32>(aCount)); }

private:
  Ref<CVelumControlSet> Background() { return Pick(2) == 0 ? iSample.iFirst : iSample.iSecond; }
  Ref<CVelumCard> Card() {
    Ref<CVelumCard> card;
    static_cast<void>(Stack().GetCardByNum(Pick(std::max(Stack().NumCards(), 1)), card));
    return card;
  }
  QString Text() { return QString(Pick(12), QChar(u'a' + Pick(26))); }

  void One() {
    const Ref<CVelumCard> card = Card();
    switch (Pick(card ? 20 : 2)) {
    case 0:
      return Stack().AddCard(MakeRef<CVelumCard>(Text(), Background()), card, Pick(2) == 0);
    case 1:
      return AddInBulk();
    case 2:
      return Pick(10) == 0 ? ReplaceCards(*card->Background()) : Stack().DeleteCard(card);
    case 3:
      return Stack().RenameCard(card, Text());
    case 4:
      return Stack().MoveCard(card, Pick(2) == 0 ? Card() : nullptr);
    case 5:
      return ChangeStructure();
    case 6:
      return Pick(40) == 0 ? Stack().DeleteAllCards() : card->SetBackColor(Pick(1000));
    case 7:
      return Pick(20) == 0 ? SwitchSorting() : card->SetScriptSource(Text());
    case 8:
      return card->SetFont(Pick(2) == 0 ? nullptr : MakeRef<CVelumFont>(Text(), qint16{200}, Pick(100)));
    case 9:
      return Pick(5) == 0 ? AddPicture(*card) : card->SetFlag(1, Pick(2) == 0);
    default:
      return SetValue(*card);
    }
  }
  void SetValue(CVelumCard& aCard) {
    const Ref<CVelumControlSet> background = aCard.Background();
    const Ref<CVelumControl> control = background->ControlAt(Pick(background->NumControls()));
    if (!control || control->Flag(EConCardList)) return;
    if (Pick(6) == 0) return aCard.DeleteControlVal(control->Id());
    if (control->ConType() == EConText)
      aCard.SetControlVal(control->Id(), TVelumValue::OfStr(Text()));
    else if (control->ConType() == EConInteger)
      aCard.SetControlVal(control->Id(), TVelumValue::OfInt(Pick(100)));
    else if (control->ConType() == EConDate)
      aCard.SetControlVal(control->Id(), TVelumValue::OfDate(40000 + Pick(100)));
  }
  void AddInBulk() {
    Stack().BeginBulk(5);
    for (int i = Pick(5); i >= 0; --i) {
      const auto card = MakeRef<CVelumCard>(Text(), Background());
      Stack().AddCard(card, nullptr, false);
      SetValue(*card);
    }
    Stack().EndBulk();
  }
  // As imports do it.
  void ReplaceCards(CVelumControlSet& aBackground) {
    const auto last = MakeRef<CVelumCard>(Text(), &aBackground);
    Stack().AddCard(last, nullptr, false);
    const qint32 first = last->Id();
    SetValue(*last);
    Stack().DeleteCardsOf(aBackground, first);
    Stack().CloseGap(first);
    SetValue(*last);
  }
  void ChangeStructure() {
    const Ref<CVelumControlSet> background = Background();
    switch (Pick(6)) {
    case 0: {
      const auto control = MakeRef<CVelumControl>(Stack().IdGen().NextId(), Text(), EConText);
      const CVelumControl* before = background->ControlAt(Pick(background->NumControls() + 1));
      background->AddControl(control, before ? before->Id() : ENoInt);
      iAdded.append(control->Id());
      return Stack().SetControlDynFlags();
    }
    case 1:
      return DeleteAddedControl();
    case 2:
      return iSample.iNote->SetDefaultVal(Text());
    case 3:
      return Stack().SetDescr(Text());
    case 4:
      return iSample.iTown->SetLabel(Text());
    default:
      return Stack().AdjustVisChar();
    }
  }
  void DeleteAddedControl() {
    while (!iAdded.isEmpty()) {
      const qint32 id = iAdded.takeAt(Pick(static_cast<int>(iAdded.size())));
      for (const auto& background : {iSample.iFirst, iSample.iSecond})
        if (background->FindControl(id)) return Stack().DeleteControl(id, background);
    }
  }
  void SwitchSorting() {
    CVelumControlSet& first = *iSample.iFirst;
    if (first.Flag(ECseKeepCardsSorted)) {
      first.SetFlag(ECseKeepCardsSorted, false);
      Stack().DeleteKeyIndex(first.KeyIndexId());
      return first.SetKeyIndexId(ENoInt);
    }
    first.SetFlag(ECseKeepCardsSorted, true);
    Stack().NewIndexForSortKey(iKey);
  }
  void AddPicture(CVelumCard& aCard) {
    if (aCard.BackgroundId() != iSample.iFirst->Id()) return;
    const qint32 id = Stack().IdGen().NextId();
    if (!iPicture) {
      iPicture = MakeRef<CVelumControl>(Stack().IdGen().NextId(), u"Picture"_s, EConPicture);
      iSample.iFirst->AddControl(iPicture, ENoInt);
    }
    if (!iSample.iFirst->FindControl(iPicture->Id())) return;
    const auto blob = MakeRef<CVelumBlob>(id);
    blob->SetBytes(QByteArray(Pick(500) + 1, static_cast<char>(Pick(256))));
    Stack().BlobStore()->AddBlob(blob);
    aCard.SetControlVal(iPicture->Id(), TVelumValue::OfBlobId(id));
  }

  std::mt19937 iRandom;
  TSampleStack iSample;
  Ref<CVelumSortKey> iKey;
  Ref<CVelumControl> iPicture;
  QList<qint32> iAdded;
};

// ORVELLES_UNDO_STEPS sets how many operations there are.
int NumSteps() {
  const int wanted = qEnvironmentVariableIntValue("ORVELLES_UNDO_STEPS");
  return wanted > 0 ? wanted : 3000;
}

TEST(CVelumUndoRandom, ComesBackAllTheWay) {
  ScriptedPresenter presenter;
  presenter.SetDefaultAnswer(true);
  CRandomWork work(20261122);
  CVelumUndo undo(work.Stack(), std::numeric_limits<qint64>::max());
  std::vector<QByteArray> forms{DocumentForm::Of(work.Stack())};
  for (int i = 0; i < NumSteps(); ++i) {
    const int before = static_cast<int>(undo.NumSteps());
    if (const int what = work.Pick(10); what == 0 && undo.CanUndo()) {
      static_cast<void>(undo.Undo());
      ASSERT_EQ(DocumentForm::Difference(DocumentForm::Of(work.Stack()), forms[size_t(before) - 1]),
                QString())
          << i;
    } else if (what == 1 && undo.CanRedo()) {
      static_cast<void>(undo.Redo());
      ASSERT_EQ(DocumentForm::Difference(DocumentForm::Of(work.Stack()), forms[size_t(before) + 1]),
                QString())
          << i;
    } else {
      work.Act();
      ASSERT_EQ(undo.Recorder().Strays(), 0);
      if (undo.NumSteps() == before) continue;
      forms.resize(size_t(undo.NumSteps()));
      forms.push_back(DocumentForm::Of(work.Stack()));
    }
  }
  while (undo.CanUndo()) {
    static_cast<void>(undo.Undo());
    ASSERT_EQ(DocumentForm::Difference(DocumentForm::Of(work.Stack()), forms[size_t(undo.NumSteps())]),
              QString());
  }
  while (undo.CanRedo()) {
    static_cast<void>(undo.Redo());
    ASSERT_EQ(DocumentForm::Difference(DocumentForm::Of(work.Stack()), forms[size_t(undo.NumSteps())]),
              QString());
  }
}

} // namespace
