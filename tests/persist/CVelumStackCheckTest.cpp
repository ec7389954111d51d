#include "persist/CVelumStackCheck.h"

#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "persist/CVelumStackFile.h"
#include "support/PrintQt.h"
#include "support/RawValues.h"
#include "support/TempFolder.h"

#include <QtEndian>
#include <gtest/gtest.h>

namespace {

// A stack with two backgrounds, of which the first is kept sorted, a combo box, a card list and pictures.
class CVelumStackCheckTest : public testing::Test {
protected:
  CVelumStackCheckTest() {
    CVelumLocale::Init(u"en_US"_s);
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    iStack = MakeRef<CVelumStack>(u"Check"_s);
    gStack = iStack;
    iStack->SetFlag(EStaBinary, true);
    qint32 index = 0;
    EXPECT_TRUE(iStack->GetFirstBackground(iFirst, index));
    iSecond = MakeRef<CVelumControlSet>(u"Second"_s, iStack->IdGen().NextId());
    iStack->AddBackground(iSecond);
    AddFields();
    AddCards();
  }
  ~CVelumStackCheckTest() override { gStack = nullptr; }

  Ref<CVelumControl> AddField(CVelumControlSet& aBackground, const QString& aName, ECon aType) {
    auto field = MakeRef<CVelumControl>(iStack->IdGen().NextId(), aName, aType);
    aBackground.AddControl(field, ENoInt);
    return field;
  }

  void AddFields() {
    iName = AddField(*iFirst, u"Name"_s, EConText);
    iPicture = AddField(*iFirst, u"Picture"_s, EConPicture);
    iCombo = AddField(*iSecond, u"Combo"_s, EConText);
    iChoices = AddField(*iSecond, u"Choices"_s, EConList);
    iCombo->SetFlag(EConComboText, true);
    iChoices->SetFlag(EConComboList, true);
    iCombo->SetPartnerId(iChoices->Id());
    iChoices->SetPartnerId(iCombo->Id());
    iList = AddField(*iSecond, u"List"_s, EConList);
    iList->SetFlag(EConCardList, true);
    iList->SetSelBackgroundId(iFirst->Id());
    iList->SetSelControlId(iName->Id());
    iList->SetRefControlId(iCombo->Id());
    auto columns = MakeRef<CVelumArray>(0, EValInt);
    TVelumElem elem;
    elem.iVal = TVelumValue::OfInt(iName->Id());
    columns->CreateAtEnd(elem);
    iList->SetListCol(columns);
    iKey = MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"Key"_s, iFirst->Id());
    iKey->AddKeyPart(EConText, iName->Id(), EWayAscending, 10);
    iStack->AddSortKey(iKey);
    iFirst->SetFlag(ECseKeepCardsSorted, true);
    iStack->NewIndexForSortKey(iKey);
    iStack->SetControlDynFlags();
  }

  void AddCards() {
    for (const QString& name : {u"c"_s, u"a"_s, u"b"_s}) {
      auto card = MakeRef<CVelumCard>(name, iFirst);
      iStack->AddCard(card, nullptr, false);
      card->SetControlVal(iName->Id(), TVelumValue::OfStr(name));
    }
    iPlain = MakeRef<CVelumCard>(u"plain"_s, iSecond);
    iStack->AddCard(iPlain, nullptr, false);
  }

  // A picture and its sample; returns the id of the sample.
  qint32 AddPicture() {
    iFull = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
    iSample = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
    iFull->SetBytes("full picture");
    iSample->SetBytes("sample");
    iFull->SetSampleId(iSample->Id());
    iSample->SetOriginalId(iFull->Id());
    iFull->IncRefCount();
    iStack->BlobStore()->AddBlob(iFull);
    iStack->BlobStore()->AddBlob(iSample);
    return iSample->Id();
  }

  Ref<CVelumCard> Card(const QString& aName) {
    Ref<CVelumCard> card;
    EXPECT_TRUE(iStack->GetCard(aName, card));
    return card;
  }

  QString Check() { return CVelumStackCheck(*iStack).Run().join(u'\n'); }

  void PutValue(const Ref<CVelumCard>& aCard, qint32 aKey, const TVelumValue& aVal) {
    TVelumElem elem;
    elem.iIntKey = aKey;
    elem.iVal = aVal;
    RawValues(*aCard).CreateIntKey(elem);
  }

  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iFirst, iSecond;
  Ref<CVelumControl> iName, iPicture, iCombo, iChoices, iList;
  Ref<CVelumSortKey> iKey;
  Ref<CVelumCard> iPlain;
  Ref<CVelumBlob> iFull, iSample;
};

