#include "core/CVelumXmlWriter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumDecimal.h"
#include "core/CVelumXmlLib.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr qsizetype EPieceLen = 80;
constexpr qsizetype EMaxLine = 32766; // of the scanner that reads it
constexpr qsizetype EShownLen = 60;   // of a text in a message
const QString ECrLf = u"\r\n"_s;

// The end of the piece that begins at aFrom. A surrogate pair stays whole, or it could not be encoded.
qsizetype PieceEnd(const QString& aText, qsizetype aFrom) {
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

} // namespace

CVelumXmlWriter::CVelumXmlWriter(const QString& aFilename)
    : iFile(MakeRef<CVelumFile>(aFilename, qint32{EFilSeqWrite})) {
  iFile->SetCoding(ECodUtf8);
}

void CVelumXmlWriter::OpenFile() {
  iFile->OpenFile();
  iLine.clear();
  iDepth = 0;
  iFile->WriteLine(u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>"_s);
}

void CVelumXmlWriter::CloseFile() {
  CVelumError::AssertObj(iLine.isEmpty(), this, u"CloseFile"_s, u"CloseFile line"_s);
  iFile->CloseFile();
}

void CVelumXmlWriter::BeginElem(const QString& aName) {
  iLine += u'<' + aName;
  iDepth = CVelumChecked::Add(iDepth, qint16{1});
}

void CVelumXmlWriter::CheckText(const QString& aText) const {
  for (qsizetype pos = 0; pos < aText.size(); ++pos)
    if (!Survives(aText, pos))
      CVelumError::RaiseHost(EHostBadCall, u"a character that XML cannot hold in '"_s +
                                               aText.first(std::min(aText.size(), EShownLen)) + u"'"_s);
}

void CVelumXmlWriter::AddPlainAttr(const QString& aName, const QString& aValue) {
  iLine += u' ' + aName + u"=\""_s + aValue + u'"';
}

void CVelumXmlWriter::AddAttr(const QString& aName, const QString& aValue) {
  CheckText(aValue);
  QString value = aValue;
  CVelumLib::EscapeXml(value);
  AddPlainAttr(aName, value);
}

void CVelumXmlWriter::AddIntAttr(const QString& aName, qint32 aValue) {
  AddPlainAttr(aName, QString::number(aValue));
}

void CVelumXmlWriter::AddShortAttr(const QString& aName, qint16 aValue) {
  AddPlainAttr(aName, QString::number(aValue));
}

void CVelumXmlWriter::AddRealAttr(const QString& aName, double aValue) {
  AddPlainAttr(aName, CVelumDecimal::TextOf(aValue));
}

void CVelumXmlWriter::AddSingleAttr(const QString& aName, float aValue) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), aValue).ptr;
  double value = 0;
  static_cast<void>(std::from_chars(digits.data(), end, value));
  AddRealAttr(aName, value);
}

void CVelumXmlWriter::AddBooleanAttr(const QString& aName, bool aValue) {
  AddPlainAttr(aName, aValue ? u"-1"_s : u"0"_s);
}

void CVelumXmlWriter::EndEmptyElem() {
  iLine += u"/>"_s;
  WriteLine();
  --iDepth;
}

void CVelumXmlWriter::AddLongElemText(const QString& aText) {
  CheckText(aText);
  iLine += u'>';
  QString text = aText;
  CVelumLib::EscapeXml(text);
  iLine.reserve(iLine.size() + text.size() + text.size() / EPieceLen * ECrLf.size() + EPieceLen);
  for (qsizetype from = 0; from < text.size();) {
    const qsizetype end = PieceEnd(text, from);
    if (from > 0) iLine += ECrLf;
    iLine += QStringView(text).mid(from, end - from);
    from = end;
  }
}

void CVelumXmlWriter::EndElem(const QString& aName) {
  iLine += u"</"_s + aName + u'>';
  WriteLine();
  --iDepth;
}

void CVelumXmlWriter::BeginStruct() {
  iLine += u'>';
  WriteLine();
}

void CVelumXmlWriter::WriteTextElem(const QString& aName, const QString& aText) {
  BeginElem(aName);
  AddElemText(aText);
  EndElem(aName);
}

// Only the first of the lines that iLine holds can be long: the others are pieces.
void CVelumXmlWriter::WriteLine() {
  const QString indent(std::max<qsizetype>((iDepth - 1) * 2, 0), u' ');
  const qsizetype end = iLine.indexOf(u'\r');
  if (indent.size() + (end < 0 ? iLine.size() : end) > EMaxLine)
    CVelumError::RaiseHost(EHostOverflow, u"too long for a line of XML: "_s + iLine.first(EShownLen));
  iFile->WriteLine(indent + iLine);
  iLine.clear();
}
