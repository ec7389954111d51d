#include "model/change/CVelumChange.h"

#include "core/CVelumMsg.h"
#include "model/change/CVelumCardChange.h"
#include "model/change/CVelumChildChange.h"
#include "model/change/CVelumGapChange.h"
#include "model/change/CVelumKeyChange.h"
#include "model/change/CVelumMemberChange.h"
#include "model/change/CVelumOrderChange.h"
#include "model/change/CVelumValueChange.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

std::unique_ptr<CVelumChange> NewChange(quint8 aForm) {
  switch (aForm) {
  case EFormMember:
    return std::make_unique<CVelumMemberChange>();
  case EFormValue:
    return std::make_unique<CVelumValueChange>();
  case EFormKey:
    return std::make_unique<CVelumKeyChange>();
  case EFormKeyBulk:
    return std::make_unique<CVelumKeyBulkChange>();
  case EFormOrder:
    return std::make_unique<CVelumOrderChange>();
  case EFormOrderAll:
    return std::make_unique<CVelumOrderAllChange>();
  case EFormCard:
    return std::make_unique<CVelumCardChange>();
  case EFormChild:
    return std::make_unique<CVelumChildChange>();
  case EFormGap:
    return std::make_unique<CVelumGapChange>();
  default:
    return nullptr;
  }
}

} // namespace

void CVelumChange::Write(CVelumFile& aFile) const {
  aFile.WriteByte(Form());
  WriteBody(aFile);
}

std::unique_ptr<CVelumChange> CVelumChange::Read(CVelumFile& aFile) {
  bool eof = false;
  auto change = NewChange(aFile.ReadByte(eof));
  CVelumChangeIo::Require(change != nullptr, u"form"_s);
  change->ReadBody(aFile);
  CVelumChangeIo::Require(!aFile.PastEnd(), u"end"_s);
  return change;
}

namespace CVelumChangeIo {

void Require(bool aOk, const QString& aWhat) {
  CVelumError::ThrowBadStruct(aOk, nullptr, u"CVelumChange.Read"_s, aWhat);
}

qint32 ReadCount(CVelumFile& aFile, qint64 aEach) {
  const qint32 count = aFile.ReadInt();
  Require(count >= 0 && count * aEach <= aFile.BytesLeft(), u"count"_s);
  return count;
}

namespace {
// Takes over the handle.
Ref<CVelumFile> FileOf(int aHandle) {
  if (aHandle < 0) CVelumError::RaiseHost(EHostOutOfMemory);
  const auto close = qScopeGuard([aHandle] { ::close(aHandle); });
  auto file = MakeRef<CVelumFile>(u"/proc/self/fd/"_s + QString::number(aHandle), EFilReadWrite);
  file->OpenFile();
  return file;
}
} // namespace

Ref<CVelumFile> NewMemoryFile() {
  return FileOf(memfd_create("orvelles-change", MFD_CLOEXEC));
}

Ref<CVelumFile> NewUnnamedFile() {
  const QByteArray folder = QFile::encodeName(QDir::tempPath());
  return FileOf(::open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
}

void WriteBlock(CVelumFile& aFile, const QByteArray& aBytes) {
  aFile.WriteInt(static_cast<qint32>(aBytes.size()));
  if (!aBytes.isEmpty()) aFile.WriteRawBytes(aBytes);
}

QByteArray ReadBlock(CVelumFile& aFile) {
  const qint32 len = ReadCount(aFile, 1);
  return len > 0 ? aFile.ReadRawBytes(len) : QByteArray();
}

void WriteText(CVelumFile& aFile, const QString& aText) {
  WriteBlock(aFile, QByteArray::fromRawData(reinterpret_cast<const char*>(aText.utf16()), aText.size() * 2));
}

QString ReadText(CVelumFile& aFile) {
  const QByteArray bytes = ReadBlock(aFile);
  QString text(bytes.size() / 2, Qt::Uninitialized);
  std::memcpy(text.data(), bytes.constData(), static_cast<size_t>(text.size()) * 2);
  return text;
}

void WriteValue(CVelumFile& aFile, const TVelumValue& aVal) {
  aFile.WriteShort(static_cast<qint16>(aVal.Type()));
  switch (aVal.Type()) {
  case EValStr:
    return WriteText(aFile, aVal.Str());
  case EValReal:
    return aFile.WriteReal(aVal.Real());
  case EValDate:
    return aFile.WriteReal(aVal.Date());
  case EValTime:
    return aFile.WriteReal(aVal.Time());
  case EValBoolean:
    return aFile.WriteBoolean(aVal.Boolean());
  case EValIntPair:
    aFile.WriteInt(aVal.Int0());
    return aFile.WriteInt(aVal.Int1());
  default:
    aFile.WriteInt(aVal.Int());
  }
}

TVelumValue ReadValue(CVelumFile& aFile) {
  const int type = aFile.ReadShort();
  switch (type) {
  case EValStr:
    return TVelumValue::OfStr(ReadText(aFile));
  case EValReal:
    return TVelumValue::OfReal(aFile.ReadReal());
  case EValDate:
    return TVelumValue::OfDate(aFile.ReadReal());
  case EValTime:
    return TVelumValue::OfTime(aFile.ReadReal());
  case EValBoolean:
    return TVelumValue::OfBoolean(aFile.ReadBoolean());
  case EValIntPair: {
    const qint32 first = aFile.ReadInt();
    return TVelumValue::OfPair(first, aFile.ReadInt());
  }
  case EValInt:
    return TVelumValue::OfInt(aFile.ReadInt());
  case EValBlobId:
    return TVelumValue::OfBlobId(aFile.ReadInt());
  default:
    Require(type == EValUndef, u"value"_s);
    static_cast<void>(aFile.ReadInt());
    return {};
  }
}

void WriteIds(CVelumFile& aFile, const std::vector<qint32>& aIds) {
  aFile.WriteInt(static_cast<qint32>(aIds.size()));
  for (const qint32 id : aIds) aFile.WriteInt(id);
}

std::vector<qint32> ReadIds(CVelumFile& aFile) {
  std::vector<qint32> ids(static_cast<size_t>(ReadCount(aFile, 4)));
  for (qint32& id : ids) id = aFile.ReadInt();
  return ids;
}

qint64 CostOf(const QString& aText) {
  constexpr qint64 header = 32; // of the heap and of the text
  return aText.isEmpty() ? 0 : header + 2 * aText.size();
}

qint64 CostOf(const TVelumValue& aVal) {
  return aVal.Type() == EValStr ? CostOf(aVal.Str()) : 0;
}

} // namespace CVelumChangeIo
