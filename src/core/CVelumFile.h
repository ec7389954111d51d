// The one wrapper through which the program touches a file: binary files with typed little-endian
// primitives, and text files line by line.
#pragma once

#include "core/CVelumError.h"

#include <QByteArray>
#include <memory>

// Access modes.
enum EFil : qint32 {
  EFilRead = 0,      // binary, read
  EFilSeqRead = 1,   // text, read
  EFilWrite = 2,     // binary, write
  EFilSeqWrite = 3,  // text, write; truncates
  EFilReadWrite = 4, // binary, read and write
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
  void OpenFile();
  // Stays true after CloseFile: a closed file is told by its handle alone.
  [[nodiscard]] bool IsOpen() const { return iIsOpen; }
  // Writes what is buffered and closes. Closing twice is harmless.
  void CloseFile();
  [[nodiscard]] const QString& Filename() const { return iFilename; }
  [[nodiscard]] qint32 Access() const { return iAccess; }
  [[nodiscard]] qint32 Coding() const { return iCoding; }
  void SetCoding(qint32 aCoding) { iCoding = aCoding; }

  void SeekPos(qint64 aPos);
  [[nodiscard]] qint64 CurrentPos();
  [[nodiscard]] qint64 Size();
  // Writes the buffer, and asks the system to bring the file to the disk.
  void Sync();
  // Cuts the file to aSize bytes (binary, for writing).
  void Truncate(qint64 aSize);

  void WriteStr(const QString& aStr);
  [[nodiscard]] static qint64 ExtStrLen(const QString& aStr) { return 2 * aStr.size() + 2; }
  [[nodiscard]] QString ReadStr();
  void WriteBytes(const QByteArray& aBytes);
  void WriteRawBytes(const QByteArray& aBytes);
  [[nodiscard]] static qint64 ExtBytesLen(const QByteArray& aBytes) { return aBytes.size() + 4; }
  [[nodiscard]] QByteArray ReadBytes();
  [[nodiscard]] QByteArray ReadRawBytes(qint64 aCount);

  // Reads a line without its end; false at the end of the file, where aLine stays as it is. A line ends at
  // CR or CR LF, or at LF alone if the first line of the file does.
  [[nodiscard]] bool ReadLine(QString& aLine);
  void WriteLine(const QString& aLine);

  void WriteShort(qint16 aValue);
  [[nodiscard]] qint16 ReadShort();
  void WriteInt(qint32 aValue);
  [[nodiscard]] qint32 ReadInt();
  void WriteSingle(float aValue);
  [[nodiscard]] float ReadSingle();
  void WriteBoolean(bool aValue);
  [[nodiscard]] bool ReadBoolean();
  void WriteReal(double aValue);
  [[nodiscard]] double ReadReal();
  // aEof is false in every case, also behind the end, where the byte is 0.
  [[nodiscard]] quint8 ReadByte(bool& aEof);
  void WriteByte(quint8 aByte);

private:
  class CDevice;

  QString iFilename;
  qint32 iAccess;
  qint32 iCoding = ECodLatin1;
  bool iFirstLine = false;
  bool iIsOpen = false;
  qint16 iFileNum = ENoShort;
  std::unique_ptr<CDevice> iDevice;
};
