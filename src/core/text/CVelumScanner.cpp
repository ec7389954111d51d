#include "core/text/CVelumScanner.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLimits.h"
#include "core/CVelumValue.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

using namespace CVelumError;

namespace {

struct TSymText {
  qint32 iSym;
  const char16_t* iText;
};

const TSymText ESymTexts[] = {
    {ESymIdent, u"<ident>"},   {ESymNumber, u"<number>"}, {ESymString, u"<string>"},
    {ESymHashOld, u"#"},       {ESymComma, u","},         {ESymLParen, u"("},
    {ESymRParen, u")"},        {ESymDot, u"."},           {ESymEqual, u"="},
    {ESymLess, u"<"},          {ESymGreater, u">"},       {ESymSlash, u"/"},
    {ESymQuestion, u"?"},      {ESymStar, u"*"},          {ESymPlus, u"+"},
    {ESymMinus, u"-"},         {ESymNotEqual, u"<>"},     {ESymLessEqual, u"<="},
    {ESymGreaterEqual, u">="}, {ESymHash, u"#"},          {ESymAmpersand, u"&"},
    {ESymLink, u"<link>"},     {ESymChar, u"<char>"},     {ESymBold, u"**"},
    {ESymItalic, u"//"},       {ESymUnderline, u"__"},    {ESymKeyword, u"<keyword>"},
    {ESymOther, u"<other>"},   {ESymEol, u"<eol>"},       {ESymEof, u"<eof>"},
};

bool IsDigitChar(int aCh) {
  return aCh >= '0' && aCh <= '9';
}

// What the characters of ASCII can be in an identifier: 1 any place, 2 any but the first.
constexpr std::array<quint8, 128> EIdentChars = [] {
  std::array<quint8, 128> chars{};
  for (size_t ch = 'a'; ch <= 'z'; ++ch) chars[ch] = chars[ch - 32] = 1;
  for (size_t ch = '0'; ch <= '9'; ++ch) chars[ch] = 2;
  chars['_'] = 1;
  return chars;
}();

bool IsIdentChar(int aCh, int aIndex) {
  const quint8 kind = aCh >= 0 && aCh < 128 ? EIdentChars[static_cast<size_t>(aCh)] : quint8{0};
  return kind == 1 || (kind == 2 && aIndex >= 1);
}

qint32 SingleCharSym(int aCh) {
  switch (aCh) {
  case '(':
    return ESymLParen;
  case ')':
    return ESymRParen;
  case '.':
    return ESymDot;
  case ',':
    return ESymComma;
  case '/':
    return ESymSlash;
  case '?':
    return ESymQuestion;
  case '=':
    return ESymEqual;
  case '*':
    return ESymStar;
  case '+':
    return ESymPlus;
  case '-':
    return ESymMinus;
  case '&':
    return ESymAmpersand;
  case '#':
    return ESymHash;
  default:
    return ESymOther;
  }
}

const QString ECrLf = u"\r\n"_s;
// A chunk of GetLongAllUntil moves when it is longer than this.
constexpr qsizetype EChunkLen = 100;

// Adds to aChunk; whenever that is too long, all of it moves to aStr.
void AppendChunks(QStringView aMore, QString& aStr, QString& aChunk) {
  while (!aMore.isEmpty()) {
    const qsizetype count = std::min(EChunkLen + 1 - aChunk.size(), aMore.size());
    aChunk += aMore.first(count);
    aMore = aMore.sliced(count);
    if (aChunk.size() <= EChunkLen) continue;
    aStr += aChunk;
    aChunk.resize(0);
  }
}

// Where the blanks end that stand in aLine from aPos on, four of them at a time; the end marker is none.
qsizetype BlanksEnd(QStringView aLine, qsizetype aPos) {
  constexpr quint64 fourBlanks = 0x0020002000200020;
  constexpr qsizetype four = 4;
  for (quint64 next = fourBlanks; aPos + four <= aLine.size(); aPos += four) {
    std::memcpy(&next, aLine.utf16() + aPos, sizeof next);
    if (next != fourBlanks) break;
  }
  while (aLine[aPos] == u' ') ++aPos;
  return aPos;
}

} // namespace

