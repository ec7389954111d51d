#include "core/CVelumXmlParser.h"

#include "core/CVelumChecked.h"
#include "core/CVelumCollation.h"
#include "core/CVelumValue.h"
#include "core/CVelumXmlLib.h"

using CVelumError::AssertObj;

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
    iSymStr = u"="_s;
    return;
  }
  iScanner->GetSym(iSym, iSymStr, iKeyword);
}

void CVelumXmlParser::GetTheSym(qint32 aKind) {
  NextSym();
  AssertObj(iSym == aKind, this, u"GetTheSym"_s, u"GetTheSym sym"_s);
}

void CVelumXmlParser::GetTheIdent(const QString& aName) {
  GetTheSym(ESymIdent);
  AssertObj(iSymStr == aName, this, u"GetTheIdent"_s, u"GetTheIdent ident"_s);
}

// Attributes.

const QString* CVelumXmlParser::FindAttr(const QString& aName) const {
  for (const auto& [name, value] : iAttrs)
    if (name == aName) return &value;
  for (const auto& [name, value] : iAttrs)
    if (name.size() == aName.size() && CVelumCollation::CompareKeys(name, aName) == 0) return &value;
  return nullptr;
}

void CVelumXmlParser::AddAttr(const QString& aName, const QString& aValue) {
  AssertObj(!FindAttr(aName), this, u"AddAttr"_s, u"Create duplicate"_s);
  iAttrs.emplace_back(aName, aValue);
}

QString CVelumXmlParser::Attr(const QString& aName) const {
  const QString* value = FindAttr(aName);
  return value ? *value : QString();
}

qint32 CVelumXmlParser::IntAttr(const QString& aName) const {
  const QString value = Attr(aName);
  return value.isEmpty() ? ENoInt : CVelumValue::RoundToInt(CVelumValue::LenientNum(value));
}

qint16 CVelumXmlParser::ShortAttr(const QString& aName) const {
  const QString value = Attr(aName);
  if (value.isEmpty()) return ENoShort;
  return CVelumChecked::Narrow<qint16>(CVelumValue::RoundToInt(CVelumValue::LenientNum(value)));
}

double CVelumXmlParser::RealAttr(const QString& aName) const {
  return CVelumValue::LenientNum(Attr(aName));
}

bool CVelumXmlParser::BooleanAttr(const QString& aName) const {
  const QString value = Attr(aName);
  if (value.isEmpty() || value == u"0"_s) return false;
  AssertObj(value == u"-1"_s, this, u"BooleanAttr"_s, u"iStr "_s + value);
  return true;
}

qint32 CVelumXmlParser::CountAttr(const QString& aName) const {
  const qint32 count = IntAttr(aName);
  return count == ENoInt ? 0 : count;
}

void CVelumXmlParser::ReadAttr(bool& aTerm) {
  iAttrs.clear();
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
    AssertObj(iSym == ESymIdent, this, u"ReadAttr"_s, u"ReadAttr sym"_s);
    if (iSym != ESymIdent) Stop(u"no attribute"_s);
    const QString name = iSymStr;
    GetTheSym(ESymEqual);
    GetTheSym(ESymString);
    QString value = iSymStr;
    CVelumLib::UnescapeXml(value);
    AddAttr(name, value);
    NextSym();
  }
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
  AssertObj(!term, &aOwner, u"InternalizeXml"_s, u"InternalizeXml term"_s);
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
  AssertObj(utf8 || latin1, this, u"ReadHeader"_s, u"encoding "_s + iSymStr);
  if (utf8) SetCoding(ECodUtf8);
  if (latin1) SetCoding(ECodLatin1);
  GetTheSym(ESymQuestion);
  GetTheSym(ESymGreater);
  NextSym();
}

void CVelumXmlParser::ReadNext(QString& aName, bool& aTerm) {
  AssertObj(iSym == ESymLess, this, u"ReadNext"_s, u"ReadNext <"_s);
  if (iSym == ESymEof) Stop(u"the file ends"_s);
  NextSym();
  aTerm = iSym == ESymSlash;
  if (aTerm) {
    GetTheSym(ESymIdent);
    aName = iSymStr;
    GetTheSym(ESymGreater);
    NextSym();
    return;
  }
  AssertObj(iSym == ESymIdent, this, u"ReadNext"_s, u"ReadNext sym"_s);
  aName = iSymStr;
  NextSym();
}

void CVelumXmlParser::ReadTheNext(const QString& aName, bool aTerm) {
  QString name;
  bool term = false;
  ReadNext(name, term);
  AssertObj(name == aName, this, u"ReadTheNext"_s, u"ReadTheNext name wanted="_s + aName + u",got="_s + name);
  AssertObj(term == aTerm, this, u"ReadTheNext"_s, u"ReadTheNext "_s + aName + u" term"_s);
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

void CVelumXmlParser::ReadLongElemText(QString& aText) {
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

QString CVelumXmlParser::ReadTextElem(const QString& aName) {
  ReadTheNext(aName, false);
  bool term = false;
  ReadAttr(term);
  QString text;
  ReadElemText(text, false);
  ReadTheNext(aName, true);
  return text;
}

void CVelumXmlParser::ReadChild(CVelumStored& aChild, const CVelumObject& aOwner, const QString& aText) {
  QString name;
  bool term = false;
  ReadNext(name, term);
  AssertObj(aChild.IsInXml(name), &aOwner, u"InternalizeXml"_s, aText);
  aChild.InternalizeXml(*this);
}
