#include "core/file/CVelumFile.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumLimits.h"
#include "core/CVelumMsg.h"
#include "core/file/CVelumTextIo.h"

#include <QStringDecoder>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

namespace {

constexpr qsizetype EBufSize = 65536;
const QString EOpenProc = u"CVelumFile.OpenFile"_s;

// A position is 32 bits without sign, so a negative one lies far behind.
qint64 ToPos(qint64 aPos) {
  return aPos < 0 ? static_cast<quint32>(aPos) : aPos;
}

// Decodes into aText, reusing its memory. A BOM elsewhere than at the start is kept as a character.
void DecodeUtf8(QByteArrayView aBytes, QString& aText) {
  const auto* bytes = reinterpret_cast<const quint8*>(aBytes.data());
  const quint8 bits = std::accumulate(bytes, bytes + aBytes.size(), quint8{0}, std::bit_or<quint8>());
  if (bits < 128) {
    aText.resize(aBytes.size());
    std::copy(bytes, bytes + aBytes.size(), reinterpret_cast<char16_t*>(aText.data()));
    return;
  }
  QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
  aText.resize(decoder.requiredSpace(aBytes.size()));
  const QChar* end = decoder.appendToBuffer(aText.data(), aBytes);
  aText.resize(end - aText.constData());
}

} // namespace

// The descriptor with its buffer, and the knowledge of who else has the same file open.
//
// Buffers of one file agree because of two rules: who begins to collect bytes to write first makes all
// others write theirs and forget what they have read; who reads first makes all others write theirs.
class CVelumFile::CDevice {
public:
  CDevice(CVelumFile& aOwner, int aFd, bool aBinary);
  ~CDevice();
  CDevice(const CDevice&) = delete;
  CDevice& operator=(const CDevice&) = delete;

  [[nodiscard]] qint64 Pos() const;
  void Seek(qint64 aPos);
  // Forgets what was read, or what was to be written, and stays at its position.
  void Drop();
  // Hands the collected bytes to the system. They are gone from here also when that fails: who is told of
  // the failure puts the file right, and nothing may be written over that later.
  void Flush();
  // Flush of all that have this file open.
  void FlushAll();
  qint64 Read(char* aTo, qint64 aLen);
  // Past the buffer.
  qint64 ReadIn(char* aTo, qint64 aLen, qint64 aPos);
  [[nodiscard]] qint64 Size() const;
  void Write(const char* aFrom, qint64 aLen);
  void Cut(qint64 aSize);

  CVelumFile& iOwner;
  const int iFd;
  const TVelumFileId iId; // only the identity counts
  std::unique_ptr<CVelumTextReader> iReader;
  std::unique_ptr<CVelumTextWriter> iWriter;
  Ref<CVelumFilePatch> iPatch;

private:
  // All open binary files. Never destroyed: a global that goes at exit may still hold a file.
  static std::vector<CDevice*>& Open();

  [[nodiscard]] const QString& Path() const { return iOwner.iFilename; }
  bool Fill();
  void BeginWrite();
  void WriteOut(const char* aFrom, qint64 aLen, qint64 aPos);
  char* Buf();

  std::unique_ptr<char[]> iBuf; // made when first needed
  qint64 iBufPos = 0;           // place in the file of the buffer's first byte
  bool iAtEnd = false;          // the last reading found the end of the file
};

std::vector<CVelumFile::CDevice*>& CVelumFile::CDevice::Open() {
  static auto* open = new std::vector<CDevice*>;
  return *open;
}

CVelumFile::CDevice::CDevice(CVelumFile& aOwner, int aFd, bool aBinary)
    : iOwner(aOwner), iFd(aFd), iId(CVelumOs::IdOf(aFd)) {
  if (aBinary) Open().push_back(this);
}

CVelumFile::CDevice::~CDevice() {
  std::erase(Open(), this);
  CVelumOs::Close(iFd);
}

char* CVelumFile::CDevice::Buf() {
  if (!iBuf) iBuf = std::make_unique_for_overwrite<char[]>(EBufSize);
  return iBuf.get();
}

qint64 CVelumFile::CDevice::Pos() const {
  if (iOwner.iRead) return iBufPos + (iOwner.iRead - iBuf.get());
  if (iOwner.iWrite) return iBufPos + (iOwner.iWrite - iBuf.get());
  return iBufPos;
}

void CVelumFile::CDevice::Drop() {
  iBufPos = Pos();
  iOwner.iRead = iOwner.iReadEnd = nullptr;
  iOwner.iWrite = iOwner.iWriteEnd = nullptr;
  iAtEnd = false;
}

