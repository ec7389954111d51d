#include "core/text/CVelumXmlParser.h"

#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumCollation.h"
#include "core/text/CVelumXmlLib.h"

#include <algorithm>
#include <cstring>

using CVelumError::AssertObj;

namespace {

char16_t Lower(QChar aCh) {
  return aCh >= u'A' && aCh <= u'Z' ? static_cast<char16_t>(aCh.unicode() + 32) : aCh.unicode();
}

// The same characters; for short texts, where a call would cost more than the comparison.
bool Equal(QStringView aA, QStringView aB) {
  return aA.size() == aB.size() && std::equal(aA.begin(), aA.end(), aB.begin());
}

// Length and first letter of an identifier; where these differ, it is another one.
qsizetype LookOf(QStringView aName) {
  return aName.isEmpty() ? 0 : aName.size() * 65536 + Lower(aName.front());
}

// Whether two identifiers that look alike are the same to the table of attributes. Comparing them by the
// letters first spares the collation for most.
bool SameIdent(QStringView aA, QStringView aB) {
  const auto same = [](QChar aLeft, QChar aRight) { return Lower(aLeft) == Lower(aRight); };
  return aA == aB ||
         (std::equal(aA.begin(), aA.end(), aB.begin(), same) && CVelumCollation::CompareKeys(aA, aB) == 0);
}

// Whole numbers of up to 9 digits, as nearly all are, need not become a real first.
qint32 ToInt(QStringView aValue) {
  constexpr qsizetype EMaxDigits = 9;
  qint32 num = 0;
  bool digits = aValue.size() <= EMaxDigits;
  for (qsizetype i = 0; digits && i < aValue.size(); ++i) {
    const char16_t ch = aValue[i].unicode();
    digits = ch >= u'0' && ch <= u'9';
    if (digits) num = num * 10 + (ch - u'0');
  }
  return digits ? num : CVelumValue::RoundToInt(CVelumValue::LenientNum(aValue));
}

} // namespace

CVelumXmlParser::CVelumXmlParser(const QString& aFilename)
    : iScanner(MakeRef<CVelumScanner>()), iFile(MakeRef<CVelumFile>(aFilename, qint32{EFilSeqRead})) {}

void CVelumXmlParser::SetCoding(qint32 aCoding) {
  iCoding = aCoding;
  iFile->SetCoding(aCoding);
}

void CVelumXmlParser::OpenFile() {
  iFile->OpenFile();
  iFile->SetCoding(iCoding);
  iScanner->SetFile(iFile);
  iScanner->BeginFile();
  NextSym();
}

void CVelumXmlParser::CloseFile() {
  iFile->CloseFile();
}

void CVelumXmlParser::Stop(const QString& aWhy) const {
  CVelumError::RaiseHost(EHostBadCall,
                         u"%1 in line %2 of %3"_s.arg(aWhy).arg(LineNum()).arg(iFile->Filename()));
}

// Symbols.

void CVelumXmlParser::NextSym() {
  if (iPendingEqual) {
    iPendingEqual = false;
    iSym = ESymEqual;
    iSymStr = u"=";
    return;
  }
  iSym = iScanner->GetSymView(iSymStr);
}

void CVelumXmlParser::GetTheSym(qint32 aKind) {
  NextSym();
  if (iSym != aKind) AssertObj(false, this, u"GetTheSym"_s, u"GetTheSym sym"_s);
}

void CVelumXmlParser::GetTheIdent(QStringView aName) {
  GetTheSym(ESymIdent);
  AssertObj(iSymStr == aName, this, u"GetTheIdent"_s, u"GetTheIdent ident"_s);
}

// Attributes.

QStringView CVelumXmlParser::NameOf(const TAttr& aAttr) const {
  return {iAttrText.data() + aAttr.iName, aAttr.iValue - aAttr.iName};
}