void CVelumScanner::DefKeyword(const QString& aName, qint16 aId) {
  if (iKeywords.size() >= EMaxKeywords) RaiseHost(EHostIndex);
  iKeywords.push_back({aName.toUpper(), aId});
}

QString CVelumScanner::KeywStr(qint16 aId) const {
  for (const TKeyword& keyword : iKeywords) {
    if (keyword.iId == aId) return keyword.iName;
  }
  AssertObj(false, this, u"KeywStr"_s, u"found"_s);
  return {};
}

QString CVelumScanner::SymStr(qint32 aSym) {
  for (const TSymText& entry : ESymTexts) {
    if (entry.iSym == aSym) return QString::fromUtf16(entry.iText);
  }
  return {};
}

void CVelumScanner::GetChar() {
  iCh = iPos < iLen ? iLine.at(iPos++).unicode() : ENoChar;
}

void CVelumScanner::SetLine(const QString& aLine) {
  static_cast<void>(CVelumChecked::Narrow<qint16>(aLine.size() + 1));
  iLine = aLine;
  BeginLine();
}

// Puts the marker behind what iLine has become.
void CVelumScanner::BeginLine() {
  const auto len = CVelumChecked::Narrow<qint16>(iLine.size() + 1);
  if (!iLineMode) iLineNum = CVelumChecked::Add(iLineNum, 1);
  iLine += QChar(EEolMarker);
  iPos = 0;
  iLen = len;
  GetChar();
}

void CVelumScanner::BeginFile() {
  AssertObj(bool(iFile), this, u"BeginFile"_s, u"Start file set"_s);
  iLineMode = false;
  iLineNum = 0;
  ReadFileLine();
}

void CVelumScanner::ReadFileLine() {
  AssertObj(!iEof, this, u"ReadFileLine"_s, u"ReadFileLine eof"_s);
  // Into the memory of the line before.
  iEof = !CVelumChecked::Deref(iFile).ReadLine(iLine);
  if (iEof) return;
  if (iLine.size() > EMaxScanLine)
    RaiseHost(EHostOverflow,
              u"%1, line %2: the line has %3 characters, at most %4 can be read"_s.arg(iFile->Filename())
                  .arg(iLineNum + 1)
                  .arg(iLine.size())
                  .arg(EMaxScanLine));
  BeginLine();
}

// aName holds letters of ASCII, digits and "_" only.
bool CVelumScanner::IsKeyword(const QString& aName, qint16& aId) const {
  const auto upper = [](QChar aCh) { return aCh >= u'a' && aCh <= u'z' ? QChar(aCh.unicode() - 32) : aCh; };
  const auto same = [&](QChar aA, QChar aB) { return upper(aA) == aB; };
  for (const TKeyword& keyword : iKeywords) {
    if (keyword.iName.size() == aName.size() &&
        std::equal(aName.begin(), aName.end(), keyword.iName.begin(), same)) {
      aId = keyword.iId;
      return true;
    }
  }
  return false;
}

QStringView CVelumScanner::LineView(qsizetype aFrom, qsizetype aEnd) const {
  return QStringView(iLine).sliced(aFrom, aEnd - aFrom);
}

// The characters from the look-ahead on for which aHolds; it does not for the end marker.
template <class THolds> QStringView CVelumScanner::TakeWhile(const THolds& aHolds) {
  const QChar* line = iLine.constData();
  const qsizetype from = iPos - 1;
  int pos = iPos;
  int ch = iCh;
  while (aHolds(ch)) ch = pos < iLen ? line[pos++].unicode() : ENoChar;
  iCh = ch;
  iPos = static_cast<qint16>(pos);
  return LineView(from, pos - 1);
}