void CVelumFile::CDevice::Seek(qint64 aPos) {
  Flush();
  Drop();
  iBufPos = aPos;
}

void CVelumFile::CDevice::WriteOut(const char* aFrom, qint64 aLen, qint64 aPos) {
  if (iFd < 0) return; // only measured
  if (iPatch)
    iPatch->WriteAt(iFd, Path(), aFrom, aLen, aPos);
  else
    CVelumOs::WriteAt(iFd, Path(), aFrom, aLen, aPos);
}

qint64 CVelumFile::CDevice::ReadIn(char* aTo, qint64 aLen, qint64 aPos) {
  return iPatch ? iPatch->ReadAt(iFd, Path(), aTo, aLen, aPos)
                : CVelumOs::ReadAt(iFd, Path(), aTo, aLen, aPos);
}

qint64 CVelumFile::CDevice::Size() const {
  return iPatch ? iPatch->Size() : CVelumOs::IdOf(iFd).iSize;
}

void CVelumFile::CDevice::Flush() {
  if (iWriter) iWriter->Flush();
  if (!iOwner.iWrite) return;
  qint64 from = iBufPos;
  Drop();
  if (iBufPos > from) WriteOut(iBuf.get(), iBufPos - from, from);
}

void CVelumFile::CDevice::FlushAll() {
  for (CDevice* d : Open())
    if (d != this && d->iId.SameFile(iId)) d->Flush();
  Flush();
}

void CVelumFile::CDevice::BeginWrite() {
  FlushAll();
  for (CDevice* d : Open())
    if (d->iId.SameFile(iId)) d->Drop();
  iOwner.iWrite = Buf();
  iOwner.iWriteEnd = iOwner.iWrite + EBufSize;
}

bool CVelumFile::CDevice::Fill() {
  if (iAtEnd) return false;
  FlushAll();
  Drop();
  qint64 len = ReadIn(Buf(), EBufSize, iBufPos);
  iAtEnd = len == 0;
  if (iAtEnd) return false;
  iOwner.iRead = iBuf.get();
  iOwner.iReadEnd = iOwner.iRead + len;
  return true;
}

// Reads up to aLen bytes; what is large goes past the buffer.
qint64 CVelumFile::CDevice::Read(char* aTo, qint64 aLen) {
  qint64 done = 0;
  while (done < aLen) {
    if (iOwner.iRead == iOwner.iReadEnd && aLen - done >= EBufSize) {
      FlushAll();
      Drop();
      qint64 len = ReadIn(aTo + done, aLen - done, iBufPos);
      iBufPos += len;
      return done + len;
    }
    if (iOwner.iRead == iOwner.iReadEnd && !Fill()) break;
    qint64 len = std::min<qint64>(aLen - done, iOwner.iReadEnd - iOwner.iRead);
    std::memcpy(aTo + done, iOwner.iRead, static_cast<size_t>(len));
    iOwner.iRead += len;
    done += len;
  }
  return done;
}

void CVelumFile::CDevice::Write(const char* aFrom, qint64 aLen) {
  if (!iOwner.iWrite || iOwner.iWriteEnd - iOwner.iWrite < aLen) BeginWrite();
  if (aLen < EBufSize) {
    std::memcpy(iOwner.iWrite, aFrom, static_cast<size_t>(aLen));
    iOwner.iWrite += aLen;
    return;
  }
  qint64 pos = iBufPos;
  Drop();
  iBufPos = pos + aLen;
  WriteOut(aFrom, aLen, pos);
}

void CVelumFile::CDevice::Cut(qint64 aSize) {
  BeginWrite();
  Seek(aSize);
  if (iPatch)
    iPatch->SetSize(aSize);
  else
    CVelumOs::Truncate(iFd, Path(), aSize);
}

CVelumFile::CVelumFile(QString aFilename, qint32 aAccess)
    : iFilename(std::move(aFilename)), iAccess(aAccess), iRefusesUnreadable(aAccess == EFilMeasure) {}

CVelumFile::~CVelumFile() {
  try {
    CloseFile();
  } catch (const std::exception&) { // a destructor has nobody to tell
  }
}

QString CVelumFile::ObjDescr() const {
  return u"CVelumFile name="_s + iFilename + u", access="_s + QString::number(iAccess);
}

