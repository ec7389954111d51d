// Every function of the model classes that changes the document is called here, with undo listening: what it
// changes comes back whole, and goes again. A function that the list does not know fails the test that reads
// the headers.
#include "model/change/CVelumUndo.h"

#include "model/CVelumModelLib.h"
#include "model/CVelumRect.h"
#include "model/ModelTest.h"
#include "model/change/DocumentForm.h"
#include "support/TestTree.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <functional>

using namespace ModelTest;

namespace {

Ref<CVelumArray> NewScript() {
  auto script = MakeRef<CVelumArray>(EArrStrKey, EValStr);
  TVelumElem elem;
  script->InitElem(elem);
  elem.iStrKey = u"openCard"_s;
  elem.iVal = TVelumValue::OfStr(u"0100"_s);
  script->CreateStrKey(elem);
  return script;
}

// What the mutators act on; made anew for each of them.
struct TBed : TSampleStack {
  TBed() {
    iAnn = AddCard(iFirst, u"Ann"_s);
    iBob = AddCard(iFirst, u"Bob"_s);
    iCat = AddCard(iSecond, u"Cat"_s);
    iAnn->SetControlVal(iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
    iCat->SetControlVal(iKey->Id(), TVelumValue::OfStr(u"Bern"_s));
    iSortKey = MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"By town"_s, iFirst->Id());
    iSortKey->AddKeyPart(EConText, iTown->Id(), EWayDescending, 10);
    iStack->AddSortKey(iSortKey);
    iStack->SetControlDynFlags();
    iKeyIndex = MakeRef<CVelumArray>(EArrStrKey | EArrSortKey, EValInt);
    iKeyIndex->SetSortKey(iSortKey);
    iKeyIndex->SetId(iStack->IdGen().NextId());
    iText = MakeRef<CVelumControl>(iStack->IdGen().NextId(), u"New"_s, EConText);
    iLoose = MakeRef<CVelumCard>(u"Loose"_s, iFirst);
    iBlob = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
    iBlob->SetBytes("x");
    iStack->BlobStore()->AddBlob(iBlob);
  }

