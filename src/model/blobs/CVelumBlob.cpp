#include "model/blobs/CVelumBlob.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/change/CVelumRecorder.h"

#include <QtEndian>

using CVelumRecord::Store;

namespace {

constexpr int ETypeId = 10;
const QString EBytes = u"Bytes"_s;
constexpr int EMinGen = 3;
constexpr int EGenIds = 4;  // has OriginalId and SampleId
constexpr int EGenSize = 5; // has Width and Height
constexpr int EGen = 5;
constexpr qint64 EFixedLen = 4 + 4 + 2 + 4 * 4 + 2 * 4 + 2 * 2 + 4; // all but strings and content

// Walks over the fields of a stored blob in a piece of the file.
class CSpanWalker {
public:
  explicit CSpanWalker(const QByteArray& aBytes) : iBytes(aBytes) {}
  void Skip(qint64 aLen) { iPos += aLen; }
  void SkipStr() {
    qint16 len = Take<qint16>();
    iBad = iBad || len < 0;
    iPos += len;
  }
  template <class T> T Take() {
    bool there = !iBad && iPos >= 0 && iPos + static_cast<qint64>(sizeof(T)) <= iBytes.size();
    T val = there ? qFromLittleEndian<T>(iBytes.constData() + iPos) : T{};
    iPos += static_cast<qint64>(sizeof(T));
    iBad = iBad || !there;
    return val;
  }
  // A field did not lie wholly in the piece.
  [[nodiscard]] bool Bad() const { return iBad; }
  [[nodiscard]] qint64 Pos() const { return iPos; }

private:
  const QByteArray& iBytes;
  qint64 iPos = 0;
  bool iBad = false;
};

// The span of the blob at the start of aBytes; false when the piece is too short for its description.
bool TakeSpan(const QByteArray& aBytes, CVelumBlob::TSpan& aSpan) {
  CSpanWalker walker(aBytes);
  walker.Skip(2);
  int gen = walker.Take<qint16>();
  aSpan.iId = walker.Take<qint32>();
  walker.Skip(2);
  walker.SkipStr();
  walker.SkipStr();
  walker.Skip(4 * 4);
  walker.SkipStr();
  if (gen >= EGenIds) walker.Skip(2 * 4);
  if (gen >= EGenSize) walker.Skip(2 * 2);
  walker.Skip(4);
  qint32 len = walker.Take<qint32>();
  aSpan.iLen = walker.Bad() || len < 0 ? -1 : walker.Pos() + len;
  return !walker.Bad();
}

bool IsBlobFrame(const QByteArray& aBytes) {
  CSpanWalker walker(aBytes);
  int typeId = walker.Take<qint16>();
  int gen = walker.Take<qint16>();
  return !walker.Bad() && typeId == ETypeId && gen >= EMinGen && gen <= EGen;
}

} // namespace

CVelumBlob::CVelumBlob(qint32 aId)
    : iId(aId), iCreDate(CVelumValue::Today()), iCreTime(CVelumValue::Now()), iFileDate(iCreDate),
      iFileTime(iCreTime) {}

QString CVelumBlob::ObjDescr() const {
  return u"CVelumBlob "_s + QString::number(iId);
}

void CVelumBlob::SetBlobType(qint32 aType) {
  Store(*this, EMemberBlobType, iBlobType, aType, iChanged);
}

void CVelumBlob::SetName(const QString& aName) {
  Store(*this, EMemberName, iName, aName, iChanged);
}

void CVelumBlob::SetFilename(const QString& aFilename) {
  Store(*this, EMemberFilename, iFilename, aFilename, iChanged);
}

void CVelumBlob::SetCreDate(double aDate) {
  Store(*this, EMemberCreDate, iCreDate, aDate, iChanged);
}

void CVelumBlob::SetCreTime(double aTime) {
  Store(*this, EMemberCreTime, iCreTime, aTime, iChanged);
}

void CVelumBlob::SetFileDate(double aDate) {
  Store(*this, EMemberFileDate, iFileDate, aDate, iChanged);
}

void CVelumBlob::SetFileTime(double aTime) {
  Store(*this, EMemberFileTime, iFileTime, aTime, iChanged);
}

void CVelumBlob::SetMimeType(const QString& aType) {
  Store(*this, EMemberMimeType, iMimeType, aType, iChanged);
}