void CVelumFile::OpenFile() {
  if (iDevice) CloseFile();
  if (iAccess == EFilSeqRead || iAccess == EFilSeqWrite) {
    OpenText();
  } else if (iAccess == EFilMeasure) {
    iDevice = std::make_unique<CDevice>(*this, -1, false);
  } else {
    OpenBinary();
  }
  iIsOpen = true;
}

void CVelumFile::OpenBinary() {
  iFileNum = ENoShort;
  const int fd = OpenDescriptor();
  if (fd < 0 && (errno == ENOENT || errno == ENOTDIR)) RaiseOpen(EMsgFileNotFound);
  if (fd < 0 && CVelumOs::IsDenied(errno)) RaiseOpen(EMsgNoFileAccess);
  if (fd < 0) CVelumOs::Raise(errno, iFilename);
  if (!CVelumOs::IsRegular(fd)) {
    CVelumOs::Close(fd);
    RaiseOpen(EMsgNoFileAccess);
  }
  iDevice = std::make_unique<CDevice>(*this, fd, true);
}

void CVelumFile::OpenSame(int aFd) {
  if (iDevice) CloseFile();
  iFileNum = ENoShort;
  const int fd = ::fcntl(aFd, F_DUPFD_CLOEXEC, 0);
  if (fd < 0) CVelumOs::Raise(errno, iFilename);
  iDevice = std::make_unique<CDevice>(*this, fd, true);
  iIsOpen = true;
}

int CVelumFile::OpenDescriptor() {
  iReadOnly = false;
  int fd = CVelumOs::Open(iFilename, O_RDWR);
  // Some folders refuse the wish to make a file even where it is there already, so it comes last.
  if (fd < 0 && errno == ENOENT) fd = CVelumOs::Open(iFilename, O_RDWR | O_CREAT);
  if (fd >= 0 || iAccess == EFilWrite || !CVelumOs::IsDenied(errno)) return fd;
  // A pipe must not keep the program waiting.
  fd = CVelumOs::Open(iFilename, O_RDONLY | O_NONBLOCK);
  iReadOnly = fd >= 0;
  return fd;
}

void CVelumFile::RaiseOpen(qint32 aMsgId) const {
  CVelumError::Throw(aMsgId, EOpenProc, iFilename, QString::number(iAccess));
}

void CVelumFile::OpenText() {
  try {
    bool read = iAccess == EFilSeqRead;
    int fd = CVelumOs::Open(iFilename, read ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC);
    if (fd < 0) CVelumOs::Raise(errno, iFilename);
    auto device = std::make_unique<CDevice>(*this, fd, false);
    if (CVelumOs::IsFolder(fd)) CVelumOs::Raise(EISDIR, iFilename);
    if (read) {
      device->iReader = std::make_unique<CVelumTextReader>(fd, iFilename);
    } else {
      device->iWriter = std::make_unique<CVelumTextWriter>(fd, iFilename);
    }
    iFileNum = CVelumLib::AllocFileNum();
    iDevice = std::move(device);
  } catch (const CVelumException& e) {
    CVelumError::CatchError(EOpenProc);
    qint32 num = e.Number();
    if (num == EHostFileNotFound) num = EMsgFileNotFound;
    if (num == EHostPermissionDenied) num = EMsgNoFileAccess;
    CVelumError::Throw(num, EOpenProc, iFilename, QString::number(iAccess));
  }
}

void CVelumFile::CloseFile() {
  if (!iDevice) return;
  struct TCloser { // closes on every way out
    CVelumFile& iFile;
    ~TCloser() {
      iFile.iDevice.reset();
      iFile.iRead = iFile.iReadEnd = nullptr;
      iFile.iWrite = iFile.iWriteEnd = nullptr;
    }
  } closer{*this};
  if (iFileNum != ENoShort) CVelumLib::ReleaseFileNum(std::exchange(iFileNum, ENoShort));
  iDevice->Flush();
}

CVelumFile::CDevice& CVelumFile::Device() {
  if (!iDevice) CVelumError::RaiseHost(EHostBadCall, iFilename);
  return *iDevice;
}

void CVelumFile::AssertHandle(const QString& aProc) const {
  if (iFileNum == ENoShort) return;
  CVelumError::AssertObj(false, this, aProc, u"handle"_s);
  CVelumError::RaiseHost(EHostBadCall, iFilename);
}

void CVelumFile::AssertRead(const QString& aProc) const {
  if (iAccess == EFilRead || iAccess == EFilReadWrite) return;
  CVelumError::AssertObj(false, this, aProc, u"Access EFilRead"_s + QString::number(iAccess));
}

