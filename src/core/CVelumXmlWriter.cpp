#include "core/CVelumXmlWriter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumDecimal.h"
#include "core/CVelumXmlLib.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr qsizetype EPieceLen = 80;
constexpr qsizetype EBufSize = 65536; // characters that are written at a time
constexpr qsizetype EMaxLine = 32766; // of the scanner that reads it
constexpr qsizetype EShownLen = 60;   // of a text in a message
constexpr qsizetype EEolLen = 2;
constexpr qsizetype EIntLen = 11; // the most that a number of 32 bits takes

// The end of the piece that begins at aFrom. A surrogate pair stays whole, or it could not be encoded.
qsizetype PieceEnd(QStringView aText, qsizetype aFrom) {
  const qsizetype end = std::min(aFrom + EPieceLen, aText.size());
  return end < aText.size() && aText.at(end).isLowSurrogate() ? end + 1 : end;
}

// Whether the characters at aPos would come back as they are; aPos goes past a whole pair.
bool Survives(const QString& aText, qsizetype& aPos) {
  const QChar ch = aText.at(aPos);
  const QChar next = aPos + 1 < aText.size() ? aText.at(aPos + 1) : QChar();
  if (ch == u'\x01') return false;
  if (ch == u'\r') return next == u'\n';
  if (!ch.isSurrogate()) return true;
  ++aPos;
  return ch.isHighSurrogate() && next.isLowSurrogate();
}

void CheckText(const QString& aText) {
  for (qsizetype pos = 0; pos < aText.size(); ++pos)
    if (!Survives(aText, pos))
      CVelumError::RaiseHost(EHostBadCall, u"a character that XML cannot hold in '"_s +
                                               aText.first(std::min(aText.size(), EShownLen)) + u"'"_s);
}

// Whether a text is written as it is, as nearly all are.
bool IsPlain(QStringView aText) {
  constexpr quint64 ESpecial =
      1ULL << '&' | 1ULL << '<' | 1ULL << '>' | 1ULL << '"' | 1ULL << '\'' | 1ULL << '\r' | 1ULL << 1;
  return std::none_of(aText.begin(), aText.end(), [](QChar aCh) {
    const char16_t ch = aCh.unicode();
    return ch < 64 ? (ESpecial >> ch & 1) != 0 : QChar::isSurrogate(ch);
  });
}

// Returns where the copy ends.
char16_t* Copy(QStringView aText, char16_t* aTo) {
  return std::copy(aText.utf16(), aText.utf16() + aText.size(), aTo);
}

// The digits of aValue; aTo has room for EIntLen characters. Returns where they end.
char16_t* CopyInt(qint32 aValue, char16_t* aTo) {
  quint32 left = aValue < 0 ? 0 - static_cast<quint32>(aValue) : static_cast<quint32>(aValue);
  if (aValue < 0) *aTo++ = u'-';
  ++aTo;
  for (quint64 limit = 10; left >= limit; limit *= 10) ++aTo;
  for (char16_t* to = aTo;; left /= 10) {
    *--to = static_cast<char16_t>(u'0' + left % 10);
    if (left < 10) return aTo;
  }
}

// ` name="`; returns where it ends.
char16_t* CopyAttrName(QStringView aName, char16_t* aTo) {
  *aTo++ = u' ';
  aTo = Copy(aName, aTo);
  *aTo++ = u'=';
  *aTo++ = u'"';
  return aTo;
}

// aText as it stands in the document; aEscaped holds it where it is another one.
QStringView Escaped(const QString& aText, QString& aEscaped) {
  if (IsPlain(aText)) return aText;
  CheckText(aText);
  aEscaped = aText;
  CVelumLib::EscapeXml(aEscaped);
  return aEscaped;
}

} // namespace

CVelumXmlWriter::CVelumXmlWriter(const QString& aFilename)
    : iFile(MakeRef<CVelumFile>(aFilename, qint32{EFilSeqWrite})) {
  iFile->SetCoding(ECodUtf8);
}