TEST_F(CVelumStackCheckTest, ASoundStackHasNoProblem) {
  EXPECT_EQ(Check(), QString());
  Card(u"a"_s)->SetControlVal(iPicture->Id(), TVelumValue::OfBlobId(AddPicture()));
  iStack->RenameCard(iPlain, u"renamed"_s);
  iStack->DeleteCard(Card(u"b"_s));
  EXPECT_EQ(Check(), QString());
}

TEST_F(CVelumStackCheckTest, FindsIdsGivenTwiceOrNever) {
  iChoices->SetId(iName->Id());
  EXPECT_TRUE(Check().contains(u"background 'Second', field 'Choices': id %1 belongs to background 'First "
                               "Background', field 'Name' too"_s.arg(iName->Id())));
  iChoices->SetId(999);
  EXPECT_TRUE(Check().contains(u"field 'Choices': id 999 was never handed out"_s));
  EXPECT_TRUE(Check().contains(u"field 'Choices': is not listed under its id"_s));
}

TEST_F(CVelumStackCheckTest, FindsWrongPartners) {
  iCombo->SetPartnerId(4711);
  const QString problems = Check();
  EXPECT_TRUE(problems.contains(u"field 'Combo': its combo partner 4711 does not exist"_s));
  EXPECT_TRUE(problems.contains(u"field 'Choices': its combo partner 'Combo' has another partner"_s));
}

TEST_F(CVelumStackCheckTest, FindsWhatACardListRefersTo) {
  iList->SetRefControlId(iName->Id()); // a field of the other background
  EXPECT_TRUE(
      Check().contains(u"field 'List': the field %1 that gives its selecting value"_s.arg(iName->Id())));
  iList->SetRefControlId(iCombo->Id());
  iList->SetSelControlId(iCombo->Id());
  EXPECT_TRUE(Check().contains(u"field 'List': the field %1 to check"_s.arg(iCombo->Id())));
  iList->SetSelControlId(ENoInt);
  iList->ListCol()->SetIntNum(0, iCombo->Id());
  EXPECT_TRUE(Check().contains(u"field 'List': the column field %1"_s.arg(iCombo->Id())));
  iList->SetSelBackgroundId(4711);
  EXPECT_TRUE(Check().contains(u"field 'List': the background 4711 of the cards to list"_s));
}

TEST_F(CVelumStackCheckTest, FindsValuesOfWrongFieldsAndTypes) {
  PutValue(iPlain, iName->Id(), TVelumValue::OfStr(u"x"_s));
  EXPECT_EQ(Check(),
            u"card 3 'plain': has a value for field %1, which background 'Second' does not have"_s.arg(
                iName->Id()));
  RawValues(*iPlain).DeleteIntKey(iName->Id());
  PutValue(iPlain, iCombo->Id(), TVelumValue::OfReal(1));
  EXPECT_EQ(Check(),
            u"card 3 'plain': the value of field 'Combo' has the type Real, which does not go with Text"_s);
}

TEST_F(CVelumStackCheckTest, FindsWrongNames) {
  Card(u"a"_s)->SetName(u"other"_s);
  EXPECT_EQ(Check(), u"name index: 'a' stands for card 1 'other'"_s);
}

TEST_F(CVelumStackCheckTest, FindsWrongSortKeys) {
  iKey->AddKeyPart(EConText, 4711, EWayAscending, 5);
  EXPECT_TRUE(
      Check().contains(u"sort key 'Key': the field 4711 does not exist in background 'First Background'"_s));
}

TEST_F(CVelumStackCheckTest, FindsKeysThatAreNotThoseOfTheCards) {
  const Ref<CVelumCard> card = Card(u"a"_s);
  RawValues(*card).DeleteIntKey(iName->Id());
  const QString problems = Check();
  EXPECT_TRUE(problems.contains(u"is not the key of card 1 'a'"_s)) << problems.toStdString();
  EXPECT_EQ(problems.count(u'\n'), 0);
}

TEST_F(CVelumStackCheckTest, FindsKeyIndexesWithTooFewCards) {
  qint32 cursor = 0;
  Ref<CVelumArray> index;
  ASSERT_TRUE(iStack->GetFirstKeyIndex(index, cursor));
  index->DeleteAt(1);
  const QString problems = Check();
  EXPECT_TRUE(problems.contains(u"card 2 'b': is missing in the key index"_s)) << problems.toStdString();
  EXPECT_TRUE(problems.contains(u"the order of its cards leaves that of its sort key at card 2 'b'"_s));
  iFirst->SetKeyIndexId(4711);
  EXPECT_TRUE(Check().contains(u"background 'First Background': its key index 4711 does not exist"_s));
}