void CVelumFile::AssertWrite(const QString& aProc) const {
  if (iAccess == EFilWrite || iAccess == EFilReadWrite || iAccess == EFilMeasure) return;
  CVelumError::AssertObj(false, this, aProc, u"Access EFilWrite "_s + QString::number(iAccess));
}

void CVelumFile::AssertLen(bool aCond, const QString& aProc, qint32 aLen) const {
  if (aCond) return;
  CVelumError::AssertObj(false, this, aProc, u"len "_s + QString::number(aLen));
}

void CVelumFile::SeekPos(qint64 aPos) {
  AssertHandle(u"SeekPos"_s);
  iPastEnd = false;
  Device().Seek(ToPos(aPos));
}

qint64 CVelumFile::CurrentPos() {
  AssertHandle(u"CurrentPos"_s);
  return Device().Pos();
}

qint64 CVelumFile::Size() {
  Device().FlushAll();
  return iDevice->Size();
}

qint64 CVelumFile::BytesLeft() {
  return std::max<qint64>(Size() - CurrentPos(), 0);
}

TVelumFileId CVelumFile::FileId() {
  Device().FlushAll();
  return CVelumOs::IdOf(iDevice->iFd);
}

void CVelumFile::Flush() {
  Device().Flush();
}

void CVelumFile::Sync() {
  Device().Flush();
  CVelumOs::Sync(iDevice->iFd, iFilename);
}

void CVelumFile::DropBuffer() {
  Device().Drop();
}

int CVelumFile::Fd() {
  return Device().iFd;
}

bool CVelumFile::TryLockShared() {
  try {
    return CVelumOs::TryLockShared(Device().iFd, iFilename);
  } catch (const CVelumException&) { // as on a file system without locks
    CVelumOs::Unlock(iDevice->iFd);
    return true;
  }
}

// Whoever wants the file alone holds the lock of all saves of it, so nobody else can take it in between.
bool CVelumFile::TryLockAlone() {
  if (CVelumOs::TryLock(Device().iFd, iFilename)) return true;
  static_cast<void>(TryLockShared());
  return false;
}

void CVelumFile::SetPatch(const Ref<CVelumFilePatch>& aPatch) {
  Device().Drop();
  iDevice->iPatch = aPatch;
}

Ref<CVelumFilePatch> CVelumFile::Patch() {
  return Device().iPatch;
}

QByteArray CVelumFile::PeekAt(qint64 aPos, qint64 aCount) {
  AssertHandle(u"PeekAt"_s);
  AssertRead(u"PeekAt"_s);
  Device().FlushAll();
  QByteArray bytes(aCount, Qt::Uninitialized);
  bytes.resize(iDevice->ReadIn(bytes.data(), aCount, ToPos(aPos)));
  return bytes;
}

void CVelumFile::Truncate(qint64 aSize) {
  AssertHandle(u"Truncate"_s);
  AssertWrite(u"Truncate"_s);
  Device().Cut(aSize);
}

void CVelumFile::ReadSlow(char* aTo, qint64 aLen) {
  AssertHandle(u"ReadRawBytes"_s);
  AssertRead(u"ReadRawBytes"_s);
  qint64 len = Device().Read(aTo, aLen);
  std::memset(aTo + len, 0, static_cast<size_t>(aLen - len));
  if (len < aLen) iPastEnd = true;
}

void CVelumFile::WriteSlow(const char* aFrom, qint64 aLen) {
  AssertHandle(u"WriteRawBytes"_s);
  AssertWrite(u"WriteRawBytes"_s);
  Device().Write(aFrom, aLen);
}

// The writer takes more than the reader.
void CVelumFile::RaiseIfTooLong(qint64 aLen, qint64 aMax) const {
  if (iRefusesUnreadable && aLen > aMax)
    CVelumError::RaiseHost(EHostOverflow, u"%1 bytes, at most %2 can be read"_s.arg(aLen).arg(aMax));
}

void CVelumFile::WriteStr(const QString& aStr) {
  AssertWrite(u"WriteStr"_s);
  RaiseIfTooLong(2 * aStr.size(), EMaxStoredTextBytes);
  auto len = CVelumChecked::Narrow<qint16>(2 * aStr.size());
  WriteShort(len);
  if (len == 0) return;
  if (iWriteEnd - iWrite >= len) {
    qToLittleEndian<quint16>(aStr.utf16(), aStr.size(), iWrite);
    iWrite += len;
  } else {
    QByteArray raw(len, Qt::Uninitialized);
    qToLittleEndian<quint16>(aStr.utf16(), aStr.size(), raw.data());
    WriteSlow(raw.constData(), len);
  }
}