QStringView CVelumScanner::TakeString() {
  GetChar();
  const QStringView str = TakeWhile([](int aCh) { return aCh != '"' && aCh != EEolMarker; });
  if (iCh == '"') GetChar();
  return str;
}

// Everything that is one character, or an operator of two; the text is the first character in any case.
qint32 CVelumScanner::TakeSpecial(QStringView& aStr) {
  const int first = iCh;
  aStr = LineView(iPos - 1, iPos);
  GetChar();
  if (first == '<' && iCh == '>') {
    GetChar();
    return ESymNotEqual;
  }
  if ((first == '<' || first == '>') && iCh == '=') {
    GetChar();
    return first == '<' ? ESymLessEqual : ESymGreaterEqual;
  }
  if (first == '<') return ESymLess;
  if (first == '>') return ESymGreater;
  return SingleCharSym(first);
}

// The symbol that begins with the look-ahead, which is neither a blank nor the line's end.
qint32 CVelumScanner::TakeSym(QStringView& aStr) {
  if (IsIdentChar(iCh, 0)) {
    aStr = TakeWhile([](int aCh) { return IsIdentChar(aCh, 1); });
    return ESymIdent;
  }
  if (IsDigitChar(iCh)) {
    aStr = TakeWhile(IsDigitChar);
    return ESymNumber;
  }
  if (iCh != '"') return TakeSpecial(aStr);
  aStr = TakeString();
  return ESymString;
}

void CVelumScanner::GetSym(qint32& aSym, QString& aStr, qint16& aKeyword) {
  aStr.resize(0); // keeps its memory for the next symbol
  aKeyword = 0;
  for (;;) {
    if (iEof) {
      aSym = ESymEof;
      return;
    }
    if (iCh == ' ') {
      GetChar();
    } else if (AtEol()) {
      if (iLineMode) {
        aSym = ESymEol;
        return;
      }
      ReadFileLine();
    } else if (iCh == '#' && iStripComments) {
      aStr = Ch();
      iCh = EEolMarker;
    } else {
      QStringView str;
      aSym = TakeSym(str);
      if (aSym != ESymIdent && aSym != ESymNumber) aStr.resize(0);
      aStr.append(str);
      if (aSym == ESymIdent && IsKeyword(aStr, aKeyword)) aSym = ESymKeyword;
      return;
    }
  }
}

qint32 CVelumScanner::GetSymView(QStringView& aStr) {
  aStr = {};
  for (;;) {
    if (iEof) return ESymEof;
    if (AtEol()) {
      if (iLineMode) return ESymEol;
      ReadFileLine();
    } else if (iCh == ' ') {
      MoveTo(BlanksEnd(iLine, iPos));
    } else if ((iCh == '<' || iCh == '>') && iLine.at(iPos) != u'>' && iLine.at(iPos) != u'=') {
      const qint32 sym = iCh == '<' ? ESymLess : ESymGreater;
      aStr = LineView(iPos - 1, iPos);
      MoveTo(iPos);
      return sym;
    } else {
      return TakeSym(aStr);
    }
  }
}

void CVelumScanner::SkipBlanks() {
  while (iCh == ' ') GetChar();
}

void CVelumScanner::GetCsvSym(CVelumFile& aFile, qint32& aSym, QString& aStr) {
  aStr.clear();
  aSym = ESymString;
  SkipBlanks();
  if (AtEol()) {
    aSym = ESymEol;
  } else if (AtDelim()) {
    GetChar();
  } else if (iCh == '"') {
    GetQuotedCell(aFile, aSym, aStr);
  } else {
    while (!AtDelim() && !AtEol()) {
      aStr += Ch();
      GetChar();
    }
    if (AtDelim()) GetChar();
  }
}

// The next line of a cell that goes on there: its line end and its first character join the cell unseen, so
// that a quote there does not close it, nor an end marker end the line. Of an empty line the end marker stays
// the look-ahead.
bool CVelumScanner::ContinueCell(CVelumFile& aFile, QString& aStr) {
  QString line;
  if (!aFile.ReadLine(line)) return false;
  SetLine(line);
  aStr += ECrLf;
  if (!line.isEmpty()) {
    aStr += Ch();
    GetChar();
  }
  return true;
}

