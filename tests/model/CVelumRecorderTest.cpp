// Every change of the model passes the recorder: each mutator of each class is called here once with a
// listener, and a mutator that this list does not know fails the test that reads the headers.
#include "model/CVelumRecorder.h"

#include "model/CVelumModelLib.h"
#include "model/CVelumRect.h"
#include "model/ModelTest.h"
#include "support/TestTree.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <functional>

using namespace ModelTest;

namespace {

// Notes all that passes as "member", "+member" or "-member", with the values.
class CListener final : public CVelumRecorder {
public:
  struct TNote {
    const CVelumObject* iObj;
    QString iWhat;
    TVelumValue iOld;
    TVelumValue iNew;
  };

  CListener() { CVelumRecord::gRecorder = this; }
  ~CListener() override { CVelumRecord::gRecorder = nullptr; }

  void MemberSet(const CVelumObject& aObj, const char* aMember, const TVelumValue& aOld,
                 const TVelumValue& aNew) override {
    iNotes.append({&aObj, QString::fromLatin1(aMember), aOld, aNew});
  }
  void Added(const CVelumObject& aOwner, const char* aMember, const CVelumObject&, qint32 aPlace) override {
    iNotes.append({&aOwner, u'+' + QString::fromLatin1(aMember), {}, TVelumValue::OfInt(aPlace)});
  }
  void Removed(const CVelumObject& aOwner, const char* aMember, const CVelumObject&, qint32 aPlace) override {
    iNotes.append({&aOwner, u'-' + QString::fromLatin1(aMember), TVelumValue::OfInt(aPlace), {}});
  }
  void OrderRebuilt(const CVelumObject& aStack) override { iNotes.append({&aStack, u"order"_s, {}, {}}); }

  [[nodiscard]] QStringList What() const {
    QStringList what;
    for (const TNote& note : iNotes) what.append(note.iWhat);
    return what;
  }