  Ref<CVelumCard> iAnn;
  Ref<CVelumCard> iBob;
  Ref<CVelumCard> iCat;
  Ref<CVelumCard> iLoose;
  Ref<CVelumSortKey> iSortKey;
  Ref<CVelumArray> iKeyIndex;
  Ref<CVelumControl> iText;
  Ref<CVelumBlob> iBlob;
  CVelumFont iFont;
  CVelumRect iRect;
  CVelumFont iOther{u"Other"_s, 100, 1};
};

struct TMutator {
  const char* iName; // Class::Function
  bool iChanges;     // the stored form of the stack
  std::function<void(TBed&)> iAct;
};

const std::vector<TMutator>& Mutators() {
  static const std::vector<TMutator> mutators = {
      {"CVelumFont::SetForeColor", false, [](TBed& b) { b.iFont.SetForeColor(1); }},
      {"CVelumFont::SetFlags", false, [](TBed& b) { b.iFont.SetFlags(1); }},
      {"CVelumFont::AddFont", false, [](TBed& b) { b.iFont.AddFont(&b.iOther); }},
      {"CVelumFont::SetDefaults", false, [](TBed& b) { b.iFont.SetDefaults(); }},
      {"CVelumRect::SetX", false, [](TBed& b) { b.iRect.SetX(1); }},
      {"CVelumRect::SetY", false, [](TBed& b) { b.iRect.SetY(1); }},
      {"CVelumRect::SetWidth", false, [](TBed& b) { b.iRect.SetWidth(1); }},
      {"CVelumRect::SetHeight", false, [](TBed& b) { b.iRect.SetHeight(1); }},
      {"CVelumIdGen::NextId", true, [](TBed& b) { static_cast<void>(b.iStack->IdGen().NextId()); }},

      {"CVelumScripted::SetName", true, [](TBed& b) { b.iTown->SetName(u"n"_s); }},
      {"CVelumScripted::SetId", false, [](TBed& b) { b.iText->SetId(77); }},
      {"CVelumScripted::SetFlags", true, [](TBed& b) { b.iFirst->SetFlags(1); }},
      {"CVelumScripted::SetFlag", true, [](TBed& b) { b.iFirst->SetFlag(32, true); }},
      {"CVelumScripted::SetScriptSource", true, [](TBed& b) { b.iAnn->SetScriptSource(u"s"_s); }},
      {"CVelumScripted::SetScript", true, [](TBed& b) { b.iAnn->SetScript(NewScript()); }},
      {"CVelumScripted::SetFont", true, [](TBed& b) { b.iAnn->SetFont(MakeRef<CVelumFont>()); }},
      {"CVelumScripted::SetBackColor", true, [](TBed& b) { b.iStack->SetBackColor(1); }},

      {"CVelumControl::SetFlags", true, [](TBed& b) { b.iTown->SetFlags(1); }},
      {"CVelumControl::SetConType", true, [](TBed& b) { b.iSince->SetConType(EConReal); }},
      {"CVelumControl::SetVisLines", true, [](TBed& b) { b.iTown->SetVisLines(2); }},
      {"CVelumControl::SetVisChar", true, [](TBed& b) { b.iTown->SetVisChar(2); }},
      {"CVelumControl::SetMaxChar", true, [](TBed& b) { b.iTown->SetMaxChar(2); }},
      {"CVelumControl::SetDigits", true, [](TBed& b) { b.iTown->SetDigits(2); }},
      {"CVelumControl::SetListVisChar", true, [](TBed& b) { b.iTown->SetListVisChar(2); }},
      {"CVelumControl::SetDescr", true, [](TBed& b) { b.iTown->SetDescr(u"d"_s); }},
      {"CVelumControl::SetLabel", true, [](TBed& b) { b.iTown->SetLabel(u"l"_s); }},
      {"CVelumControl::SetDefaultVal", true, [](TBed& b) { b.iTown->SetDefaultVal(u"v"_s); }},
      {"CVelumControl::SetListColTitle", true, [](TBed& b) { b.iTown->SetListColTitle(u"t"_s); }},
      {"CVelumControl::SetPartnerId", false, [](TBed& b) { b.iTown->SetPartnerId(ENoInt); }},
      {"CVelumControl::SetRefControlId", true, [](TBed& b) { b.iSome->SetRefControlId(ENoInt); }},
      {"CVelumControl::SetSelBackgroundId", true, [](TBed& b) { b.iSome->SetSelBackgroundId(ENoInt); }},
      {"CVelumControl::SetSelControlId", true, [](TBed& b) { b.iSome->SetSelControlId(ENoInt); }},
      {"CVelumControl::SetListCol", true, [](TBed& b) { b.iSome->SetListCol(nullptr); }},
      {"CVelumControl::SetStdCmd", true, [](TBed& b) { b.iTown->SetStdCmd(1); }},
      {"CVelumControl::SetDestCardId", true, [](TBed& b) { b.iTown->SetDestCardId(1); }},

      {"CVelumControlSet::SetDescr", true, [](TBed& b) { b.iFirst->SetDescr(u"d"_s); }},
      {"CVelumControlSet::SetKeyIndexId", true, [](TBed& b) { b.iFirst->SetKeyIndexId(1); }},
      {"CVelumControlSet::SetWallPaperId", true, [](TBed& b) { b.iFirst->SetWallPaperId(1); }},
      {"CVelumControlSet::AddControl", true, [](TBed& b) { b.iFirst->AddControl(b.iText, ENoInt); }},
      {"CVelumControlSet::DeleteControl", true, [](TBed& b) { b.iFirst->DeleteControl(b.iNote->Id()); }},

      {"CVelumSortKey::SetName", true, [](TBed& b) { b.iSortKey->SetName(u"n"_s); }},
      {"CVelumSortKey::AddKeyPart", true,
       [](TBed& b) { b.iSortKey->AddKeyPart(EConInteger, b.iSize->Id(), EWayAscending, 11); }},
      {"CVelumSortKey::SetControlType", true,
       [](TBed& b) { b.iSortKey->SetControlType(b.iTown->Id(), EConInteger); }},
      {"CVelumSortKey::Clear", true, [](TBed& b) { b.iSortKey->Clear(); }},

      {"CVelumCard::SetName", true, [](TBed& b) { b.iBob->SetName(u"n"_s); }},
      {"CVelumCard::SetOrderNum", false, [](TBed& b) { b.iLoose->SetOrderNum(5); }},
      {"CVelumCard::SetCreDate", true, [](TBed& b) { b.iAnn->SetCreDate(40000); }},
      {"CVelumCard::SetCreTime", true, [](TBed& b) { b.iAnn->SetCreTime(0.5); }},
      {"CVelumCard::SetModDate", true, [](TBed& b) { b.iAnn->SetModDate(40000); }},
      {"CVelumCard::SetModTime", true, [](TBed& b) { b.iAnn->SetModTime(0.5); }},
      {"CVelumCard::SetBackground", true, [](TBed& b) { b.iBob->SetBackground(b.iSecond); }},
      {"CVelumCard::SetControlVal", true,
       [](TBed& b) { b.iAnn->SetControlVal(b.iNote->Id(), TVelumValue::OfStr(u"x"_s)); }},
      {"CVelumCard::DeleteControlVal", true, [](TBed& b) { b.iAnn->DeleteControlVal(b.iTown->Id()); }},
      {"CVelumCard::InitVal", true, [](TBed& b) { b.iAnn->InitVal(b.iSize); }},
      {"CVelumCard::InitAllVal", true, [](TBed& b) { b.iAnn->InitAllVal(); }},
      {"CVelumCard::UpdateCardLists", false, [](TBed& b) { b.iCat->UpdateCardLists(); }},

      {"CVelumBlob::SetBlobType", true, [](TBed& b) { b.iBlob->SetBlobType(1); }},
      {"CVelumBlob::SetName", true, [](TBed& b) { b.iBlob->SetName(u"n"_s); }},
      {"CVelumBlob::SetFilename", true, [](TBed& b) { b.iBlob->SetFilename(u"f"_s); }},
      {"CVelumBlob::SetCreDate", true, [](TBed& b) { b.iBlob->SetCreDate(40000); }},
      {"CVelumBlob::SetCreTime", true, [](TBed& b) { b.iBlob->SetCreTime(0.5); }},
      {"CVelumBlob::SetFileDate", true, [](TBed& b) { b.iBlob->SetFileDate(40000); }},
      {"CVelumBlob::SetFileTime", true, [](TBed& b) { b.iBlob->SetFileTime(0.5); }},
      {"CVelumBlob::SetMimeType", true, [](TBed& b) { b.iBlob->SetMimeType(u"image/png"_s); }},
      {"CVelumBlob::SetOriginalId", true, [](TBed& b) { b.iBlob->SetOriginalId(1); }},
      {"CVelumBlob::SetSampleId", true, [](TBed& b) { b.iBlob->SetSampleId(1); }},
      {"CVelumBlob::SetWidth", true, [](TBed& b) { b.iBlob->SetWidth(1); }},
      {"CVelumBlob::SetHeight", true, [](TBed& b) { b.iBlob->SetHeight(1); }},
      {"CVelumBlob::SetBytes", true, [](TBed& b) { b.iBlob->SetBytes("xy"); }},
      {"CVelumBlob::IncRefCount", true, [](TBed& b) { b.iBlob->IncRefCount(); }},
      {"CVelumBlob::DecRefCount", false,
       [](TBed& b) {
         b.iBlob->IncRefCount();
         b.iBlob->DecRefCount();
       }},
      {"CVelumBlobStore::AddBlob", true,
       [](TBed& b) { b.iStack->BlobStore()->AddBlob(MakeRef<CVelumBlob>(b.iStack->IdGen().NextId())); }},
      {"CVelumBlobStore::DeleteBlob", true,
       [](TBed& b) { b.iStack->BlobStore()->DeleteBlob(b.iBlob->Id()); }},
      {"CVelumBlobStore::DecRefCount", true,
       [](TBed& b) {
         Ref<CVelumBlob> blob = b.iBlob;
         blob->IncRefCount();
         b.iStack->BlobStore()->DecRefCount(blob);
       }},
      {"CVelumBlobStore::AddReference", true,
       [](TBed& b) { b.iStack->BlobStore()->AddReference(b.iBlob->Id()); }},
      {"CVelumBlobStore::ReleaseReference", true,
       [](TBed& b) {
         b.iBlob->IncRefCount();
         b.iStack->BlobStore()->ReleaseReference(b.iBlob->Id());
       }},
      {"CVelumBlobStore::DecDynRefCount", true,
       [](TBed& b) {
         Ref<CVelumBlob> blob = b.iBlob;
         blob->IncDynRefCount();
         b.iStack->BlobStore()->DecDynRefCount(blob);
       }},

      {"CVelumStack::SetDescr", true, [](TBed& b) { b.iStack->SetDescr(u"d"_s); }},
      {"CVelumStack::SetFilename", false, [](TBed& b) { b.iStack->SetFilename(u"f"_s); }},
      {"CVelumStack::SetListFont", true, [](TBed& b) { b.iStack->SetListFont(MakeRef<CVelumFont>()); }},
      {"CVelumStack::AddBackground", true,
       [](TBed& b) {
         b.iStack->AddBackground(MakeRef<CVelumControlSet>(u"Third"_s, b.iStack->IdGen().NextId()));
       }},
      {"CVelumStack::AddSortKey", true,
       [](TBed& b) {
         const qint32 id = b.iStack->IdGen().NextId();
         b.iStack->AddSortKey(MakeRef<CVelumSortKey>(id, u"Other"_s, b.iFirst->Id()));
       }},
      {"CVelumStack::DeleteSortKey", true, [](TBed& b) { b.iStack->DeleteSortKey(b.iSortKey->Id()); }},
      {"CVelumStack::AddKeyIndex", true, [](TBed& b) { b.iStack->AddKeyIndex(b.iKeyIndex); }},
      {"CVelumStack::DeleteKeyIndex", false,
       [](TBed& b) {
         b.iStack->AddKeyIndex(b.iKeyIndex);
         b.iStack->DeleteKeyIndex(b.iKeyIndex->Id());
       }},
      {"CVelumStack::AddCard", true, [](TBed& b) { b.iStack->AddCard(b.iLoose, b.iBob, false); }},
      {"CVelumStack::DeleteCard", true, [](TBed& b) { b.iStack->DeleteCard(b.iBob); }},
      {"CVelumStack::DeleteAllCards", true, [](TBed& b) { b.iStack->DeleteAllCards(); }},
      {"CVelumStack::RenameCard", true, [](TBed& b) { b.iStack->RenameCard(b.iBob, u"Rob"_s); }},
      {"CVelumStack::MoveCard", true, [](TBed& b) { b.iStack->MoveCard(b.iCat, b.iAnn); }},
      {"CVelumStack::MoveAllCardsOfBackground", true,
       [](TBed& b) {
         b.iFirst->SetFlag(ECseKeepCardsSorted, true);
         b.iStack->MoveAllCardsOfBackground(b.iFirst, nullptr);
       }},
      {"CVelumStack::DeleteBackground", true,
       [](TBed& b) {
         for (const auto& list : {b.iAll, b.iSome}) b.iSecond->DeleteControl(list->Id());
         b.iStack->DeleteBackground(b.iFirst, false);
       }},
      {"CVelumStack::Sort", true, [](TBed& b) { b.iStack->Sort(b.iFirst, b.iSortKey, nullptr, false); }},
      {"CVelumStack::NewIndexForSortKey", true,
       [](TBed& b) {
         b.iFirst->SetFlag(ECseKeepCardsSorted, true);
         b.iStack->NewIndexForSortKey(b.iSortKey);
       }},
      {"CVelumStack::DeleteControl", true, [](TBed& b) { b.iStack->DeleteControl(b.iTown->Id(), b.iFirst); }},
      {"CVelumStack::AdjustCardPos", true,
       [](TBed& b) {
         b.iFirst->SetFlag(ECseKeepCardsSorted, true);
         b.iStack->NewIndexForSortKey(b.iSortKey);
         b.iStack->MoveCard(b.iBob, b.iAnn);
         b.iStack->AdjustCardPos(b.iBob, false, b.iSortKey->BuildKey(*b.iBob));
       }},
      {"CVelumStack::AdjustVisChar", true, [](TBed& b) { b.iStack->AdjustVisChar(); }},
      {"CVelumStack::PrepareForSave", false, [](TBed& b) { b.iStack->PrepareForSave(); }},
      {"CVelumStack::EndBulk", true,
       [](TBed& b) {
         b.iStack->BeginBulk(1);
         b.iStack->AddCard(b.iLoose, nullptr, false);
         b.iStack->EndBulk();
       }},
      {"CVelumStack::DeleteCardsOf", true, [](TBed& b) { b.iStack->DeleteCardsOf(*b.iFirst, b.iBob->Id()); }},
      {"CVelumStack::CloseGap", true,
       [](TBed& b) {
         b.iStack->AddCard(b.iLoose, nullptr, false);
         b.iLoose->SetControlVal(b.iTown->Id(), TVelumValue::OfStr(u"Rome"_s));
         b.iStack->DeleteCard(b.iStack->GetCardById(b.iLoose->Id() - 1));
         b.iStack->CloseGap(b.iLoose->Id());
         b.iLoose->SetControlVal(b.iTown->Id(), TVelumValue::OfStr(u"Oslo"_s));
       }},
  };
  return mutators;
}

// Functions that are not const and yet change nothing of the document; with their class where another class
// has a mutator of that name.
const QSet<QString>& NoMutators() {
  static const QSet<QString> names = {
      // the stored form, and the marks of what was stored
      u"Internalize"_s, u"Externalize"_s, u"InternalizeXml"_s, u"ExternalizeXml"_s, u"SetChanged"_s,
      u"ResetChanged"_s, u"ResetChangeInfo"_s,
      // bindings to owners and to what stands on the screen
      u"SetStack"_s, u"SetOwner"_s, u"SetBaseControl"_s, u"SetBaseLabel"_s, u"SetBaseFunc"_s, u"SetList"_s,
      u"SetBlobStore"_s, u"SetDynFlags"_s, u"SetDynFlag"_s, u"SetControlDynFlags"_s,
      // what is computed anew at need
      u"SetDirty"_s, u"SetListBasis"_s, u"RaiseListStamp"_s, u"SetNumCards"_s, u"SetCardListsDirty"_s,
      u"ChangeCard"_s, u"SetStoredKey"_s, u"SetComputedText"_s, u"NewValues"_s, u"BeginBulk"_s,
      // where blobs lie, in memory and on file, and who holds them
      u"SetOnFile"_s, u"SetAge"_s, u"SetInfoOnly"_s, u"SetMarks"_s, u"IncDynRefCount"_s,
      u"CVelumBlob::DecDynRefCount"_s, u"IncDynRefCounts"_s, u"CVelumBlobStore::SetFlag"_s, u"SetFile"_s,
      u"CloseFile"_s, u"NoteFileId"_s, u"SetFileId"_s, u"SwitchToRamBased"_s, u"SwitchToFileBased"_s,
      u"ReleaseChangedPlaces"_s, u"Commit"_s, u"SetNewStartPos"_s, u"WriteAllTo"_s, u"Restore"_s,
      u"IsSound"_s, u"PutBack"_s, u"TakeOut"_s, u"ReadBlob"_s, u"ReadFirstBlob"_s, u"ReadNextBlob"_s,
      // lookups that may compute first
      u"KeyIndex"_s, u"GetControlVal"_s, u"FindCards"_s, u"GetCardList"_s};
  return names;
}

// Writes the last step, and reads it again.
CVelumChangeGroup ThroughBytes(const CVelumChangeGroup& aGroup) {
  const Ref<CVelumFile> file = CVelumChangeIo::NewMemoryFile();
  aGroup.Write(*file);
  file->SeekPos(0);
  CVelumChangeGroup group = CVelumChangeGroup::Read(*file);
  EXPECT_EQ(file->BytesLeft(), 0);
  return group;
}

class CKeeper final : public CVelumStepWatch {
public:
  void Stepped(const CVelumChangeGroup& aGroup, bool) override { iGroup = ThroughBytes(aGroup); }
  CVelumChangeGroup iGroup;
};

class MutatorTest : public testing::TestWithParam<size_t> {
protected:
  // A list of cards whose background or column has gone is asked about when it is computed.
  MutatorTest() {
    CVelumModel::Install();
    iPresenter.SetDefaultAnswer(true);
  }
  [[nodiscard]] static const TMutator& Mutator() { return Mutators()[GetParam()]; }
  void Act() {
    const CVelumError::CCommand command(u"Act"_s);
    EXPECT_NO_THROW(Mutator().iAct(iBed)) << gLastError.iP1.toStdString();
  }

