// Large content, such as a picture, with its description.
#pragma once

#include "core/array/CVelumArray.h"
#include "model/change/TDocAddress.h"

class CVelumBlob final : public CVelumStored {
public:
  // Allocated only: for Internalize.
  CVelumBlob() = default;
  // Made now, not on file, changed.
  explicit CVelumBlob(qint32 aId);

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] qint32 Id() const { return iId; }
  [[nodiscard]] TDocAddress Address() const { return {EDocBlob, iId}; }
  [[nodiscard]] qint32 BlobType() const { return iBlobType; }
  // The setters of what a file holds mark the blob changed.
  void SetBlobType(qint32 aType);
  [[nodiscard]] const QString& Name() const { return iName; }
  void SetName(const QString& aName);
  [[nodiscard]] const QString& Filename() const { return iFilename; }
  void SetFilename(const QString& aFilename);
  // Days.
  [[nodiscard]] double CreDate() const { return iCreDate; }
  [[nodiscard]] double CreTime() const { return iCreTime; }
  [[nodiscard]] double FileDate() const { return iFileDate; }
  [[nodiscard]] double FileTime() const { return iFileTime; }
  void SetCreDate(double aDate);
  void SetCreTime(double aTime);
  void SetFileDate(double aDate);
  void SetFileTime(double aTime);
  [[nodiscard]] const QString& MimeType() const { return iMimeType; }
  void SetMimeType(const QString& aType);
  // For a sample: id of the full picture.
  [[nodiscard]] qint32 OriginalId() const { return iOriginalId; }
  void SetOriginalId(qint32 aId);
  // For a full picture: id of its sample.
  [[nodiscard]] qint32 SampleId() const { return iSampleId; }
  void SetSampleId(qint32 aId);
  // Pixels; ENoShort when unknown.
  [[nodiscard]] qint16 Width() const { return iWidth; }
  [[nodiscard]] qint16 Height() const { return iHeight; }
  void SetWidth(qint16 aWidth);
  void SetHeight(qint16 aHeight);
  [[nodiscard]] bool OnFile() const { return iOnFile; }
  void SetOnFile(bool aOnFile) { iOnFile = aOnFile; }
  [[nodiscard]] const QByteArray& Bytes() const { return iBytes; }
  void SetBytes(const QByteArray& aBytes);
  [[nodiscard]] bool Changed() const override { return iChanged; }
  void SetChanged(bool aChanged) override;
  // Changed, or the reference count fell, which leaves Changed alone: the file holds something else.
  [[nodiscard]] bool DiffersFromFile() const { return iChanged || iCountFell; }
  [[nodiscard]] qint32 Age() const { return iAge; }
  void SetAge(qint32 aAge) { iAge = aAge; }
  // Read without content; such an object cannot be written.
  [[nodiscard]] bool InfoOnly() const { return iInfoOnly; }
  void SetInfoOnly(bool aInfoOnly) { iInfoOnly = aInfoOnly; }
  // References from card values, samples and wallpapers; kept on file.
  [[nodiscard]] qint32 RefCount() const { return iRefCount; }
  void IncRefCount();
  // Asserts "iRefCount" at 0.
  void DecRefCount();
  // Holders of the object in memory; the cache counts as one.
  [[nodiscard]] qint32 DynRefCount() const { return iDynRefCount; }
  void IncDynRefCount() { ++iDynRefCount; }
  // Asserts "iDynRefCount" at 0.
  void DecDynRefCount();

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Blob"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

  // What a file says of the blob at some place, without its content.
  struct TSpan {
    qint32 iId = ENoInt;
    qint64 iLen = -1; // bytes of the whole object; -1 when it cannot be
  };
  // Reads the span of the blob at aPos past the buffer of aFile; throws what Internalize would throw for
  // another object.
  [[nodiscard]] static TSpan SpanAt(CVelumFile& aFile, qint64 aPos);

  // The marks that tell what a save still has to do, so that a failed save can put them back.
  struct TMarks {
    bool iOnFile;
    bool iChanged;
    bool iCountFell;
  };
  [[nodiscard]] TMarks Marks() const { return {iOnFile, iChanged, iCountFell}; }
  void SetMarks(const TMarks& aMarks);

private:
  friend class CVelumReplay; // raw access for changes

  void ReadDescription(CVelumFile& aFile, int aGen);

  qint32 iId = ENoInt;
  qint32 iBlobType = 0;
  QString iName;
  QString iFilename;
  double iCreDate = 0;
  double iCreTime = 0;
  double iFileDate = 0;
  double iFileTime = 0;
  QString iMimeType;
  qint32 iOriginalId = ENoInt;
  qint32 iSampleId = ENoInt;
  qint16 iWidth = ENoShort;
  qint16 iHeight = ENoShort;
  bool iOnFile = false;
  bool iChanged = true;
  bool iCountFell = false;
  bool iInfoOnly = false;
  QByteArray iBytes;
  qint32 iAge = 0;
  qint32 iRefCount = 0;
  qint32 iDynRefCount = 0;
};