// Index of an attribute, or -1.
qsizetype CVelumXmlParser::FindAttr(QStringView aName) const {
  const size_t count = iAttrs.size();
  if (iNextAttr < count && Equal(NameOf(iAttrs[iNextAttr]), aName))
    return static_cast<qsizetype>(iNextAttr++);
  for (size_t i = 0; i < count; ++i) {
    if (!Equal(NameOf(iAttrs[i]), aName)) continue;
    iNextAttr = i + 1;
    return static_cast<qsizetype>(i);
  }
  const qsizetype look = LookOf(aName);
  for (size_t i = 0; i < count; ++i)
    if (iAttrs[i].iLook == look && SameIdent(NameOf(iAttrs[i]), aName)) return static_cast<qsizetype>(i);
  return -1;
}

QStringView CVelumXmlParser::AttrView(QStringView aName) const {
  const qsizetype at = FindAttr(aName);
  if (at < 0) return {};
  const TAttr& attr = iAttrs[static_cast<size_t>(at)];
  return {iAttrText.data() + attr.iValue, attr.iEnd - attr.iValue};
}

// Elements of stacks have few attributes, which are looked through faster than a table is made.
bool CVelumXmlParser::IsKnown(QStringView aName, qsizetype aLook) {
  constexpr size_t few = 64;
  if (iAttrs.size() > few) return IsKnownOfMany(aName);
  return std::any_of(iAttrs.begin(), iAttrs.end(), [&](const TAttr& aAttr) {
    return aAttr.iLook == aLook && SameIdent(NameOf(aAttr), aName);
  });
}

bool CVelumXmlParser::IsKnownOfMany(QStringView aName) {
  const auto small = [](QStringView aText) {
    QString text = aText.toString();
    for (QChar& ch : text) ch = Lower(ch);
    return text;
  };
  for (; iIndexed < iAttrs.size(); ++iIndexed)
    iIndex.insert(small(NameOf(iAttrs[iIndexed])), static_cast<qsizetype>(iIndexed));
  const auto [first, end] = std::as_const(iIndex).equal_range(small(aName));
  return std::any_of(first, end, [&](qsizetype aPlace) {
    return SameIdent(NameOf(iAttrs[static_cast<size_t>(aPlace)]), aName);
  });
}

void CVelumXmlParser::AddAttr(QStringView aName, QStringView aValue) {
  const qsizetype look = LookOf(aName);
  if (IsKnown(aName, look)) AssertObj(false, this, u"AddAttr"_s, u"Create duplicate"_s);
  const qsizetype name = iAttrUsed;
  const qsizetype value = name + aName.size();
  iAttrUsed = value + aValue.size();
  const auto need = static_cast<size_t>(iAttrUsed);
  if (need > iAttrText.size()) iAttrText.resize(2 * need);
  std::copy(aName.utf16(), aName.utf16() + aName.size(), iAttrText.begin() + name);
  std::copy(aValue.utf16(), aValue.utf16() + aValue.size(), iAttrText.begin() + value);
  iAttrs.push_back({name, value, iAttrUsed, look});
}

QString CVelumXmlParser::Pooled(QStringView aText) const {
  if (aText.isEmpty()) return {};
  char16_t* chars = nullptr;
  QString text = iTexts.Take(aText.size(), chars);
  std::memcpy(chars, aText.utf16(), static_cast<size_t>(aText.size()) * sizeof(char16_t));
  return text;
}

QString CVelumXmlParser::Attr(QStringView aName) const {
  return Pooled(AttrView(aName));
}

qint32 CVelumXmlParser::IntAttr(QStringView aName) const {
  const QStringView value = AttrView(aName);
  return value.isEmpty() ? ENoInt : ToInt(value);
}

qint16 CVelumXmlParser::ShortAttr(QStringView aName) const {
  const QStringView value = AttrView(aName);
  return value.isEmpty() ? ENoShort : CVelumChecked::Narrow<qint16>(ToInt(value));
}

