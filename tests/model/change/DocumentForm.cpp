#include "model/change/DocumentForm.h"

#include "model/change/CVelumRecorder.h"

namespace {

// The dates of change of cards whose lists are computed move with each computation; they are left out while
// one lives.
class CWithoutDates {
public:
  explicit CWithoutDates(CVelumStack& aStack) {
    Ref<CVelumCard> card;
    for (qint32 i = 0; aStack.GetNextCard(card, i);) {
      if (!card->Background()->WithCardList()) continue;
      iDates.push_back({card, card->ModDate(), card->ModTime()});
      card->SetModDate(ENoDate);
      card->SetModTime(0.0);
    }
  }
  ~CWithoutDates() {
    for (const TDates& dates : iDates) {
      dates.iCard->SetModDate(dates.iDate);
      dates.iCard->SetModTime(dates.iTime);
    }
  }

private:
  struct TDates {
    Ref<CVelumCard> iCard;
    double iDate;
    double iTime;
  };
  std::vector<TDates> iDates;
};

// All computed lists anew: an empty one is stored or not, depending on what it was before.
void MakeLists(CVelumStack& aStack) {
  Ref<CVelumCard> card;
  for (qint32 i = 0; aStack.GetNextCard(card, i);) {
    const Ref<CVelumControlSet> background = card->Background();
    for (qint32 c = 0; c < background->NumControls(); ++c)
      if (background->ControlAt(c)->Flag(EConCardList))
        card->DeleteControlVal(background->ControlAt(c)->Id());
  }
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; aStack.GetNextBackground(background, i);)
    for (qint32 c = 0; c < background->NumControls(); ++c)
      if (background->ControlAt(c)->Flag(EConCardList)) background->ControlAt(c)->SetDefaultVal({});
  aStack.SetCardListsDirty(nullptr);
  aStack.PrepareForSave();
}

void AppendBlobs(CVelumStack& aStack, CVelumFile& aFile) {
  const Ref<CVelumBlobStore> store = aStack.BlobStore();
  Ref<CVelumBlob> blob;
  for (qint32 i = 0; store && store->ReadNextBlob(blob, i);) {
    aFile.WriteInt(blob->RefCount());
    if (!blob->Bytes().isEmpty()) blob->Externalize(aFile);
  }
}

} // namespace

QByteArray DocumentForm::Of(CVelumStack& aStack) {
  const CVelumRecord::CUnrecorded unrecorded;
  MakeLists(aStack);
  const CWithoutDates without(aStack);
  const Ref<CVelumFile> file = CVelumChangeIo::NewMemoryFile();
  aStack.Externalize(*file);
  AppendBlobs(aStack, *file);
  file->SeekPos(0);
  return file->ReadRawBytes(file->Size());
}

QString DocumentForm::Difference(const QByteArray& aA, const QByteArray& aB) {
  if (aA == aB) return {};
  const auto [a, b] = std::mismatch(aA.begin(), aA.end(), aB.begin(), aB.end());
  const qsizetype at = a - aA.begin();
  const auto around = [at](const QByteArray& aBytes) {
    return QString::fromLatin1(aBytes.mid(std::max<qsizetype>(at - 60, 0), 100).toPercentEncoding(" ,:="));
  };
  return u"at %1 of %2/%3: %4 | %5"_s.arg(at).arg(aA.size()).arg(aB.size()).arg(around(aA), around(aB));
}
