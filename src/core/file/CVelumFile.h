// The one wrapper through which the program touches a file: binary files with typed little-endian
// primitives, and text files line by line.
#pragma once

#include "core/file/CVelumFilePatch.h"
#include "core/file/CVelumOs.h"
#include "core/text/CVelumTextPool.h"

#include <QByteArray>
#include <QtEndian>
#include <cstring>
#include <memory>

// Access modes.
enum EFil : qint32 {
  EFilRead = 0,      // binary, read; the file may be one that only can be read
  EFilSeqRead = 1,   // text, read
  EFilWrite = 2,     // binary, write
  EFilSeqWrite = 3,  // text, write; truncates
  EFilReadWrite = 4, // binary, read and write; only read where the file may not be written, see ReadOnly
  EFilMeasure = 5,   // binary, write; the bytes go nowhere. CurrentPos is what they would take. Refuses what
                     // could not be read back
};

// Codings of text files.
enum ECod : qint32 {
  ECodUtf8 = 0,
  ECodLatin1 = 1, // the single-byte Windows code page 1252
};

// Buffered below the primitives (64 KB). The buffers are written or dropped before a seek, a size, a close,
// and before another CVelumFile on the same file acts; so two of them on one file in this process see each
// other's bytes. Every write, flush and sync is checked: a failure is a host error that carries the path.
//
// Encodings: Short 2 bytes, Int 4, Single 4, Real 8, Boolean 2 (-1 or 0), Str a Short byte count and UTF-16
// code units, Bytes an Int count and the bytes; all little-endian, unaligned.
class CVelumFile final : public CVelumObject {
public:
  CVelumFile(QString aFilename, qint32 aAccess);
  ~CVelumFile() override;

  [[nodiscard]] QString ObjDescr() const override;
  // A binary file that is not there is made. Messages EMsgFileNotFound where that cannot be, EMsgNoFileAccess
  // for what is there but is no file or may not be used; host errors for other failures.
  void OpenFile();
  // Becomes a file that is open already (a binary mode), with a descriptor of its own for it. A lock of aFd
  // is then that of both.
  void OpenSame(int aFd);
  // Whether the open file can only be read, for want of rights or on a medium that cannot be written.
  [[nodiscard]] bool ReadOnly() const { return iReadOnly; }
  // Stays true after CloseFile: a closed file is told by its handle alone.
  [[nodiscard]] bool IsOpen() const { return iIsOpen; }
  // Writes what is buffered and closes, also when the writing fails. Closing twice is harmless.
  void CloseFile();
  [[nodiscard]] const QString& Filename() const { return iFilename; }
  // The file has been given another name while it was open.
  void SetFilename(const QString& aFilename) { iFilename = aFilename; }
  [[nodiscard]] qint32 Access() const { return iAccess; }
  [[nodiscard]] qint32 Coding() const { return iCoding; }
  void SetCoding(qint32 aCoding) { iCoding = aCoding; }

  void SeekPos(qint64 aPos);
  [[nodiscard]] qint64 CurrentPos();
  [[nodiscard]] qint64 Size();
  // Whether zeros stood in for bytes that the file lacks, in any read since the last seek.
  [[nodiscard]] bool PastEnd() const { return iPastEnd; }
  // Bytes between the present position and the end of the file, never negative.
  [[nodiscard]] qint64 BytesLeft();
  // The identity and state of the open file, with all that is buffered written.
  [[nodiscard]] TVelumFileId FileId();
  // Writes what is buffered.
  void Flush();
  // The same, and brings the file to the disk.
  void Sync();
  // The open file for calls that go past the buffer, which has to be written first.
  [[nodiscard]] int Fd();
  // Takes the shared lock of the file (instead of the other, when held); false when another has the file for
  // itself alone. Where there are no locks, and when the system fails, it counts as had.
  [[nodiscard]] bool TryLockShared();
  // Takes the lock of the file for itself alone, instead of a shared one; false when somebody else, here or
  // in another program, has the file locked. The shared lock is then held again.
  [[nodiscard]] bool TryLockAlone();
  // From now on this file is read and written through aPatch, and has its length; null: as it is on the disk.
  // Bytes that are still buffered are forgotten. Identity and state stay those of the file below.
  void SetPatch(const Ref<CVelumFilePatch>& aPatch);
  [[nodiscard]] Ref<CVelumFilePatch> Patch();
  // From now on what could not be read back (the writer takes longer texts than the reader) is host error 6.
  void RefuseUnreadable() { iRefusesUnreadable = true; }
  // Forgets all that is buffered, also what was to be written. The position stays.
  void DropBuffer();
  // Up to aCount bytes from aPos, past the buffer and without moving the position.
  [[nodiscard]] QByteArray PeekAt(qint64 aPos, qint64 aCount);
  // Cuts the file to aSize bytes (binary, for writing). The position is then there.
  void Truncate(qint64 aSize);