void CVelumScanner::GetQuotedCell(CVelumFile& aFile, qint32& aSym, QString& aStr) {
  GetChar();
  for (;;) {
    if (AtEol()) {
      if (!ContinueCell(aFile, aStr)) {
        aSym = ESymEof;
        return;
      }
    } else if (iCh == '"') {
      GetChar();
      if (iCh != '"') break;
      aStr += u"\"\""_s;
      GetChar();
    } else {
      aStr += Ch();
      GetChar();
    }
  }
  if (AtDelim()) {
    GetChar();
    SkipBlanks();
  }
}

void CVelumScanner::GetWikiSym(qint32& aSym, QString& aStr) {
  aStr.clear();
  if (iEof) {
    aSym = ESymEof;
    return;
  }
  if (AtEol()) {
    aSym = ESymEol;
    return;
  }
  switch (iCh) {
  case '*':
    return WikiDouble(ESymBold, aSym, aStr);
  case '/':
    return WikiDouble(ESymItalic, aSym, aStr);
  case '_':
    return WikiDouble(ESymUnderline, aSym, aStr);
  case '\\':
    return WikiDouble(ESymBackslash, aSym, aStr);
  case '[':
    return WikiLink(aSym, aStr);
  case '\r':
    return WikiBreak(aSym, aStr);
  default:
    aSym = ESymChar;
    aStr = Ch();
    GetChar();
  }
}

void CVelumScanner::WikiDouble(qint32 aKind, qint32& aSym, QString& aStr) {
  const int first = iCh;
  aSym = ESymChar;
  aStr = Ch();
  GetChar();
  if (iCh != first) return;
  aSym = aKind;
  aStr += Ch();
  GetChar();
}

void CVelumScanner::WikiLink(qint32& aSym, QString& aStr) {
  GetChar();
  if (iCh != '[') {
    aSym = ESymChar;
    aStr = u"["_s;
    return;
  }
  aSym = ESymLink;
  GetChar();
  while (!AtEol()) {
    if (iCh == ']') {
      GetChar();
      if (iCh == ']') {
        GetChar();
        return;
      }
      if (AtEol()) return;
      aStr += u']';
    } else {
      aStr += Ch();
      GetChar();
    }
  }
}

void CVelumScanner::WikiBreak(qint32& aSym, QString& aStr) {
  GetChar();
  if (iCh != '\n') {
    aSym = ESymChar;
    aStr = u"\r"_s;
    return;
  }
  aSym = ESymLineBreak;
  aStr = ECrLf;
  GetChar();
  if (iCh != '\r') return;
  GetChar();
  if (iCh == '\n') GetChar();
  aSym = ESymParagraph;
  aStr = ECrLf + ECrLf;
}

void CVelumScanner::GetAllUntil(QChar aCh, bool aKeepEol, QString& aStr, bool& aEof) {
  aStr.clear();
  aEof = iEof;
  while (!aEof && iCh != aCh.unicode()) {
    if (!AtEol()) {
      aStr += Ch();
      GetChar();
    } else if (iLineMode) {
      aEof = true;
    } else {
      if (aKeepEol) aStr += ECrLf;
      ReadFileLine();
      aEof = iEof;
    }
  }
}

bool CVelumScanner::GetViewUntil(QChar aCh, QStringView& aStr) {
  if (iEof || AtEol()) return false;
  const QChar* line = iLine.constData();
  const qsizetype from = iPos - 1;
  qsizetype pos = from;
  while (line[pos] != aCh && line[pos].unicode() != EEolMarker) ++pos; // the end marker stops it
  if (line[pos] != aCh) return false;
  aStr = LineView(from, pos);
  MoveTo(pos);
  return true;
}

