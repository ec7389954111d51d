// The text of a CSV file, read as a whole and brought into UTF-8.
#pragma once

#include "core/file/CVelumOs.h"

#include <QByteArray>
#include <optional>
#include <string_view>

enum class ECsvEncoding : quint8 { Utf8, Utf16Le, Utf16Be, Windows1252 };

// What the bytes hold that their encoding does not have.
struct TCsvBadBytes {
  qint64 iCount = 0;
  qint64 iLine = 0;       // of the first one
  bool iReplaced = false; // UTF-8 and UTF-16: each became U+FFFD; in the Windows code page they are kept
  // No mark, and no UTF-8 as a whole, but letters of UTF-8 are in it. The line is then that of the first byte
  // that is none, and 0 the count.
  bool iMixed = false;

  [[nodiscard]] bool Any() const { return iCount > 0 || iMixed; }
};

// Works in steps, so that a window stays alive. The encoding is the one that was chosen; else that of a byte
// order mark; else UTF-8 if all bytes are valid; else the Windows code page. The text is held in memory, so
// that what happens to the file later on means nothing.
class CVelumCsvSource {
public:
  static constexpr qint64 EWhole = -1;

  // aMost: so many bytes from the beginning, no more. Raises for what is no file, or cannot be opened.
  explicit CVelumCsvSource(const QString& aFilename, std::optional<ECsvEncoding> aChosen = {},
                           qint64 aMost = EWhole);
  ~CVelumCsvSource();
  CVelumCsvSource(const CVelumCsvSource&) = delete;
  CVelumCsvSource& operator=(const CVelumCsvSource&) = delete;

  // Does a part of the work; false when all is done. Host error 57, with the line, for a file that becomes
  // shorter, longer or another one meanwhile.
  [[nodiscard]] bool Step();
  // How much is done, of aAll.
  [[nodiscard]] int Progress(int aAll) const;

  // The rest counts when all is done.
  [[nodiscard]] std::string_view Text() const;
  [[nodiscard]] const QString& Filename() const { return iFilename; }
  [[nodiscard]] ECsvEncoding Encoding() const { return iEncoding; }
  // Whether aMost left something out.
  [[nodiscard]] bool IsPart() const { return iPart; }
  [[nodiscard]] bool HasZero() const { return iHasZero; }
  [[nodiscard]] const TCsvBadBytes& BadBytes() const { return iBad; }

private:
  enum class EState : quint8 { Reading, Checking, Converting, Done };

  void ReadPart();
  void EndReading();
  [[noreturn]] void RaiseChanged() const;
  void CutAtCharacter();
  void TakeMark();
  void CheckPart();
  void EndChecking();
  void ConvertPart();
  [[nodiscard]] qsizetype PartEnd() const;
  void ConvertUtf8(QByteArrayView aPart);
  void ConvertUtf16(QByteArrayView aPart);
  void ConvertCodePage(const QByteArray& aPart);
  void NoteBad(qint64 aCount, qint64 aLine);

  QString iFilename;
  std::optional<ECsvEncoding> iChosen;
  qint64 iMost;
  int iFd = -1;
  TVelumFileId iId;
  EState iState = EState::Reading;
  ECsvEncoding iEncoding = ECsvEncoding::Utf8;
  QByteArray iBytes;     // as they stand in the file
  qsizetype iMark = 0;   // length of the byte order mark
  qsizetype iAt = 0;     // in iBytes, how far the present state has come
  QByteArray iConverted; // unless the bytes are the text
  bool iPart = false;
  bool iHasZero = false;
  bool iValid = true; // UTF-8, so far
  bool iByMark = false;
  TCsvBadBytes iBad;
};