double CVelumXmlParser::RealAttr(QStringView aName) const {
  return CVelumValue::LenientNum(AttrView(aName));
}

bool CVelumXmlParser::BooleanAttr(QStringView aName) const {
  const QStringView value = AttrView(aName);
  if (value.isEmpty() || value == u"0") return false;
  if (value != u"-1") AssertObj(false, this, u"BooleanAttr"_s, u"iStr "_s + value.toString());
  return true;
}

qint32 CVelumXmlParser::CountAttr(QStringView aName) const {
  const qint32 count = IntAttr(aName);
  return count == ENoInt ? 0 : count;
}

void CVelumXmlParser::ReadAttr(bool& aTerm) {
  iAttrs.clear();
  iAttrUsed = 0;
  if (iIndexed > 0) iIndex.clear();
  iIndexed = 0;
  iNextAttr = 0;
  for (;;) {
    if (iSym == ESymGreater || iSym == ESymGreaterEqual) {
      iPendingEqual = iSym == ESymGreaterEqual;
      aTerm = false;
      return;
    }
    if (iSym == ESymSlash) {
      aTerm = true;
      return GetTheSym(ESymGreater);
    }
    if (iSym != ESymIdent) {
      AssertObj(false, this, u"ReadAttr"_s, u"ReadAttr sym"_s);
      Stop(u"no attribute"_s);
    }
    ReadAttrs();
    NextSym();
  }
}

// The attribute whose name is the present symbol, and what follows of the same kind. Mostly all stand in one
// line, as the writer has it; otherwise the name must outlive its line.
void CVelumXmlParser::ReadAttrs() {
  QStringView value;
  if (iScanner->TakeAttrValue(value)) {
    AddEscaped(iSymStr, value);
    QStringView name;
    while (iScanner->TakeAttr(name, value)) AddEscaped(name, value);
    return;
  }
  iName.resize(0);
  iName.append(iSymStr);
  GetTheSym(ESymEqual);
  GetTheSym(ESymString);
  AddEscaped(iName, iSymStr);
}

void CVelumXmlParser::AddEscaped(QStringView aName, QStringView aValue) {
  if (std::find(aValue.begin(), aValue.end(), u'&') == aValue.end()) return AddAttr(aName, aValue);
  QString value = aValue.toString();
  CVelumLib::UnescapeXml(value);
  AddAttr(aName, value);
}

void CVelumXmlParser::ReadAttrAndSym(bool& aTerm) {
  ReadAttr(aTerm);
  NextSym();
}

void CVelumXmlParser::ReadAttrTerm() {
  bool term = false;
  ReadAttrAndSym(term);
  AssertObj(term, this, u"ReadAttrTerm"_s, u"ReadAttrTerm term"_s);
}

void CVelumXmlParser::ReadStructAttr(const CVelumObject& aOwner) {
  bool term = false;
  ReadAttrAndSym(term);
  if (term) AssertObj(false, &aOwner, u"InternalizeXml"_s, u"InternalizeXml term"_s);
}

// Tags.

void CVelumXmlParser::ReadHeader() {
  AssertObj(iSym == ESymLess, this, u"ReadHeader"_s, u"ReadHeader lt"_s);
  GetTheSym(ESymQuestion);
  GetTheIdent(u"xml"_s);
  GetTheIdent(u"version"_s);
  GetTheSym(ESymEqual);
  GetTheSym(ESymString);
  GetTheIdent(u"encoding"_s);
  GetTheSym(ESymEqual);
  GetTheSym(ESymString);
  const bool utf8 = iSymStr == u"UTF-8"_s;
  const bool latin1 = iSymStr == u"ISO-8859-1"_s;
  AssertObj(utf8 || latin1, this, u"ReadHeader"_s, u"encoding "_s + iSymStr.toString());
  if (utf8) SetCoding(ECodUtf8);
  if (latin1) SetCoding(ECodLatin1);
  GetTheSym(ESymQuestion);
  GetTheSym(ESymGreater);
  NextSym();
}