TEST_F(CVelumStackCheckTest, FindsAnOrderThatLeavesTheSortKey) {
  iStack->MoveCard(Card(u"a"_s), nullptr);
  EXPECT_EQ(Check(), u"background 'First Background': the order of its cards leaves that of its sort key at "
                     "card 2 'b'"_s);
}

TEST_F(CVelumStackCheckTest, FindsWrongBlobReferences) {
  const qint32 sample = AddPicture();
  Card(u"a"_s)->SetControlVal(iPicture->Id(), TVelumValue::OfBlobId(sample));
  iSample->IncRefCount();
  EXPECT_EQ(Check(), u"blob %1: its reference count is 2, but 1 were found"_s.arg(sample));
  iSample->DecRefCount();
  iFirst->SetWallPaperId(4711);
  EXPECT_EQ(Check(), u"background 'First Background', wallpaper: blob 4711 does not exist"_s);
  iFirst->SetWallPaperId(ENoInt);
  PutValue(Card(u"b"_s), iPicture->Id(), TVelumValue::OfBlobId(4712));
  EXPECT_EQ(Check(), u"card 2 'b': blob 4712 does not exist"_s);
}

TEST_F(CVelumStackCheckTest, FindsSamplesOfOtherPictures) {
  const qint32 sample = AddPicture();
  Card(u"a"_s)->SetControlVal(iPicture->Id(), TVelumValue::OfBlobId(sample));
  iFull->SetSampleId(4711);
  EXPECT_EQ(Check(), u"blob %1: its sample, blob 4711, does not exist"_s.arg(iFull->Id()));
  iFull->SetSampleId(iFull->Id());
  EXPECT_EQ(Check(), u"blob %1: its sample, blob %1, is that of another picture"_s.arg(iFull->Id()));
}

// The same stack on file, with numbers of its blob area changed.
class CVelumBlobAreaCheckTest : public CVelumStackCheckTest {
protected:
  CVelumBlobAreaCheckTest() {
    Card(u"a"_s)->SetControlVal(iPicture->Id(), TVelumValue::OfBlobId(AddPicture()));
    const QString path = iFolder.Path(u"stack.Orvelle"_s);
    CVelumStackFile(path).SaveStack(iStack, MakeRef<CVelumViewState>(u"Check"_s));
    const Ref<CVelumBlobStore> store = iStack->BlobStore();
    for (qint32 i = 0; i < store->PosTab().Count(); ++i) iPlaces.append(store->PosTab().ValRef(i));
    iBehind = store->BehindPos();
    iStack = nullptr;
    gStack = nullptr;
    iBytes = iFolder.Read(u"stack.Orvelle"_s);
  }

  // Replaces the first 32-bit number aOld at or behind aFrom.
  void Patch(qint32 aOld, qint32 aNew, qsizetype aFrom) {
    QByteArray old(4, '\0');
    QByteArray changed(4, '\0');
    qToLittleEndian(aOld, old.data());
    qToLittleEndian(aNew, changed.data());
    const qsizetype at = iBytes.indexOf(old, aFrom);
    ASSERT_GE(at, 0);
    iBytes.replace(at, 4, changed);
  }

  QString CheckFile() {
    const QString path = iFolder.Write(u"patched.Orvelle"_s, iBytes);
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> view;
    CVelumStackFile(path).LoadStack(stack, view);
    gStack = stack;
    return CVelumStackCheck(*stack).Run().join(u'\n');
  }

  TempFolder iFolder;
  QByteArray iBytes;
  QList<TVelumValue> iPlaces;
  qint32 iBehind = 0;
};

TEST_F(CVelumBlobAreaCheckTest, ASavedStackIsSound) {
  ASSERT_EQ(iPlaces.size(), 2);
  EXPECT_EQ(CheckFile(), QString());
}

TEST_F(CVelumBlobAreaCheckTest, FindsWrongLengths) {
  Patch(iPlaces.at(0).Int1(), iPlaces.at(0).Int1() + 5, iBehind);
  const QString problems = CheckFile();
  EXPECT_TRUE(problems.contains(u"bytes long, not"_s)) << problems.toStdString();
  EXPECT_TRUE(problems.contains(u"begins before"_s)) << problems.toStdString();
}

TEST_F(CVelumBlobAreaCheckTest, FindsABlobAreaThatBeginsInsideTheStack) {
  Patch(iPlaces.at(0).Int0(), 20, iBehind); // the start of the area comes first in the table
  EXPECT_TRUE(CheckFile().contains(u"file: the blob area begins at 20, before the stack ends at"_s));
}

} // namespace