  ScriptedPresenter iPresenter;
  TBed iBed;
};

TEST_P(MutatorTest, ComesBackAndGoesAgain) {
  const QByteArray before = DocumentForm::Of(*iBed.iStack);
  CVelumUndo undo(*iBed.iStack);
  Act();
  const QByteArray after = DocumentForm::Of(*iBed.iStack);
  EXPECT_EQ(before != after, Mutator().iChanges);
  EXPECT_EQ(undo.CanUndo(), before != after || undo.CanUndo());
  EXPECT_EQ(undo.Recorder().Strays(), 0);
  if (before != after) {
    ASSERT_EQ(undo.UndoName(), u"Act"_s);
  }
  for (int round = 0; round < 2; ++round) {
    static_cast<void>(undo.Undo());
    EXPECT_EQ(DocumentForm::Difference(DocumentForm::Of(*iBed.iStack), before), QString());
    static_cast<void>(undo.Redo());
    EXPECT_EQ(DocumentForm::Difference(DocumentForm::Of(*iBed.iStack), after), QString());
  }
}

TEST_P(MutatorTest, ComesBackAndGoesAgainFromBytes) {
  CKeeper keeper;
  const QByteArray before = DocumentForm::Of(*iBed.iStack);
  CVelumUndo undo(*iBed.iStack);
  undo.SetWatch(&keeper);
  Act();
  const QByteArray after = DocumentForm::Of(*iBed.iStack);
  if (keeper.iGroup.IsEmpty()) return;
  for (int round = 0; round < 2; ++round) {
    static_cast<void>(keeper.iGroup.Revert(*iBed.iStack));
    EXPECT_EQ(DocumentForm::Difference(DocumentForm::Of(*iBed.iStack), before), QString());
    static_cast<void>(keeper.iGroup.Apply(*iBed.iStack));
    EXPECT_EQ(DocumentForm::Difference(DocumentForm::Of(*iBed.iStack), after), QString());
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, MutatorTest, testing::Range(size_t{0}, Mutators().size()), [](const auto& aInfo) {
      return QString::fromLatin1(Mutators()[aInfo.param].iName).replace(u"::"_s, u"_"_s).toStdString();
    });

// The functions that a class offers and that are not const, by its header.
QSet<QString> NonConstFunctions(const QString& aClass) {
  QDirIterator headers(TestTree::Source() + u"/src/model"_s, {aClass + u".h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
  QFile header(headers.next());
  EXPECT_TRUE(header.open(QIODevice::ReadOnly)) << aClass.toStdString();
  QString text = QString::fromUtf8(header.readAll());
  text.remove(QRegularExpression(u"//[^\n]*"_s));
  const qsizetype start = text.indexOf(QRegularExpression(u"class "_s + aClass + u"[^;{]*\\{"_s));
  EXPECT_GE(start, 0);
  text = text.mid(text.indexOf(u"public:"_s, start) + 7);
  text = text.left(text.indexOf(QRegularExpression(u"\n(private|protected):|\n\\};"_s)));
  const QRegularExpression body(u"\\{[^{}]*\\}"_s);
  while (text.contains(body)) text.replace(body, u";"_s);

  QSet<QString> names;
  const QRegularExpression function(u"(\\w+)\\s*\\(.*\\)\\s*(const)?\\s*(override)?\\s*(=.*)?$"_s,
                                    QRegularExpression::DotMatchesEverythingOption);
  for (const QString& part : text.split(u';')) {
    const QRegularExpressionMatch match = function.match(part.trimmed());
    const bool skipped = !match.hasMatch() || !match.captured(2).isEmpty() || part.contains(u"static "_s) ||
                         match.captured(1) == aClass;
    if (!skipped) names.insert(match.captured(1));
  }
  return names;
}

TEST(CVelumRecorder, TheListKnowsAllMutators) {
  const QStringList classes = {u"CVelumFont"_s,     u"CVelumRect"_s,    u"CVelumIdGen"_s,
                               u"CVelumScripted"_s, u"CVelumControl"_s, u"CVelumControlSet"_s,
                               u"CVelumSortKey"_s,  u"CVelumBlob"_s,    u"CVelumBlobStore"_s,
                               u"CVelumCard"_s,     u"CVelumStack"_s};
  QSet<QString> known;
  for (const TMutator& mutator : Mutators()) known.insert(QString::fromLatin1(mutator.iName));
  for (const QString& name : classes) {
    const QSet<QString> functions = NonConstFunctions(name);
    EXPECT_FALSE(functions.isEmpty()) << name.toStdString();
    for (const QString& function : functions) {
      const QString full = name + u"::"_s + function;
      const bool none = NoMutators().contains(function) || NoMutators().contains(full);
      EXPECT_TRUE(known.contains(full) || none) << full.toStdString() << " is in no list";
    }
  }
}

} // namespace