void CVelumBlob::SetOriginalId(qint32 aId) {
  Store(*this, EMemberOriginalId, iOriginalId, aId, iChanged);
}

void CVelumBlob::SetSampleId(qint32 aId) {
  Store(*this, EMemberSampleId, iSampleId, aId, iChanged);
}

void CVelumBlob::SetWidth(qint16 aWidth) {
  Store(*this, EMemberWidth, iWidth, aWidth, iChanged);
}

void CVelumBlob::SetHeight(qint16 aHeight) {
  Store(*this, EMemberHeight, iHeight, aHeight, iChanged);
}

void CVelumBlob::SetBytes(const QByteArray& aBytes) {
  Store(*this, EMemberBytes, iBytes, aBytes, iChanged);
}

void CVelumBlob::SetChanged(bool aChanged) {
  iChanged = aChanged;
  if (!aChanged) iCountFell = false;
}

void CVelumBlob::SetMarks(const TMarks& aMarks) {
  iOnFile = aMarks.iOnFile;
  iChanged = aMarks.iChanged;
  iCountFell = aMarks.iCountFell;
}

void CVelumBlob::IncRefCount() {
  Store(*this, EMemberRefCount, iRefCount, CVelumChecked::Add(iRefCount, 1), iChanged);
}

void CVelumBlob::DecRefCount() {
  CVelumError::AssertObj(iRefCount > 0, this, u"DecRefCount"_s, u"iRefCount"_s);
  if (iRefCount <= 0) return;
  Store(*this, EMemberRefCount, iRefCount, iRefCount - 1, iCountFell);
}

void CVelumBlob::DecDynRefCount() {
  CVelumError::AssertObj(iDynRefCount > 0, this, u"DecDynRefCount"_s, u"iDynRefCount"_s);
  if (iDynRefCount > 0) --iDynRefCount;
}

void CVelumBlob::ReadDescription(CVelumFile& aFile, int aGen) {
  iId = aFile.ReadInt();
  iBlobType = aFile.ReadShort();
  iName = aFile.ReadStr();
  iFilename = aFile.ReadStr();
  iCreDate = CVelumValue::IntToDate(aFile.ReadInt());
  iCreTime = CVelumValue::IntToTime(aFile.ReadInt());
  iFileDate = CVelumValue::IntToDate(aFile.ReadInt());
  iFileTime = CVelumValue::IntToTime(aFile.ReadInt());
  iMimeType = aFile.ReadStr();
  iOriginalId = aGen >= EGenIds ? aFile.ReadInt() : ENoInt;
  iSampleId = aGen >= EGenIds ? aFile.ReadInt() : ENoInt;
  iWidth = aGen >= EGenSize ? aFile.ReadShort() : ENoShort;
  iHeight = aGen >= EGenSize ? aFile.ReadShort() : ENoShort;
  iRefCount = aFile.ReadInt();
}

void CVelumBlob::Internalize(CVelumFile& aFile) {
  int gen = CVelumLib::ReadBinObjStart(aFile, ETypeId, EMinGen, EGen);
  ReadDescription(aFile, gen);
  if (!iInfoOnly) iBytes = aFile.ReadBytes();
  iOnFile = true;
  SetChanged(false);
}

void CVelumBlob::Externalize(CVelumFile& aFile) {
  CVelumError::AssertObj(!iInfoOnly, this, u"Externalize"_s, u"iInfoOnly"_s);
  if (iInfoOnly) CVelumError::RaiseHost(EHostBadCall, ObjDescr());
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGen);
  aFile.WriteInt(iId);
  aFile.WriteShort(CVelumChecked::Narrow<qint16>(iBlobType));
  aFile.WriteStr(iName);
  aFile.WriteStr(iFilename);
  aFile.WriteInt(CVelumValue::DateToInt(iCreDate));
  aFile.WriteInt(CVelumValue::TimeToInt(iCreTime));
  aFile.WriteInt(CVelumValue::DateToInt(iFileDate));
  aFile.WriteInt(CVelumValue::TimeToInt(iFileTime));
  aFile.WriteStr(iMimeType);
  aFile.WriteInt(iOriginalId);
  aFile.WriteInt(iSampleId);
  aFile.WriteShort(iWidth);
  aFile.WriteShort(iHeight);
  aFile.WriteInt(iRefCount);
  aFile.WriteBytes(iBytes);
  iOnFile = true;
}

