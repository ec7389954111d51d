// The one tokenizer of the system.
#pragma once

#include "core/file/CVelumFile.h"

#include <vector>

// Kinds of symbols; the numbers are fixed.
enum ESym : qint32 {
  ESymIdent = 0,
  ESymNumber = 1,
  ESymString = 2,
  ESymHashOld = 3,
  ESymComma = 4,
  ESymLParen = 5,
  ESymRParen = 6,
  ESymDot = 7,
  ESymEqual = 8,
  ESymLess = 9,
  ESymGreater = 10,
  ESymSlash = 11,
  ESymQuestion = 12,
  ESymStar = 13,
  ESymPlus = 14,
  ESymMinus = 15,
  ESymNotEqual = 16,
  ESymLessEqual = 17,
  ESymGreaterEqual = 18,
  ESymHash = 19,
  ESymAmpersand = 20,
  ESymLink = 50,
  ESymChar = 51,
  ESymLineBreak = 52,
  ESymBold = 53,
  ESymItalic = 54,
  ESymUnderline = 55,
  ESymParagraph = 56,
  ESymBackslash = 57,
  ESymKeyword = 97,
  ESymOther = 98,
  ESymEol = 99,
  ESymEof = 100,
};

// Four reading modes over one source of characters: script symbols, CSV cells, wiki tokens and raw text.
// The source is one text (SetLine) or a file read line by line (SetFile, BeginFile). Characters are compared
// by code. There are no syntax errors: unterminated strings, links and cells end quietly. Not re-entrant.
class CVelumScanner final : public CVelumObject {
public:
  // Keywords that DefKeyword takes; one more is host error 9.
  static constexpr int EMaxKeywords = 101;

  CVelumScanner() = default;

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumScanner"_s; }
  // Lines read in file mode; 0 in line mode.
  [[nodiscard]] qint32 LineNum() const { return iLineNum; }
  // Characters of the line taken so far, the look-ahead included.
  [[nodiscard]] qint16 LinePos() const { return iPos; }
  void DefKeyword(const QString& aName, qint16 aId);
  [[nodiscard]] bool StripComments() const { return iStripComments; }
  void SetStripComments(bool aStrip) { iStripComments = aStrip; }
  [[nodiscard]] const QString& CsvDelim() const { return iCsvDelim; }
  // One character.
  void SetCsvDelim(const QString& aDelim) { iCsvDelim = aDelim; }
  void SetFile(const Ref<CVelumFile>& aFile) { iFile = aFile; }
  // A keyword in upper case; an unknown id asserts.
  [[nodiscard]] QString KeywStr(qint16 aId) const;
  // How messages name a kind; empty for a number that is none.
  [[nodiscard]] static QString SymStr(qint32 aSym);
  // A line, or in line mode a whole text, of at most 32,766 characters; a longer one is host error 6.
  void SetLine(const QString& aLine);
  // Starts file mode and reads the first line. A scanner reads one file only.
  void BeginFile();

  // The next script symbol. aKeyword is 0 for anything but a keyword.
  void GetSym(qint32& aSym, QString& aStr, qint16& aKeyword);
  // The same for who looks at a symbol only until the next call: aStr refers to the line. Comments stay, and
  // keywords are identifiers.
  [[nodiscard]] qint32 GetSymView(QStringView& aStr);
  // The next CSV cell, always an ESymString; aFile supplies the lines on which a quoted cell goes on. An
  // empty line inside a quoted cell is part of the cell.
  void GetCsvSym(CVelumFile& aFile, qint32& aSym, QString& aStr);
  // The next wiki token. The text comes as one "line" with its line breaks in it.
  void GetWikiSym(qint32& aSym, QString& aStr);
  // Raw text up to aCh, which stays the look-ahead; with aKeepEol line ends become CR LF in the text.
  void GetAllUntil(QChar aCh, bool aKeepEol, QString& aStr, bool& aEof);
  // The text up to aCh if that stands in the present line, until the next call; false, with nothing taken, if
  // it does not.
  [[nodiscard]] bool GetViewUntil(QChar aCh, QStringView& aStr);
  // Takes what is to come if it is just this and stands in the present line; false, with nothing taken, if
  // not. The name of a tag, in front of which "<" was taken: with aEnd an end tag up to its ">".
  [[nodiscard]] bool TakeTag(QStringView aName, bool aEnd);
  // "=" and a string without blanks between; aStr refers to the line.
  [[nodiscard]] bool TakeAttrValue(QStringView& aStr);
  // The same with blanks and an identifier in front.
  [[nodiscard]] bool TakeAttr(QStringView& aName, QStringView& aStr);
  // The same as GetAllUntil for long texts. Characters move to aStr in chunks, but line ends go there at
  // once, ahead of a chunk that was not moved yet.
  void GetLongAllUntil(QChar aCh, bool aKeepEol, QString& aStr, bool& aEof);

  // What of aStr can belong to a number: digits, signs, aDecimalSep.
  void FilterNumberStr(const QString& aStr, const QString& aDecimalSep, QString& aFiltered);
  // Digits and signs only, and its leading number fits 16 bits.
  [[nodiscard]] bool IsShortNumberStr(const QString& aStr);

private:
  struct TKeyword {
    QString iName;
    qint16 iId;
  };
  // The look-ahead behind the end marker.
  static constexpr int ENoChar = -1;

  void GetChar();
  void ReadFileLine();
  void BeginLine();
  [[nodiscard]] bool AtEol() const { return iCh == EEolMarker || iCh == ENoChar; }
  [[nodiscard]] bool AtDelim() const { return !iCsvDelim.isEmpty() && iCh == iCsvDelim.front().unicode(); }
  [[nodiscard]] bool IsKeyword(const QString& aName, qint16& aId) const;
  template <class THolds> [[nodiscard]] QStringView TakeWhile(const THolds& aHolds);
  [[nodiscard]] qint32 TakeSym(QStringView& aStr);
  [[nodiscard]] QStringView TakeString();
  [[nodiscard]] qint32 TakeSpecial(QStringView& aStr);
  [[nodiscard]] QStringView LineView(qsizetype aFrom, qsizetype aEnd) const;
  void MoveTo(qsizetype aPos);
  [[nodiscard]] bool TakeValueAt(qsizetype aPos, QStringView& aStr);
  void GetQuotedCell(CVelumFile& aFile, qint32& aSym, QString& aStr);
  [[nodiscard]] bool ContinueCell(CVelumFile& aFile, QString& aStr);
  void SkipBlanks();
  void WikiDouble(qint32 aKind, qint32& aSym, QString& aStr);
  void WikiLink(qint32& aSym, QString& aStr);
  void WikiBreak(qint32& aSym, QString& aStr);
  [[nodiscard]] QChar Ch() const { return QChar(static_cast<char16_t>(iCh)); }

  static constexpr int EEolMarker = 1;

  QString iLine; // with the end marker, the single character of code 1
  int iCh = ENoChar;
  qint16 iPos = 0;
  qint16 iLen = 0;
  Ref<CVelumFile> iFile;
  bool iEof = false;
  bool iLineMode = true;
  qint32 iLineNum = 0;
  bool iStripComments = false;
  QString iCsvDelim = u","_s;
  std::vector<TKeyword> iKeywords;
};