// Reads the next tag up to its name; whether it is an end tag.
bool CVelumXmlParser::ReadName() {
  if (iSym != ESymLess) AssertObj(false, this, u"ReadNext"_s, u"ReadNext <"_s);
  if (iSym == ESymEof) Stop(u"the file ends"_s);
  NextSym();
  const bool term = iSym == ESymSlash;
  if (term)
    GetTheSym(ESymIdent);
  else if (iSym != ESymIdent)
    AssertObj(false, this, u"ReadNext"_s, u"ReadNext sym"_s);
  iName.resize(0); // keeps its memory
  iName.append(iSymStr);
  if (term) GetTheSym(ESymGreater);
  NextSym();
  return term;
}

void CVelumXmlParser::ReadNext(QString& aName, bool& aTerm) {
  aTerm = ReadName();
  aName = Pooled(iName);
}

void CVelumXmlParser::ReadTheNext(QStringView aName, bool aTerm) {
  if (iSym == ESymLess && !iPendingEqual && iScanner->TakeTag(aName, aTerm)) return NextSym();
  const bool term = ReadName();
  if (iName != aName)
    AssertObj(false, this, u"ReadTheNext"_s,
              u"ReadTheNext name wanted="_s + aName.toString() + u",got="_s + iName);
  if (term != aTerm)
    AssertObj(false, this, u"ReadTheNext"_s, u"ReadTheNext "_s + aName.toString() + u" term"_s);
}

// Text.

void CVelumXmlParser::TakePending(QString& aText) {
  if (iPendingEqual) aText.prepend(u'=');
  iPendingEqual = false;
}

void CVelumXmlParser::ReadElemText(QString& aText, bool aKeepEol) {
  if (!aKeepEol) return ReadLongElemText(aText);
  bool eof = false;
  iScanner->GetAllUntil(u'<', true, aText, eof);
  AssertObj(!eof, this, u"ReadElemText"_s, u"ReadElemText eof"_s);
  TakePending(aText);
  CVelumLib::UnescapeXml(aText);
  NextSym();
}

// A text on one line, without entities.
bool CVelumXmlParser::ReadShortText(QString& aText) {
  QStringView text;
  if (iPendingEqual || !iScanner->GetViewUntil(u'<', text)) return false;
  aText = Pooled(text);
  CVelumLib::UnescapeXml(aText);
  NextSym();
  return true;
}

void CVelumXmlParser::ReadLongElemText(QString& aText) {
  if (ReadShortText(aText)) return;
  bool eof = false;
  iScanner->GetLongAllUntil(u'<', false, aText, eof);
  AssertObj(!eof, this, u"ReadLongElemText"_s, u"ReadLongElemText eof"_s);
  TakePending(aText);
  CVelumLib::UnescapeXml(aText);
  NextSym();
}

void CVelumXmlParser::ReadElem(QString& aText) {
  aText.clear();
  bool term = false;
  ReadAttr(term);
  if (term) return NextSym();
  ReadElemText(aText, false);
  QString name;
  ReadNext(name, term);
  AssertObj(term, this, u"ReadElem"_s, u"ReadElem term"_s);
}

QString CVelumXmlParser::ReadTextElem(QStringView aName) {
  ReadTheNext(aName, false);
  bool term = false;
  ReadAttr(term);
  QString text;
  ReadElemText(text, false);
  ReadTheNext(aName, true);
  return text;
}

void CVelumXmlParser::ReadChild(CVelumStored& aChild, const CVelumObject& aOwner, const QString& aText) {
  if (iSym == ESymLess && !iPendingEqual && iScanner->TakeTag(aChild.XmlTag(), false)) {
    NextSym();
  } else {
    static_cast<void>(ReadName());
    if (!aChild.IsInXml(iName)) AssertObj(false, &aOwner, u"InternalizeXml"_s, aText);
  }
  aChild.InternalizeXml(*this);
}
