#include "exchange/CVelumExchangeLib.h"

#include "core/CVelumChecked.h"
#include "core/CVelumDialogLib.h"
#include "core/CVelumLimits.h"
#include "core/CVelumMsg.h"
#include "core/text/CVelumDays.h"
#include "exchange/CVelumPicture.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace {

constexpr int ESampleSide = 200;               // pixels
const QString gSampleType = u"picture/jpeg"_s; // not image/jpeg, and must stay so: it is what files hold

// What is found out about a picture before the stack is touched.
struct TDecoded {
  bool iKnown = false; // decoded at all
  int iWidth = 0;
  int iHeight = 0;
  QByteArray iSample; // empty when it needs none
};

// A number of pixels that is too large for a blob counts as unknown.
qint16 StoredSize(int aPixels) {
  return aPixels < ENoShort ? static_cast<qint16>(aPixels) : ENoShort;
}

int SampleSide(int aPixels, int aScale) {
  return std::max(1, static_cast<int>(std::nearbyint(aPixels * 1000.0 / aScale)));
}

TDecoded Decode(const QByteArray& aBytes, CVelumLib::EPicSample aSample) {
  const CVelumPicture picture(aBytes);
  TDecoded decoded{true, picture.Width(), picture.Height(), {}};
  const int longer = std::max(picture.Width(), picture.Height());
  if (aSample == CVelumLib::EPicSample::No || longer <= ESampleSide) return decoded;
  const int scale = longer * (1000 / ESampleSide); // thousandths; a whole number of them for each pixel
  decoded.iSample =
      picture.Rescaled(SampleSide(picture.Width(), scale), SampleSide(picture.Height(), scale)).ToJpeg();
  CVelumError::Assert(!decoded.iSample.isEmpty(), u"MakeSample SaveToMemoryEx ok"_s);
  return decoded;
}

void AddSample(CVelumStack& aStack, CVelumBlob& aPicture, const QByteArray& aBytes) {
  auto sample = MakeRef<CVelumBlob>(aStack.IdGen().NextId());
  sample->SetName(aPicture.Name());
  sample->SetFilename(aPicture.Filename());
  sample->SetFileDate(aPicture.FileDate());
  sample->SetFileTime(aPicture.FileTime());
  sample->SetMimeType(gSampleType);
  sample->SetBytes(aBytes);
  CVelumChecked::Deref(aStack.BlobStore()).AddBlob(sample);
  aPicture.SetSampleId(sample->Id());
  sample->SetOriginalId(aPicture.Id());
  aPicture.IncRefCount();
}

void TakeDecoded(CVelumStack& aStack, CVelumBlob& aPicture, const TDecoded& aDecoded) {
  if (!aDecoded.iKnown) return;
  aPicture.SetWidth(StoredSize(aDecoded.iWidth));
  aPicture.SetHeight(StoredSize(aDecoded.iHeight));
  if (!aDecoded.iSample.isEmpty()) AddSample(aStack, aPicture, aDecoded.iSample);
}

void CheckLength(qint64 aBytes) {
  if (aBytes > EMaxStoredBlock)
    CVelumError::RaiseHost(
        EHostOverflow,
        u"the picture has %1 bytes; at most %2 can be stored"_s.arg(aBytes).arg(EMaxStoredBlock));
}

CVelumLib::TPicSource ReadSource(const QString& aFilename) {
  const QFileInfo info(aFilename);
  // An opening would make a file that is not there, and wait for ever on a pipe.
  if (!info.isFile()) CVelumError::Throw(EMsgFileNotFound, u"HandleImportPic"_s, aFilename, {});
  CVelumFile file(aFilename, EFilRead);
  file.OpenFile();
  const qint64 size = file.Size();
  CheckLength(size);
  const double changed = CVelumDays::FromDateTime(info.lastModified());
  CVelumLib::TPicSource source{
      {}, info.fileName(), info.absoluteFilePath(), std::floor(changed), changed - std::floor(changed)};
  if (size > 0) source.iBytes = file.ReadRawBytes(size);
  file.CloseFile();
  return source;
}