  QList<TNote> iNotes;
};

Ref<CVelumArray> NewScript() {
  return MakeRef<CVelumArray>(EArrStrKey, EValStr);
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
  const char* iWhat; // what the listener must hear
  std::function<void(TBed&)> iAct;
};

const std::vector<TMutator>& Mutators() {
  static const std::vector<TMutator> mutators = {
      {"CVelumFont::SetForeColor", "ForeColor", [](TBed& b) { b.iFont.SetForeColor(1); }},
      {"CVelumFont::SetFlags", "Flags", [](TBed& b) { b.iFont.SetFlags(1); }},
      {"CVelumFont::AddFont", "FaceName,Size,ForeColor", [](TBed& b) { b.iFont.AddFont(&b.iOther); }},
      {"CVelumFont::SetDefaults", "FaceName,Size,ForeColor", [](TBed& b) { b.iFont.SetDefaults(); }},
      {"CVelumRect::SetX", "X", [](TBed& b) { b.iRect.SetX(1); }},
      {"CVelumRect::SetY", "Y", [](TBed& b) { b.iRect.SetY(1); }},
      {"CVelumRect::SetWidth", "Width", [](TBed& b) { b.iRect.SetWidth(1); }},
      {"CVelumRect::SetHeight", "Height", [](TBed& b) { b.iRect.SetHeight(1); }},
      {"CVelumIdGen::NextId", "NextId", [](TBed& b) { static_cast<void>(b.iStack->IdGen().NextId()); }},

      {"CVelumScripted::SetName", "Name", [](TBed& b) { b.iTown->SetName(u"n"_s); }},
      {"CVelumScripted::SetId", "Id", [](TBed& b) { b.iText->SetId(77); }},
      {"CVelumScripted::SetFlags", "Flags", [](TBed& b) { b.iFirst->SetFlags(1); }},
      {"CVelumScripted::SetFlag", "Flags", [](TBed& b) { b.iFirst->SetFlag(32, true); }},
      {"CVelumScripted::SetScriptSource", "ScriptSource", [](TBed& b) { b.iAnn->SetScriptSource(u"s"_s); }},
      {"CVelumScripted::SetScript", "Script", [](TBed& b) { b.iAnn->SetScript(NewScript()); }},
      {"CVelumScripted::SetFont", "Font", [](TBed& b) { b.iAnn->SetFont(MakeRef<CVelumFont>()); }},
      {"CVelumScripted::SetBackColor", "BackColor", [](TBed& b) { b.iStack->SetBackColor(1); }},

      {"CVelumControl::SetFlags", "Flags", [](TBed& b) { b.iTown->SetFlags(1); }},
      {"CVelumControl::SetConType", "ConType", [](TBed& b) { b.iText->SetConType(EConReal); }},
      {"CVelumControl::SetVisLines", "VisLines", [](TBed& b) { b.iTown->SetVisLines(2); }},
      {"CVelumControl::SetVisChar", "VisChar", [](TBed& b) { b.iTown->SetVisChar(2); }},
      {"CVelumControl::SetMaxChar", "MaxChar", [](TBed& b) { b.iTown->SetMaxChar(2); }},
      {"CVelumControl::SetDigits", "Digits", [](TBed& b) { b.iTown->SetDigits(2); }},
      {"CVelumControl::SetListVisChar", "ListVisChar", [](TBed& b) { b.iTown->SetListVisChar(2); }},
      {"CVelumControl::SetDescr", "Descr", [](TBed& b) { b.iTown->SetDescr(u"d"_s); }},
      {"CVelumControl::SetLabel", "Label", [](TBed& b) { b.iTown->SetLabel(u"l"_s); }},
      {"CVelumControl::SetDefaultVal", "DefaultVal", [](TBed& b) { b.iTown->SetDefaultVal(u"v"_s); }},
      {"CVelumControl::SetListColTitle", "ListColTitle", [](TBed& b) { b.iTown->SetListColTitle(u"t"_s); }},
      {"CVelumControl::SetPartnerId", "PartnerId", [](TBed& b) { b.iTown->SetPartnerId(ENoInt); }},
      {"CVelumControl::SetRefControlId", "RefControlId", [](TBed& b) { b.iSome->SetRefControlId(ENoInt); }},
      {"CVelumControl::SetSelBackgroundId", "SelBackgroundId",
       [](TBed& b) { b.iSome->SetSelBackgroundId(ENoInt); }},
      {"CVelumControl::SetSelControlId", "SelControlId", [](TBed& b) { b.iSome->SetSelControlId(ENoInt); }},
      {"CVelumControl::SetListCol", "ListCol", [](TBed& b) { b.iSome->SetListCol(nullptr); }},
      {"CVelumControl::SetStdCmd", "StdCmd", [](TBed& b) { b.iTown->SetStdCmd(1); }},
      {"CVelumControl::SetDestCardId", "DestCardId", [](TBed& b) { b.iTown->SetDestCardId(1); }},

      {"CVelumControlSet::SetDescr", "Descr", [](TBed& b) { b.iFirst->SetDescr(u"d"_s); }},
      {"CVelumControlSet::SetKeyIndexId", "KeyIndexId", [](TBed& b) { b.iFirst->SetKeyIndexId(1); }},
      {"CVelumControlSet::SetWallPaperId", "WallPaperId", [](TBed& b) { b.iFirst->SetWallPaperId(1); }},
      {"CVelumControlSet::AddControl", "+Control", [](TBed& b) { b.iFirst->AddControl(b.iText, ENoInt); }},
      {"CVelumControlSet::DeleteControl", "-Control",
       [](TBed& b) { b.iFirst->DeleteControl(b.iNote->Id()); }},

      {"CVelumSortKey::SetName", "Name", [](TBed& b) { b.iSortKey->SetName(u"n"_s); }},
      {"CVelumSortKey::AddKeyPart", "KeyPart",
       [](TBed& b) { b.iSortKey->AddKeyPart(EConInteger, b.iSize->Id(), EWayAscending, 11); }},
      {"CVelumSortKey::SetControlType", "KeyPart",
       [](TBed& b) { b.iSortKey->SetControlType(b.iTown->Id(), EConInteger); }},
      {"CVelumSortKey::Clear", "KeyPart", [](TBed& b) { b.iSortKey->Clear(); }},

      {"CVelumCard::SetName", "Name", [](TBed& b) { b.iLoose->SetName(u"n"_s); }},
      {"CVelumCard::SetOrderNum", "OrderNum", [](TBed& b) { b.iLoose->SetOrderNum(5); }},
      {"CVelumCard::SetCreDate", "CreDate", [](TBed& b) { b.iAnn->SetCreDate(40000); }},
      {"CVelumCard::SetCreTime", "CreTime", [](TBed& b) { b.iAnn->SetCreTime(0.5); }},
      {"CVelumCard::SetModDate", "ModDate", [](TBed& b) { b.iAnn->SetModDate(40000); }},
      {"CVelumCard::SetModTime", "ModTime", [](TBed& b) { b.iAnn->SetModTime(0.5); }},
      {"CVelumCard::SetBackground", "BackgroundId", [](TBed& b) { b.iLoose->SetBackground(b.iSecond); }},
      {"CVelumCard::SetControlVal", "Value",
       [](TBed& b) { b.iAnn->SetControlVal(b.iNote->Id(), TVelumValue::OfStr(u"x"_s)); }},
      {"CVelumCard::DeleteControlVal", "Value", [](TBed& b) { b.iAnn->DeleteControlVal(b.iTown->Id()); }},
      {"CVelumCard::InitVal", "Value", [](TBed& b) { b.iAnn->InitVal(b.iSize); }},
      {"CVelumCard::InitAllVal", "Value", [](TBed& b) { b.iAnn->InitAllVal(); }},
      {"CVelumCard::UpdateCardLists", "Value,DefaultVal", [](TBed& b) { b.iCat->UpdateCardLists(); }},

      {"CVelumBlob::SetBlobType", "BlobType", [](TBed& b) { b.iBlob->SetBlobType(1); }},
      {"CVelumBlob::SetName", "Name", [](TBed& b) { b.iBlob->SetName(u"n"_s); }},
      {"CVelumBlob::SetFilename", "Filename", [](TBed& b) { b.iBlob->SetFilename(u"f"_s); }},
      {"CVelumBlob::SetCreDate", "CreDate", [](TBed& b) { b.iBlob->SetCreDate(40000); }},
      {"CVelumBlob::SetCreTime", "CreTime", [](TBed& b) { b.iBlob->SetCreTime(0.5); }},
      {"CVelumBlob::SetFileDate", "FileDate", [](TBed& b) { b.iBlob->SetFileDate(40000); }},
      {"CVelumBlob::SetFileTime", "FileTime", [](TBed& b) { b.iBlob->SetFileTime(0.5); }},
      {"CVelumBlob::SetMimeType", "MimeType", [](TBed& b) { b.iBlob->SetMimeType(u"image/png"_s); }},
      {"CVelumBlob::SetOriginalId", "OriginalId", [](TBed& b) { b.iBlob->SetOriginalId(1); }},
      {"CVelumBlob::SetSampleId", "SampleId", [](TBed& b) { b.iBlob->SetSampleId(1); }},
      {"CVelumBlob::SetWidth", "Width", [](TBed& b) { b.iBlob->SetWidth(1); }},
      {"CVelumBlob::SetHeight", "Height", [](TBed& b) { b.iBlob->SetHeight(1); }},
      {"CVelumBlob::SetBytes", "Bytes", [](TBed& b) { b.iBlob->SetBytes("xy"); }},
      {"CVelumBlob::IncRefCount", "RefCount", [](TBed& b) { b.iBlob->IncRefCount(); }},
      {"CVelumBlob::DecRefCount", "RefCount",
       [](TBed& b) {
         b.iBlob->IncRefCount();
         b.iBlob->DecRefCount();
       }},
      {"CVelumBlobStore::AddBlob", "+Blob",
       [](TBed& b) { b.iStack->BlobStore()->AddBlob(MakeRef<CVelumBlob>(b.iStack->IdGen().NextId())); }},
      {"CVelumBlobStore::DeleteBlob", "-Blob",
       [](TBed& b) { b.iStack->BlobStore()->DeleteBlob(b.iBlob->Id()); }},
      {"CVelumBlobStore::DecRefCount", "RefCount,-Blob",
       [](TBed& b) {
         Ref<CVelumBlob> blob = b.iBlob;
         blob->IncRefCount();
         b.iStack->BlobStore()->DecRefCount(blob);
       }},
      {"CVelumBlobStore::AddReference", "RefCount",
       [](TBed& b) { b.iStack->BlobStore()->AddReference(b.iBlob->Id()); }},
      {"CVelumBlobStore::ReleaseReference", "RefCount,-Blob",
       [](TBed& b) {
         b.iBlob->IncRefCount();
         b.iStack->BlobStore()->ReleaseReference(b.iBlob->Id());
       }},
      {"CVelumBlobStore::DecDynRefCount", "-Blob",
       [](TBed& b) {
         Ref<CVelumBlob> blob = b.iBlob;
         blob->IncDynRefCount();
         b.iStack->BlobStore()->DecDynRefCount(blob);
       }},

      {"CVelumStack::SetDescr", "Descr", [](TBed& b) { b.iStack->SetDescr(u"d"_s); }},
      {"CVelumStack::SetFilename", "Filename", [](TBed& b) { b.iStack->SetFilename(u"f"_s); }},
      {"CVelumStack::SetListFont", "ListFont", [](TBed& b) { b.iStack->SetListFont(MakeRef<CVelumFont>()); }},
      {"CVelumStack::AddBackground", "+Background",
       [](TBed& b) {
         b.iStack->AddBackground(MakeRef<CVelumControlSet>(u"Third"_s, b.iStack->IdGen().NextId()));
       }},
      {"CVelumStack::AddSortKey", "+SortKey",
       [](TBed& b) {
         const qint32 id = b.iStack->IdGen().NextId();
         b.iStack->AddSortKey(MakeRef<CVelumSortKey>(id, u"Other"_s, b.iFirst->Id()));
       }},
      {"CVelumStack::DeleteSortKey", "-SortKey", [](TBed& b) { b.iStack->DeleteSortKey(b.iSortKey->Id()); }},
      {"CVelumStack::AddKeyIndex", "+KeyIndex", [](TBed& b) { b.iStack->AddKeyIndex(b.iKeyIndex); }},
      {"CVelumStack::DeleteKeyIndex", "-KeyIndex",
       [](TBed& b) {
         b.iStack->AddKeyIndex(b.iKeyIndex);
         b.iStack->DeleteKeyIndex(b.iKeyIndex->Id());
       }},
      {"CVelumStack::AddCard", "+Card", [](TBed& b) { b.iStack->AddCard(b.iLoose, b.iBob, false); }},
      {"CVelumStack::DeleteCard", "-Card", [](TBed& b) { b.iStack->DeleteCard(b.iBob); }},
      {"CVelumStack::DeleteAllCards", "-Card", [](TBed& b) { b.iStack->DeleteAllCards(); }},
      {"CVelumStack::RenameCard", "Name", [](TBed& b) { b.iStack->RenameCard(b.iBob, u"Rob"_s); }},
      {"CVelumStack::MoveCard", "-OrderIndex,+OrderIndex",
       [](TBed& b) { b.iStack->MoveCard(b.iCat, b.iAnn); }},
      {"CVelumStack::MoveAllCardsOfBackground", "order",
       [](TBed& b) {
         b.iFirst->SetFlag(ECseKeepCardsSorted, true);
         b.iStack->MoveAllCardsOfBackground(b.iFirst, nullptr);
       }},
      {"CVelumStack::DeleteBackground", "-Card,-SortKey,-Background",
       [](TBed& b) { b.iStack->DeleteBackground(b.iFirst, false); }},
      {"CVelumStack::Sort", "order", [](TBed& b) { b.iStack->Sort(b.iFirst, b.iSortKey, nullptr, false); }},
      {"CVelumStack::NewIndexForSortKey", "+KeyIndex,KeyIndexId,order",
       [](TBed& b) {
         b.iFirst->SetFlag(ECseKeepCardsSorted, true);
         b.iStack->NewIndexForSortKey(b.iSortKey);
       }},
      {"CVelumStack::DeleteControl", "Value,-Control",
       [](TBed& b) { b.iStack->DeleteControl(b.iTown->Id(), b.iFirst); }},
      {"CVelumStack::AdjustCardPos", "OrderNum",
       [](TBed& b) {
         b.iFirst->SetFlag(ECseKeepCardsSorted, true);
         b.iStack->NewIndexForSortKey(b.iSortKey);
         b.iStack->MoveCard(b.iBob, b.iAnn);
         b.iStack->AdjustCardPos(b.iBob, false, b.iSortKey->BuildKey(*b.iBob));
       }},
      {"CVelumStack::AdjustVisChar", "VisChar", [](TBed& b) { b.iStack->AdjustVisChar(); }},
      {"CVelumStack::PrepareForSave", "Value,DefaultVal", [](TBed& b) { b.iStack->PrepareForSave(); }},
      {"CVelumStack::EndBulk", "+Card",
       [](TBed& b) {
         b.iStack->BeginBulk(1);
         b.iStack->AddCard(b.iLoose, nullptr, false);
         b.iStack->EndBulk();
       }},
      {"CVelumStack::CloseGap", "+Card,-Card",
       [](TBed& b) {
         b.iStack->AddCard(b.iLoose, nullptr, false);
         b.iStack->DeleteCard(b.iStack->GetCardById(b.iLoose->Id() - 1));
         b.iStack->CloseGap(b.iLoose->Id());
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
      u"ChangeCard"_s, u"SetStoredKey"_s, u"BeginBulk"_s,
      // where blobs lie, in memory and on file, and who holds them
      u"SetOnFile"_s, u"SetAge"_s, u"SetInfoOnly"_s, u"SetMarks"_s, u"IncDynRefCount"_s,
      u"CVelumBlob::DecDynRefCount"_s, u"IncDynRefCounts"_s, u"CVelumBlobStore::SetFlag"_s, u"SetFile"_s,
      u"CloseFile"_s, u"NoteFileId"_s, u"SetFileId"_s, u"SwitchToRamBased"_s, u"SwitchToFileBased"_s,
      u"ReleaseChangedPlaces"_s, u"Commit"_s, u"SetNewStartPos"_s, u"WriteAllTo"_s, u"Restore"_s,
      u"IsSound"_s, u"ReadBlob"_s, u"ReadFirstBlob"_s, u"ReadNextBlob"_s,
      // lookups that may compute first
      u"KeyIndex"_s, u"GetControlVal"_s, u"FindCards"_s, u"GetCardList"_s};
  return names;
}

TEST(CVelumRecorder, HearsEveryMutator) {
  for (const TMutator& mutator : Mutators()) {
    ScriptedPresenter presenter;
    TBed bed;
    CListener listener;
    EXPECT_NO_THROW(mutator.iAct(bed)) << mutator.iName << ": " << gLastError.iP1.toStdString();
    const QStringList heard = listener.What();
    for (const QString& what : QString::fromLatin1(mutator.iWhat).split(u','))
      EXPECT_TRUE(heard.contains(what))
          << mutator.iName << ": " << heard.join(u' ').toStdString() << " lacks " << what.toStdString();
    EXPECT_EQ(presenter.Count(), 0) << mutator.iName;
  }
}

// Whatever changes the bytes of a stack must have been heard.
TEST(CVelumRecorder, NoByteChangesUnheard) {
  for (const TMutator& mutator : Mutators()) {
    TBed bed;
    const QByteArray before = Stored(*bed.iStack);
    CListener listener;
    mutator.iAct(bed);
    const bool silent = Stored(*bed.iStack) == before;
    EXPECT_TRUE(silent || !listener.iNotes.isEmpty()) << mutator.iName;
  }
}

// While its bytes are still there, also when they are on file only.
TEST(CVelumRecorder, ABlobIsHeardWithItsBytesBeforeItGoes) {
  class CBlobs final : public CVelumRecorder {
  public:
    explicit CBlobs(CVelumBlobStore& aStore) : iStore(aStore) { CVelumRecord::gRecorder = this; }
    ~CBlobs() override { CVelumRecord::gRecorder = nullptr; }
    void MemberSet(const CVelumObject&, const char*, const TVelumValue&, const TVelumValue&) override {}
    void Added(const CVelumObject&, const char*, const CVelumObject&, qint32) override {}
    void Removed(const CVelumObject&, const char*, const CVelumObject& aChild, qint32 aPlace) override {
      iBytes = static_cast<const CVelumBlob&>(aChild).Bytes();
      EXPECT_EQ(iStore.ReadBlob(aPlace, false)->Bytes(), iBytes) << "still in the store";
    }
    void OrderRebuilt(const CVelumObject&) override {}
    CVelumBlobStore& iStore;
    QByteArray iBytes;
  };
  const TempFolder folder;
  const auto file = MakeRef<CVelumFile>(folder.Path(u"blobs"_s), EFilReadWrite);
  file->OpenFile();
  const auto store = MakeRef<CVelumBlobStore>(EBstRamBased);
  for (qint32 id = 1; id <= 40; ++id) {
    const auto blob = MakeRef<CVelumBlob>(id);
    blob->SetBytes(QByteArray(5, static_cast<char>('A' + id)));
    store->AddBlob(blob);
  }
  store->SwitchToFileBased();
  store->WriteAllTo(file, 50);
  const qint32 table = store->BehindPos();
  file->SeekPos(table);
  store->Externalize(*file);
  file->SeekPos(table);
  const auto read = MakeRef<CVelumBlobStore>(); // which has none of them in memory
  read->Internalize(*file);
  read->SetFile(file);
  CBlobs listener(*read);
  for (const qint32 id : {40, 1, 20}) {
    read->DeleteBlob(id);
    EXPECT_EQ(listener.iBytes, QByteArray(5, static_cast<char>('A' + id)));
  }
}

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

TEST(CVelumRecorder, TellsOldAndNewValues) {
  TBed bed;
  CListener listener;
  bed.iTown->SetLabel(u"a"_s);
  bed.iTown->SetLabel(u"b"_s);
  bed.iTown->SetVisChar(7);
  bed.iRect.SetX(1.5F);
  ASSERT_EQ(listener.iNotes.size(), 4);
  EXPECT_EQ(listener.iNotes[1].iObj, bed.iTown.Get());
  EXPECT_EQ(listener.iNotes[1].iOld.Str(), u"a"_s);
  EXPECT_EQ(listener.iNotes[1].iNew.Str(), u"b"_s);
  EXPECT_EQ(listener.iNotes[2].iOld.Int(), 30);
  EXPECT_EQ(listener.iNotes[2].iNew.Int(), 7);
  EXPECT_EQ(listener.iNotes[3].iNew.Real(), 1.5);
}

TEST(CVelumRecorder, TellsOfObjectsByTheirText) {
  TBed bed;
  CListener listener;
  bed.iTown->SetFont(MakeRef<CVelumFont>(u"Arial"_s, ENoShort, ENoInt));
  bed.iTown->SetFont(nullptr);
  ASSERT_EQ(listener.iNotes.size(), 2);
  EXPECT_EQ(listener.iNotes[0].iOld.Type(), EValUndef);
  EXPECT_EQ(listener.iNotes[0].iNew.Str(), u"CVelumFont Arial"_s);
  EXPECT_EQ(listener.iNotes[1].iOld.Str(), u"CVelumFont Arial"_s);
  EXPECT_EQ(listener.iNotes[1].iNew.Type(), EValUndef);
}

TEST(CVelumRecorder, TellsThePlaceOfAControl) {
  TBed bed;
  CListener listener;
  bed.iFirst->AddControl(bed.iText, bed.iSize->Id());
  bed.iFirst->DeleteControl(bed.iText->Id());
  ASSERT_EQ(listener.iNotes.size(), 2);
  EXPECT_EQ(listener.iNotes[0].iObj, bed.iFirst.Get());
  EXPECT_EQ(listener.iNotes[0].iNew.Int(), 1);
  EXPECT_EQ(listener.iNotes[1].iOld.Int(), 1);
}

} // namespace