void CVelumXmlWriter::OpenFile() {
  iFile->OpenFile();
  iUsed = iLineStart = 0;
  iDepth = 0;
  iFile->WriteLine(u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>"_s);
}

void CVelumXmlWriter::CloseFile() {
  CVelumError::AssertObj(AtLineStart(), this, u"CloseFile"_s, u"CloseFile line"_s);
  WriteOut();
  iFile->CloseFile();
}

// The document is built here.

// Where aCount more characters are to be put.
char16_t* CVelumXmlWriter::Room(qsizetype aCount) {
  const auto need = static_cast<size_t>(iUsed + aCount);
  if (need > iBuf.size()) iBuf.resize(std::max({need, 2 * iBuf.size(), size_t{EBufSize}}));
  char16_t* room = iBuf.data() + iUsed;
  iUsed += aCount;
  return room;
}

// The same behind the indentation where a line begins. The root element stands in column 0.
char16_t* CVelumXmlWriter::LineRoom(qsizetype aCount) {
  if (!AtLineStart()) return Room(aCount);
  const qsizetype blanks = std::max<qsizetype>((iDepth - 1) * 2, 0);
  return std::fill_n(Room(blanks + aCount), blanks, u' ');
}

QString CVelumXmlWriter::LineBeginning() const {
  const QStringView line(iBuf.data() + iLineStart, std::min(iUsed - iLineStart, EShownLen));
  return line.toString().trimmed();
}

void CVelumXmlWriter::EndLine() {
  if (iUsed - iLineStart > EMaxLine)
    CVelumError::RaiseHost(EHostOverflow, u"too long for a line of XML: "_s + LineBeginning());
  char16_t* to = Room(EEolLen);
  to[0] = u'\r';
  to[1] = u'\n';
  iLineStart = iUsed;
  if (iUsed >= EBufSize) WriteOut();
}

// Writes all whole lines. The file adds the end of the last one.
void CVelumXmlWriter::WriteOut() {
  const qsizetype count = iLineStart - EEolLen;
  iUsed = iLineStart = 0;
  if (count >= 0) iFile->WriteLine(QString::fromRawData(reinterpret_cast<const QChar*>(iBuf.data()), count));
}

// Elements.

void CVelumXmlWriter::BeginElem(QStringView aName) {
  iDepth = CVelumChecked::Add(iDepth, qint16{1});
  char16_t* to = LineRoom(aName.size() + 1);
  *to++ = u'<';
  Copy(aName, to);
}

void CVelumXmlWriter::AddPlainAttr(QStringView aName, QStringView aValue) {
  char16_t* to = CopyAttrName(aName, Room(aName.size() + aValue.size() + 4));
  *Copy(aValue, to) = u'"';
}

void CVelumXmlWriter::AddAttr(QStringView aName, const QString& aValue) {
  QString escaped;
  AddPlainAttr(aName, Escaped(aValue, escaped));
}

void CVelumXmlWriter::AddIntAttr(QStringView aName, qint32 aValue) {
  char16_t* end = CopyInt(aValue, CopyAttrName(aName, Room(aName.size() + EIntLen + 4)));
  *end++ = u'"';
  iUsed = end - iBuf.data();
}

void CVelumXmlWriter::AddRealAttr(QStringView aName, double aValue) {
  AddPlainAttr(aName, CVelumDecimal::TextOf(aValue));
}

void CVelumXmlWriter::AddSingleAttr(QStringView aName, float aValue) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), aValue).ptr;
  double value = 0;
  static_cast<void>(std::from_chars(digits.data(), end, value));
  AddRealAttr(aName, value);
}

void CVelumXmlWriter::AddBooleanAttr(QStringView aName, bool aValue) {
  AddPlainAttr(aName, aValue ? u"-1" : u"0");
}

void CVelumXmlWriter::EndEmptyElem() {
  Copy(u"/>", Room(2));
  EndLine();
  --iDepth;
}

void CVelumXmlWriter::AddLongElemText(const QString& aText) {
  QString escaped;
  const QStringView text = Escaped(aText, escaped);
  *Room(1) = u'>';
  for (qsizetype from = 0; from < text.size();) {
    const qsizetype end = PieceEnd(text, from);
    if (from > 0) EndLine();
    Copy(text.sliced(from, end - from), Room(end - from));
    from = end;
  }
}

void CVelumXmlWriter::EndElem(QStringView aName) {
  char16_t* to = Copy(u"</", LineRoom(aName.size() + 3));
  *Copy(aName, to) = u'>';
  EndLine();
  --iDepth;
}

void CVelumXmlWriter::BeginStruct() {
  *Room(1) = u'>';
  EndLine();
}

void CVelumXmlWriter::WriteTextElem(QStringView aName, const QString& aText) {
  BeginElem(aName);
  AddElemText(aText);
  EndElem(aName);
}