// Makes the character at aPos, which is at most the end marker, the look-ahead.
void CVelumScanner::MoveTo(qsizetype aPos) {
  iPos = static_cast<qint16>(aPos + 1);
  iCh = iLine.constData()[aPos].unicode();
}

// Nothing of a tag holds the end marker, so that no match goes beyond it.
bool CVelumScanner::TakeTag(QStringView aName, bool aEnd) {
  if (iEof || AtEol()) return false;
  QStringView rest = LineView(iPos - 1, iLen);
  if (aEnd) {
    if (rest.front() != u'/') return false;
    rest = rest.sliced(1);
  }
  if (rest.size() < aName.size() || !std::equal(aName.begin(), aName.end(), rest.begin())) return false;
  rest = rest.sliced(aName.size());
  if (!aEnd && IsIdentChar(rest.front().unicode(), 1)) return false;
  if (aEnd) {
    // ">=" is another symbol.
    if (rest.front() != u'>' || rest[1] == u'=') return false;
    rest = rest.sliced(1);
  }
  MoveTo(iLen - rest.size());
  return true;
}

bool CVelumScanner::TakeAttrValue(QStringView& aStr) {
  return !iEof && !AtEol() && TakeValueAt(iPos - 1, aStr);
}

bool CVelumScanner::TakeAttr(QStringView& aName, QStringView& aStr) {
  if (iEof || AtEol()) return false;
  const QChar* line = iLine.constData();
  qsizetype pos = iPos - 1;
  while (line[pos] == u' ') ++pos; // the end marker stops it
  const qsizetype from = pos;
  while (IsIdentChar(line[pos].unicode(), static_cast<int>(pos - from))) ++pos;
  if (pos == from || !TakeValueAt(pos, aStr)) return false;
  aName = LineView(from, pos);
  return true;
}

// TakeAttrValue for a "=" at aPos.
bool CVelumScanner::TakeValueAt(qsizetype aPos, QStringView& aStr) {
  const QChar* line = iLine.constData();
  if (line[aPos] != u'=' || line[aPos + 1] != u'"') return false;
  const qsizetype from = aPos + 2;
  qsizetype pos = from;
  while (line[pos] != u'"' && line[pos].unicode() != EEolMarker) ++pos;
  if (line[pos] != u'"') return false;
  aStr = LineView(from, pos);
  MoveTo(pos + 1);
  return true;
}

void CVelumScanner::GetLongAllUntil(QChar aCh, bool aKeepEol, QString& aStr, bool& aEof) {
  aStr.clear();
  QString chunk;
  aEof = iEof;
  while (!aEof && iCh != aCh.unicode()) {
    if (!AtEol()) {
      const auto more = [&](int aNext) { return aNext != EEolMarker && aNext != aCh.unicode(); };
      AppendChunks(TakeWhile(more), aStr, chunk);
    } else if (iLineMode) {
      aEof = true;
    } else {
      if (aKeepEol) aStr += ECrLf;
      ReadFileLine();
      aEof = iEof;
    }
  }
  aStr += chunk;
}

void CVelumScanner::FilterNumberStr(const QString& aStr, const QString& aDecimalSep, QString& aFiltered) {
  SetLine(aStr);
  QString kept;
  for (; !AtEol(); GetChar()) {
    if (IsDigitChar(iCh) || iCh == '+' || iCh == '-' || aDecimalSep == Ch()) kept += Ch();
  }
  aFiltered = kept;
}

bool CVelumScanner::IsShortNumberStr(const QString& aStr) {
  SetLine(aStr);
  for (; !AtEol(); GetChar()) {
    if (!IsDigitChar(iCh) && iCh != '+' && iCh != '-') return false;
  }
  double num = 0;
  try {
    num = std::nearbyint(CVelumValue::LenientNum(aStr));
  } catch (const CVelumException& e) {
    if (e.Number() != EHostOverflow) throw;
    return false;
  }
  return num >= std::numeric_limits<qint16>::min() && num <= std::numeric_limits<qint16>::max();
}
