// Random work with saves and loads in between: every card stays found by its name, and in its place by key.
#include "core/text/CVelumLocale.h"
#include "model/CVelumModel.h"
#include "persist/CVelumStackCheck.h"
#include "persist/CVelumStackFile.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

// Two backgrounds, of which the first is kept sorted by Town, and by Weight with the largest in front. Its
// field Name gives the name of its cards.
class StackFileRandomTest : public testing::TestWithParam<bool> {
protected:
  StackFileRandomTest() {
    CVelumModel::Install();
    CVelumLocale::Init(u"en_US"_s);
    iStack = MakeRef<CVelumStack>(u"Random"_s);
    iStack->SetFlag(EStaBinary, GetParam());
    iView = MakeRef<CVelumViewState>(u"Random"_s);
    iStack->AddBackground(MakeRef<CVelumControlSet>(u"Plain"_s, iStack->IdGen().NextId()));
    FindParts();
    AddField(u"Name"_s, EConReal)->SetFlag(EConCardName, true);
    AddField(u"Town"_s, EConText);
    AddField(u"Weight"_s, EConReal);
    FindParts();
    const auto key = MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"By town"_s, iSorted->Id());
    key->AddKeyPart(EConText, iTown->Id(), EWayAscending, 6);
    key->AddKeyPart(EConReal, iWeight->Id(), EWayDescending, 15);
    iStack->AddSortKey(key);
    iSorted->SetFlag(ECseKeepCardsSorted, true);
    iStack->NewIndexForSortKey(key);
    iStack->SetControlDynFlags();
  }

  Ref<CVelumControl> AddField(const QString& aName, qint32 aConType) {
    auto field = MakeRef<CVelumControl>(iStack->IdGen().NextId(), aName, aConType);
    iSorted->AddControl(field, ENoInt);
    return field;
  }
  // The parts of the stack, which another load gives anew.
  void FindParts() {
    qint32 at = 0;
    EXPECT_TRUE(iStack->GetFirstBackground(iSorted, at) && iStack->GetNextBackground(iPlain, at));
    static_cast<void>(iSorted->GetControlByName(u"Name"_s, iName));
    static_cast<void>(iSorted->GetControlByName(u"Town"_s, iTown));
    static_cast<void>(iSorted->GetControlByName(u"Weight"_s, iWeight));
  }

  unsigned Below(unsigned aMost) { return static_cast<unsigned>(iRandom()) % aMost; }
  QString Text() { return u"Text %1"_s.arg(Below(30)); }
  double Number() { return std::pow(10.0, double(Below(60)) - 30) / 7 * (Below(2) ? 1 : -1); }
  Ref<CVelumCard> Any() {
    Ref<CVelumCard> card;
    EXPECT_TRUE(iStack->GetCardByNum(qint32(Below(unsigned(iStack->NumCards()))), card));
    return card;
  }

  void EditField(CVelumCard& aCard) {
    if (aCard.BackgroundId() != iSorted->Id()) return;
    const Ref<CVelumControl> control = Below(2) ? iTown : Below(2) ? iWeight : iName;
    if (Below(4) == 0)
      aCard.DeleteControlVal(control->Id());
    else
      aCard.SetControlVal(control->Id(),
                          control == iTown ? TVelumValue::OfStr(Text()) : TVelumValue::OfReal(Number()));
  }
  void ChangeField() {
    switch (Below(3)) {
    case 0:
      iTown->SetDefaultVal(Below(2) ? Text() : QString());
      break;
    case 1:
      iWeight->SetDefaultVal(Below(2) ? u"2E-12"_s : QString());
      break;
    default:
      iWeight->SetConType(Below(2) ? EConText : EConReal);
      iWeight->SetConType(EConReal);
    }
  }
  void Step() {
    const unsigned what = iStack->NumCards() == 0 ? 0 : Below(20);
    if (what < 8)
      iStack->AddCard(MakeRef<CVelumCard>(Text(), Below(3) ? iSorted : iPlain), nullptr, Below(2) != 0);
    else if (what < 12)
      EditField(*Any());
    else if (what < 14)
      iStack->RenameCard(Any(), Text());
    else if (what < 19)
      iStack->DeleteCard(Any());
    else
      ChangeField();
  }

  void SaveAndLoad() {
    const QString path = iFolder.Path(u"t.Orvelle"_s);
    CVelumStackFile(path).SaveStack(iStack, iView);
    CVelumStackFile(path).LoadStack(iStack, iView);
    EXPECT_FALSE(iStack->Changed());
    EXPECT_EQ(iStack->OrderCorrections(), 0);
    FindParts();
  }
  // As another program leaves them: entries of any card under the name or key of another one.
  void Spoil(const CVelumArray& aIndex) {
    auto& index = const_cast<CVelumArray&>(aIndex);
    for (int i = 0; i < 3 && index.Count() > 1; ++i)
      index.SetValAt(qint32(Below(unsigned(index.Count()))) + 1, TVelumValue::OfInt(Any()->Id()));
  }
  // All that a check can find, but for what the load has mended.
  [[nodiscard]] QString Problems() const {
    return CVelumStackCheck(*iStack).Run().mid(iStack->LoadProblems().size()).join(u'\n');
  }
  void ExpectAllFound() const {
    Ref<CVelumCard> card;
    for (qint32 at = 0; iStack->GetNextCard(card, at);) {
      Ref<CVelumCard> found;
      ASSERT_TRUE(iStack->GetCard(card->Name(), found)) << card->Name().toStdString();
      EXPECT_EQ(found->Name(), card->Name());
    }
    EXPECT_EQ(iStack->NameIndex().Count(), iStack->NumCards());
    EXPECT_EQ(Problems(), QString());
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  std::mt19937 iRandom{31};
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
  Ref<CVelumControlSet> iSorted, iPlain;
  Ref<CVelumControl> iName, iTown, iWeight;
};

TEST_P(StackFileRandomTest, NamesKeysAndOrderStayRight) {
  for (int round = 0; round < 25 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    for (int i = 0; i < 60; ++i) Step();
    ExpectAllFound();
    SaveAndLoad();
    EXPECT_EQ(iStack->LoadProblems().join(u'\n'), QString());
    ExpectAllFound();
  }
  EXPECT_GT(iStack->NumCards(), 50);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_P(StackFileRandomTest, WhatAnotherProgramLeftIsPutRight) {
  int mended = 0;
  for (int round = 0; round < 25 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    for (int i = 0; i < 60; ++i) Step();
    const bool names = Below(3) != 0;
    if (names) Spoil(iStack->NameIndex());
    if (!names || Below(2)) Spoil(*iSorted->KeyIndex());
    SaveAndLoad();
    if (!iStack->LoadProblems().isEmpty()) ++mended;
    ExpectAllFound();
  }
  EXPECT_GT(mended, 15);
  EXPECT_EQ(iPresenter.Count(), 0) << "nothing is told";
}

INSTANTIATE_TEST_SUITE_P(Forms, StackFileRandomTest, testing::Bool(),
                         [](const auto& aInfo) { return aInfo.param ? "Binary" : "Xml"; });

} // namespace
