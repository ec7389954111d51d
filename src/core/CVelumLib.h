// Text, date, time and file helpers that several rooms use, and the shared frame of stored objects.
#pragma once

#include "core/CVelumError.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace CVelumLib {

// First step of the start: frees the channel numbers of text files.
void InitLib();

template <class T> [[nodiscard]] bool IsObj(const Ref<T>& aRef) {
  return static_cast<bool>(aRef);
}
[[nodiscard]] bool StartsWith(QStringView aText, QStringView aPrefix);
// Decimal text of aNum, blanks on the left up to aWidth; the rightmost aWidth characters when longer.
[[nodiscard]] QString RightAlignNum(qint64 aNum, int aWidth);
void ReplaceAll(QString& aText, const QString& aFind, const QString& aReplace);
// Splits at the first aSep; without one aLeft is all and aRight empty. aLeft and aRight may be aText.
void SplitAt(const QString& aText, const QString& aSep, QString& aLeft, QString& aRight);
// Puts aIns behind the first aPos characters; behind all when there are fewer. Host error 5 below 0.
void InsertAt(const QString& aIns, qsizetype aPos, QString& aText);
// Appends the pieces of aText; an empty text appends nothing, and a trailing separator no empty piece.
void SplitList(const QString& aSep, const QString& aText, QList<QString>& aArray);
void SplitLines(const QString& aText, QList<QString>& aArray);
void SplitCommaList(const QString& aText, QList<QString>& aArray);
// Whether the text holds only blanks; the empty text does.
[[nodiscard]] bool IsBlank(QStringView aText);
[[nodiscard]] bool IsNotBlank(QStringView aText);
// aText without blanks at both ends; other white space stays. A view of aText.
[[nodiscard]] QStringView TrimBlanks(QStringView aText);
// All line ends (CR, LF, CR LF) as CR LF, the form in which texts are stored.
[[nodiscard]] QString ToCrLf(const QString& aText);
// aText with each letter in upper case by itself; a letter whose capital is longer stays as it is.
[[nodiscard]] QString ToUpperByLetter(const QString& aText);

void Inc(qint32& aNum);
void Dec(qint32& aNum);
void Inc(qint16& aNum);
void Dec(qint16& aNum);

// Each character as two upper-case digits of its code in the code page 1252 ("?" for one it lacks).
[[nodiscard]] QString StrToHex(const QString& aText);
// Reverse, two digits at a time; of an odd number of digits the last one counts alone. What is no digit ends
// its pair.
[[nodiscard]] QString HexToStr(const QString& aHex);
// Len / 2 bytes, of the same pairs.
[[nodiscard]] QByteArray HexToBytes(QStringView aHex);
[[nodiscard]] QString BytesToHex(const QByteArray& aBytes, bool aWithBlanks);

[[nodiscard]] double MmToTwips(double aMm);
[[nodiscard]] double TwipsToPixels(double aTwips);
[[nodiscard]] double PixelsToTwips(double aPixels);

// Text as UTF-8 bytes with one byte in each character, and the reverse.
[[nodiscard]] QString ToUtf8(const QString& aText);
[[nodiscard]] QString FromUtf8(const QString& aBytes);
// Bytes to characters by the code page 1252 and back ("?" for a character it lacks; the count of those).
[[nodiscard]] QString FromCodePage(const QByteArray& aBytes);
// The character of a code of 0 to 255 in the code page 1252; other codes are taken for characters.
[[nodiscard]] char16_t FromCodePage(char16_t aCode);
[[nodiscard]] QByteArray ToCodePage(const QString& aText, int* aLacking = nullptr);

[[nodiscard]] bool FileExists(const QString& aPath);
// Throws EMsgFileNotFound, with the path, where there is nothing; EMsgNoFileAccess for a folder, and for what
// lies where the user may not look.
void CheckFile(const QString& aPath, const QString& aProc);
// Deletes; every failure is ignored.
void KillFile(const QString& aPath);
// Splits at the last "/"; without one aDir is empty. aDir has no "/" at its end, but for the root.
void SplitPath(const QString& aPath, QString& aDir, QString& aName);
// The folder "Orvelles" in the user's documents; empty when there is none. It is not made.
[[nodiscard]] QString GetDocDir();
// Sets the time of the last change to a local moment; every failure is ignored.
void SetFileDate(const QString& aPath, double aDateTime);

// Local time (days) of an HTTP date such as "Sun, 06 Nov 1994 08:49:37 GMT"; host error 13 when a number is
// missing.
[[nodiscard]] double HeaderTime(const QString& aText);
// Moments in days, in the zone of the system, to the second. LocalToUtc of a local time that is skipped when
// daylight saving time begins takes it as an hour later; of one that comes twice, either.
[[nodiscard]] double UtcToLocal(double aDateTime);
[[nodiscard]] double LocalToUtc(double aDateTime);
// The HTTP date of a local moment.
[[nodiscard]] QString HttpDate(double aDateTime);

// Channel numbers 1 to 10 of text files; host error 9 when all are taken.
[[nodiscard]] qint16 AllocFileNum();
void ReleaseFileNum(qint16 aNum);

// The frame of a stored object: type id and generation.
void WriteBinObjStart(CVelumFile& aFile, int aTypeId, int aGen);
// Reads and checks the frame; returns the generation.
[[nodiscard]] int ReadBinObjStart(CVelumFile& aFile, int aTypeId, int aMinGen, int aMaxGen);

// ThrowBadStruct, but not once the file has ended: then the next frame that is read tells what is missing.
void CheckRead(const CVelumFile& aFile, bool aCond, const CVelumObject* aObj, const QString& aProc,
               const QString& aDetail);

} // namespace CVelumLib