// Adding also finds damage of other pictures; who then says no gets the store back as it was.
void AddToStore(CVelumBlobStore& aStore, const Ref<CVelumBlob>& aBlob) {
  try {
    aStore.AddBlob(aBlob);
  } catch (...) {
    if (aStore.HasBlob(aBlob->Id())) aStore.DeleteBlob(aBlob->Id());
    throw;
  }
}

Ref<CVelumBlob> AddPicture(CVelumStack& aStack, const CVelumLib::TPicSource& aSource, int aFormat,
                           const TDecoded& aDecoded) {
  auto blob = MakeRef<CVelumBlob>(aStack.IdGen().NextId());
  blob->SetBytes(aSource.iBytes);
  blob->SetName(aSource.iName);
  blob->SetFilename(aSource.iFilename);
  blob->SetMimeType(CVelumPicture::MimeTypeOf(aFormat));
  blob->SetFileDate(aSource.iFileDate);
  blob->SetFileTime(aSource.iFileTime);
  AddToStore(CVelumChecked::Deref(aStack.BlobStore()), blob);
  TakeDecoded(aStack, *blob, aDecoded);
  return blob;
}

// All that can fail comes before the stack is touched. Nothing when the import was declined.
Ref<CVelumBlob> Import(CVelumStack& aStack, const CVelumLib::TPicSource& aSource,
                       CVelumLib::EPicSample aSample) {
  const int format = CVelumPicture::FormatOf(aSource.iBytes);
  if (format == EPicUnknown) {
    CVelumMsg::Show(EMsgUnknownPicFormat, EMsgCritical, CVelumMsg::EUndefParam);
    return nullptr;
  }
  const bool known = CVelumPicture::IsDecoded(format);
  if (!known && !CVelumMsg::Ask(EMsgUnsupportedPicFormat, EMsgQuestion, CVelumMsg::EUndefParam))
    return nullptr;
  CheckLength(aSource.iBytes.size());
  const TDecoded decoded = known ? Decode(aSource.iBytes, aSample) : TDecoded();
  return AddPicture(aStack, aSource, format, decoded);
}

// Runs an import under the guard of HandleImportPic.
template <class T> bool Guarded(Ref<CVelumBlob>& aBlob, T aImport) {
  aBlob = nullptr;
  CVelumDialogLib::BeginWait();
  try {
    aBlob = aImport();
    CVelumDialogLib::EndWait();
  } catch (...) {
    CVelumError::CatchError(u"CVelumLib.HandleImportPic"_s);
    CVelumDialogLib::EndWait();
    CVelumMsg::ShowLastError();
  }
  return aBlob != nullptr;
}

} // namespace

bool CVelumLib::HandleImportPic(CVelumStack& aStack, const QString& aFilename, Ref<CVelumBlob>& aBlob,
                                EPicSample aSample) {
  return Guarded(aBlob, [&] { return Import(aStack, ReadSource(aFilename), aSample); });
}

bool CVelumLib::HandleImportPic(CVelumStack& aStack, const TPicSource& aSource, Ref<CVelumBlob>& aBlob,
                                EPicSample aSample) {
  return Guarded(aBlob, [&] { return Import(aStack, aSource, aSample); });
}

void CVelumLib::MakeSample(CVelumStack& aStack, const Ref<CVelumBlob>& aBlob) {
  CVelumBlob& blob = CVelumChecked::Deref(aBlob);
  TakeDecoded(aStack, blob, Decode(blob.Bytes(), EPicSample::Yes));
}

qint32 CVelumLib::FieldBlobId(const CVelumBlob& aBlob) {
  return aBlob.SampleId() == ENoInt ? aBlob.Id() : aBlob.SampleId();
}