qint64 CVelumBlob::ExtLen() const {
  return EFixedLen + CVelumFile::ExtStrLen(iName) + CVelumFile::ExtStrLen(iFilename) +
         CVelumFile::ExtStrLen(iMimeType) + CVelumFile::ExtBytesLen(iBytes);
}

CVelumBlob::TSpan CVelumBlob::SpanAt(CVelumFile& aFile, qint64 aPos) {
  constexpr qint64 EUsual = 512;          // mostly holds the whole description
  constexpr qint64 ELongest = 128 * 1024; // holds three strings of any length
  QByteArray bytes = aFile.PeekAt(aPos, EUsual);
  if (!IsBlobFrame(bytes)) {
    aFile.SeekPos(aPos);
    static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EMinGen, EGen)); // throws
  }
  TSpan span;
  if (!TakeSpan(bytes, span) && bytes.size() == EUsual)
    static_cast<void>(TakeSpan(aFile.PeekAt(aPos, ELongest), span));
  return span;
}

void CVelumBlob::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  CVelumError::AssertObj(aParser.CountAttr(u"gen"_s) >= EMinGen, this, u"InternalizeXml"_s, u"gen"_s);
  iId = aParser.IntAttr(u"id"_s);
  iBlobType = aParser.CountAttr(u"type"_s);
  iName = aParser.Attr(u"name"_s);
  iFilename = aParser.Attr(u"fileName"_s);
  iCreDate = CVelumValue::IntToDate(aParser.IntAttr(u"creDate"_s));
  iCreTime = CVelumValue::IntToTime(aParser.IntAttr(u"creTime"_s));
  iFileDate = CVelumValue::IntToDate(aParser.IntAttr(u"fileDate"_s));
  iFileTime = CVelumValue::IntToTime(aParser.IntAttr(u"fileTime"_s));
  iMimeType = aParser.Attr(u"mimeType"_s);
  iOriginalId = aParser.IntAttr(u"originalId"_s);
  iSampleId = aParser.IntAttr(u"sampleId"_s);
  iWidth = aParser.ShortAttr(u"width"_s);
  iHeight = aParser.ShortAttr(u"height"_s);
  iRefCount = aParser.CountAttr(u"refCount"_s);
  iBytes = CVelumLib::HexToBytes(aParser.ReadTextElem(EBytes));
  aParser.ReadTheNext(u"Blob"_s, true);
  iOnFile = false;
  SetChanged(false);
}

void CVelumBlob::ExternalizeXml(CVelumXmlWriter& aWriter) {
  CVelumError::AssertObj(!iInfoOnly, this, u"ExternalizeXml"_s, u"iInfoOnly"_s);
  if (iInfoOnly) CVelumError::RaiseHost(EHostBadCall, ObjDescr());
  aWriter.BeginElem(u"Blob"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddIntAttr(u"id"_s, iId);
  aWriter.AddShortAttr(u"type"_s, CVelumChecked::Narrow<qint16>(iBlobType));
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddAttr(u"fileName"_s, iFilename);
  aWriter.AddIntAttr(u"creDate"_s, CVelumValue::DateToInt(iCreDate));
  aWriter.AddIntAttr(u"creTime"_s, CVelumValue::TimeToInt(iCreTime));
  aWriter.AddIntAttr(u"fileDate"_s, CVelumValue::DateToInt(iFileDate));
  aWriter.AddIntAttr(u"fileTime"_s, CVelumValue::TimeToInt(iFileTime));
  aWriter.AddAttr(u"mimeType"_s, iMimeType);
  aWriter.AddIntAttr(u"originalId"_s, iOriginalId);
  aWriter.AddIntAttr(u"sampleId"_s, iSampleId);
  aWriter.AddShortAttr(u"width"_s, iWidth);
  aWriter.AddShortAttr(u"height"_s, iHeight);
  aWriter.AddIntAttr(u"refCount"_s, iRefCount);
  aWriter.BeginStruct();
  aWriter.WriteTextElem(EBytes, CVelumLib::BytesToHex(iBytes, false));
  aWriter.EndElem(u"Blob"_s);
}