QString CVelumFile::ReadStr() {
  AssertRead(u"ReadStr"_s);
  qint16 len = ReadShort();
  AssertLen(len >= 0 && len <= EMaxStoredTextBytes, u"ReadStr"_s, len);
  if (len == 0) return {};
  if (len < 0) CVelumError::RaiseHost(EHostIndex, iFilename);
  // Half a character at the end gets a zero for its other half.
  char16_t* chars = nullptr;
  QString str = iTexts.Take((len + 1) / 2, chars);
  auto* raw = reinterpret_cast<char*>(chars);
  raw[str.size() * 2 - 1] = 0;
  if (iReadEnd - iRead >= len) {
    std::memcpy(raw, iRead, static_cast<size_t>(len));
    iRead += len;
  } else {
    ReadSlow(raw, len);
  }
  qFromLittleEndian<quint16>(raw, str.size(), raw);
  return str;
}

void CVelumFile::WriteBytes(const QByteArray& aBytes) {
  AssertWrite(u"WriteBytes"_s);
  if (aBytes.isEmpty()) CVelumError::RaiseHost(EHostIndex, iFilename);
  RaiseIfTooLong(aBytes.size(), EMaxStoredBlock);
  WriteInt(CVelumChecked::Narrow<qint32>(aBytes.size()));
  WriteRawBytes(aBytes);
}

void CVelumFile::WriteRawBytes(const QByteArray& aBytes) {
  AssertWrite(u"WriteRawBytes"_s);
  if (aBytes.isEmpty()) CVelumError::RaiseHost(EHostIndex, iFilename);
  WriteSlow(aBytes.constData(), aBytes.size());
}

qint32 CVelumFile::ReadBytesLen() {
  qint32 len = ReadInt();
  AssertLen(len >= 0 && len <= EMaxStoredBlock, u"ReadBytes"_s, len);
  return len;
}

QByteArray CVelumFile::ReadBytes() {
  AssertRead(u"ReadBytes"_s);
  return ReadBlock(ReadBytesLen());
}

QByteArray CVelumFile::ReadRawBytes(qint64 aCount) {
  AssertRead(u"ReadRawBytes"_s);
  return ReadBlock(aCount);
}

// A file may be cut short, so some zeros behind its end are in order; but a length that was damaged must
// not take memory without limit.
QByteArray CVelumFile::ReadBlock(qint64 aCount) {
  if (aCount <= 0) CVelumError::RaiseHost(EHostIndex, iFilename);
  if (aCount > EBufSize && aCount > BytesLeft() && aCount > 4 * Size() + EBufSize)
    CVelumError::RaiseHost(EHostOutOfMemory, iFilename);
  QByteArray bytes(aCount, Qt::Uninitialized);
  ReadSlow(bytes.data(), aCount);
  return bytes;
}

bool CVelumFile::ReadLine(QString& aLine) {
  if (iAccess != EFilSeqRead)
    CVelumError::AssertObj(false, this, u"ReadLine"_s, u"Access EFilSeqRead "_s + QString::number(iAccess));
  if (!Device().iReader) CVelumError::RaiseHost(EHostBadCall, iFilename);
  const bool first = iDevice->iReader->AtStart();
  QByteArrayView line;
  if (!iDevice->iReader->ReadLine(line)) return false;
  if (first && line.startsWith(QByteArrayView("\xEF\xBB\xBF"))) {
    line = line.sliced(3);
    iCoding = ECodUtf8;
  }
  if (iCoding == ECodUtf8)
    DecodeUtf8(line, aLine);
  else
    aLine = CVelumLib::FromCodePage(QByteArray::fromRawData(line.data(), line.size()));
  return true;
}

void CVelumFile::WriteLine(const QString& aLine) {
  WriteRawLines(iCoding == ECodUtf8 ? aLine.toUtf8() : CVelumLib::ToCodePage(aLine));
}

void CVelumFile::WriteRawLines(QByteArrayView aLines) {
  if (iAccess != EFilSeqWrite)
    CVelumError::AssertObj(false, this, u"WriteLine"_s, u"Access EFilSeqWrite "_s + QString::number(iAccess));
  if (!Device().iWriter) CVelumError::RaiseHost(EHostBadCall, iFilename);
  iDevice->iWriter->WriteLine(aLines);
}
