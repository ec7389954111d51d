#include "core/text/CVelumXmlWriter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLimits.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumXmlLib.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace {

constexpr qsizetype EPieceLen = 80;
constexpr qsizetype EBufSize = 65536; // characters that are written at a time
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

// Whether a character of ASCII stands in the document as it is.
constexpr bool IsPlain(char16_t aCh) {
  constexpr quint64 ESpecial =
      1ULL << '&' | 1ULL << '<' | 1ULL << '>' | 1ULL << '"' | 1ULL << '\'' | 1ULL << '\r' | 1ULL << 1;
  return aCh < 64 ? (ESpecial >> aCh & 1) == 0 : aCh < 128;
}

// Copies a text of such characters, as nearly all are; returns where the copy ends, or null for any other
// text.
char* CopyPlain(QStringView aText, char* aTo) {
  for (const QChar ch : aText) {
    if (!IsPlain(ch.unicode())) return nullptr;
    *aTo++ = static_cast<char>(ch.unicode());
  }
  return aTo;
}

// The same for a name, or for digits.
char* Copy(QStringView aText, char* aTo) {
  constexpr qsizetype four = 4; // characters at a time, as names are short
  const char16_t* from = aText.utf16();
  const char16_t* const end = from + aText.size();
  for (; end - from >= four; from += four, aTo += four) {
    quint64 chars = 0;
    std::memcpy(&chars, from, sizeof chars);
    chars = (chars | chars >> 8) & 0x0000FFFF0000FFFFU;
    const auto bytes = static_cast<quint32>(chars | chars >> 16);
    std::memcpy(aTo, &bytes, sizeof bytes);
  }
  while (from != end) *aTo++ = static_cast<char>(*from++);
  return aTo;
}

// ` name="`; returns where it ends.
char* CopyAttrName(QStringView aName, char* aTo) {
  *aTo++ = ' ';
  aTo = Copy(aName, aTo);
  *aTo++ = '=';
  *aTo++ = '"';
  return aTo;
}

// aText as it stands in the document.
QString Escaped(const QString& aText) {
  if (std::all_of(aText.begin(), aText.end(), [](QChar aCh) { return IsPlain(aCh.unicode()); })) return aText;
  CheckText(aText);
  QString escaped = aText;
  CVelumLib::EscapeXml(escaped);
  return escaped;
}

} // namespace

CVelumXmlWriter::CVelumXmlWriter(const QString& aFilename)
    : iFile(MakeRef<CVelumFile>(aFilename, qint32{EFilSeqWrite})) {
  iFile->SetCoding(ECodUtf8);
}

void CVelumXmlWriter::OpenFile() {
  iFile->OpenFile();
  iUsed = iLineStart = iLineExtra = 0;
  iDepth = 0;
  iFile->WriteLine(u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>"_s);
}

void CVelumXmlWriter::CloseFile() {
  CVelumError::AssertObj(AtLineStart(), this, u"CloseFile"_s, u"CloseFile line"_s);
  WriteOut();
  iFile->CloseFile();
}

// The document is built here.

void CVelumXmlWriter::Grow(qsizetype aCount) {
  iBuf.resize(std::max({static_cast<size_t>(iUsed + aCount), 2 * iBuf.size(), size_t{EBufSize}}));
}

// The same as Room behind the indentation where a line begins. The root element stands in column 0.
char* CVelumXmlWriter::LineRoom(qsizetype aCount) {
  if (!AtLineStart()) return Room(aCount);
  const qsizetype blanks = std::max<qsizetype>((iDepth - 1) * 2, 0);
  return std::fill_n(Room(blanks + aCount), blanks, ' ');
}

QString CVelumXmlWriter::LineBeginning() const {
  constexpr qsizetype most = 3; // bytes that a character takes in UTF-8
  const QByteArrayView line(iBuf.data() + iLineStart, std::min(iUsed - iLineStart, most * EShownLen));
  return QString::fromUtf8(line).left(EShownLen).trimmed();
}

void CVelumXmlWriter::EndLine() {
  if (iUsed - iLineStart - iLineExtra > EMaxScanLine)
    CVelumError::RaiseHost(EHostOverflow, u"too long for a line of XML: "_s + LineBeginning());
  char* to = Room(EEolLen);
  to[0] = '\r';
  to[1] = '\n';
  iLineStart = iUsed;
  iLineExtra = 0;
  if (iUsed >= EBufSize) WriteOut();
}

// Writes all whole lines. The file adds the end of the last one.
void CVelumXmlWriter::WriteOut() {
  const qsizetype count = iLineStart - EEolLen;
  iUsed = iLineStart = 0;
  if (count >= 0) iFile->WriteRawLines(QByteArrayView(iBuf.data(), count));
}

// Text as it stands in the document.
void CVelumXmlWriter::AddText(QStringView aText) {
  if (CopyPlain(aText, Room(aText.size()))) return;
  iUsed -= aText.size();
  const QByteArray text = aText.toUtf8();
  std::copy(text.begin(), text.end(), Room(text.size()));
  iLineExtra += text.size() - aText.size();
}

// Elements.

void CVelumXmlWriter::BeginElem(QStringView aName) {
  iDepth = CVelumChecked::Add(iDepth, qint16{1});
  char* to = LineRoom(aName.size() + 1);
  *to++ = '<';
  Copy(aName, to);
}

void CVelumXmlWriter::AddPlainAttr(QStringView aName, QStringView aValue) {
  char* to = CopyAttrName(aName, Room(aName.size() + aValue.size() + 4));
  *Copy(aValue, to) = '"';
}

void CVelumXmlWriter::AddAttr(QStringView aName, const QString& aValue) {
  char* to = CopyAttrName(aName, Room(aName.size() + aValue.size() + 4));
  if (char* end = CopyPlain(aValue, to)) {
    *end = '"';
    return;
  }
  iUsed -= aValue.size() + 1;
  AddText(Escaped(aValue));
  *Room(1) = '"';
}

void CVelumXmlWriter::AddIntAttr(QStringView aName, qint32 aValue) {
  char* to = CopyAttrName(aName, Room(aName.size() + EIntLen + 4));
  char* end = std::to_chars(to, to + EIntLen, aValue).ptr;
  *end++ = '"';
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
  *Room(1) = '>';
  if (aText.size() <= EPieceLen) {
    if (CopyPlain(aText, Room(aText.size()))) return;
    iUsed -= aText.size();
  }
  const QString text = Escaped(aText);
  for (qsizetype from = 0; from < text.size();) {
    const qsizetype end = PieceEnd(text, from);
    if (from > 0) EndLine();
    AddText(QStringView(text).sliced(from, end - from));
    from = end;
  }
}

void CVelumXmlWriter::EndElem(QStringView aName) {
  char* to = Copy(u"</", LineRoom(aName.size() + 3));
  *Copy(aName, to) = '>';
  EndLine();
  --iDepth;
}

void CVelumXmlWriter::BeginStruct() {
  *Room(1) = '>';
  EndLine();
}

void CVelumXmlWriter::WriteTextElem(QStringView aName, const QString& aText) {
  BeginElem(aName);
  AddElemText(aText);
  EndElem(aName);
}