  void WriteStr(const QString& aStr);
  [[nodiscard]] static qint64 ExtStrLen(const QString& aStr) { return 2 * aStr.size() + 2; }
  [[nodiscard]] QString ReadStr();
  void WriteBytes(const QByteArray& aBytes);
  void WriteRawBytes(const QByteArray& aBytes);
  [[nodiscard]] static qint64 ExtBytesLen(const QByteArray& aBytes) { return aBytes.size() + 4; }
  [[nodiscard]] QByteArray ReadBytes();
  // The length in front of a block, checked as ReadBytes does; the content is then next.
  [[nodiscard]] qint32 ReadBytesLen();
  // aCount is at least 1: a block of no bytes is host error 9, here and in the three operations above.
  // What lies behind the end of the file reads as zeros; host error 7 when that would be out of all
  // proportion to the file.
  [[nodiscard]] QByteArray ReadRawBytes(qint64 aCount);

  // Reads a line without its end; false at the end of the file, where aLine stays as it is. A line ends at
  // CR or CR LF, or at LF alone if the first line of the file does.
  [[nodiscard]] bool ReadLine(QString& aLine);
  void WriteLine(const QString& aLine);
  // The same for text that is encoded already; it may hold line ends.
  void WriteRawLines(QByteArrayView aLines);

  void WriteShort(qint16 aValue) { WriteNum(aValue); }
  [[nodiscard]] qint16 ReadShort() { return ReadNum<qint16>(); }
  void WriteInt(qint32 aValue) { WriteNum(aValue); }
  [[nodiscard]] qint32 ReadInt() { return ReadNum<qint32>(); }
  void WriteSingle(float aValue) { WriteNum(aValue); }
  [[nodiscard]] float ReadSingle() { return ReadNum<float>(); }
  void WriteBoolean(bool aValue) { WriteNum(static_cast<qint16>(aValue ? -1 : 0)); }
  [[nodiscard]] bool ReadBoolean() { return ReadNum<qint16>() != 0; }
  void WriteReal(double aValue) { WriteNum(aValue); }
  [[nodiscard]] double ReadReal() { return ReadNum<double>(); }
  // aEof is false in every case, also behind the end, where the byte is 0.
  [[nodiscard]] quint8 ReadByte(bool& aEof) {
    aEof = false;
    return ReadNum<quint8>();
  }
  void WriteByte(quint8 aByte) { WriteNum(aByte); }

private:
  class CDevice;

  // The buffer is only handed out after the access has been checked, so the short way need not ask.
  template <class T> T ReadNum() {
    char raw[sizeof(T)];
    if (iReadEnd - iRead >= static_cast<qsizetype>(sizeof(T))) {
      std::memcpy(raw, iRead, sizeof(T));
      iRead += sizeof(T);
    } else {
      ReadSlow(raw, sizeof(T));
    }
    return qFromLittleEndian<T>(raw);
  }
  template <class T> void WriteNum(T aValue) {
    char raw[sizeof(T)];
    qToLittleEndian<T>(aValue, raw);
    if (iWriteEnd - iWrite >= static_cast<qsizetype>(sizeof(T))) {
      std::memcpy(iWrite, raw, sizeof(T));
      iWrite += sizeof(T);
    } else {
      WriteSlow(raw, sizeof(T));
    }
  }
  void ReadSlow(char* aTo, qint64 aLen);
  void WriteSlow(const char* aFrom, qint64 aLen);
  void OpenText();
  void OpenBinary();
  [[nodiscard]] int OpenDescriptor();
  [[noreturn]] void RaiseOpen(qint32 aMsgId) const;
  void RaiseIfTooLong(qint64 aLen, qint64 aMax) const;
  void AssertHandle(const QString& aProc) const;
  void AssertRead(const QString& aProc) const;
  void AssertWrite(const QString& aProc) const;
  void AssertLen(bool aCond, const QString& aProc, qint32 aLen) const;
  CDevice& Device();
  [[nodiscard]] QByteArray ReadBlock(qint64 aCount);

  QString iFilename;
  qint32 iAccess;
  qint32 iCoding = ECodLatin1;
  bool iIsOpen = false;
  bool iPastEnd = false;
  bool iReadOnly = false;
  bool iRefusesUnreadable;
  qint16 iFileNum = ENoShort;
  // Unread bytes, or free room, of the buffer of iDevice; at most one of the two is not empty.
  const char* iRead = nullptr;
  const char* iReadEnd = nullptr;
  char* iWrite = nullptr;
  char* iWriteEnd = nullptr;
  std::unique_ptr<CDevice> iDevice;
  CVelumTextPool iTexts; // of ReadStr
};
