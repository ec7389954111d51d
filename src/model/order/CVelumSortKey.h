// An order of the cards of one background by up to six fields.
#pragma once

#include "core/array/CVelumArray.h"
#include "model/change/TDocAddress.h"

class CVelumCard;
class CVelumControlSet;

enum EWay : qint32 { EWayAscending = 0, EWayDescending = 1 };

struct TVelumKeyPart {
  qint32 iType = 0; // control type 0 to 5
  qint32 iControlId = ENoInt;
  qint32 iWay = EWayAscending;
  qint16 iLen = 0; // width of the part in the key string
  qint16 iPos = 0; // its offset there
};

// Turns a card into a key string and compares two such strings part by part. A key string has each part iLen
// wide, cut or filled with blanks, in upper case, then the card's id right-aligned in 10. A real that is too
// long loses digits at its end, never its exponent.
class CVelumSortKey final : public CVelumKeyOrder {
public:
  static constexpr int EMaxParts = 6;

  CVelumSortKey() = default;
  CVelumSortKey(qint32 aId, QString aName, qint32 aBackgroundId); // Contruct

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] qint32 Id() const override { return iId; }
  [[nodiscard]] TDocAddress Address() const { return {EDocSortKey, iId}; }
  [[nodiscard]] const QString& Name() const { return iName; }
  void SetName(const QString& aName);
  [[nodiscard]] qint32 BackgroundId() const { return iBackgroundId; }
  [[nodiscard]] const QString& StoredKey() const { return iStoredKey; }
  void SetStoredKey(const QString& aKey) { iStoredKey = aKey; }
  [[nodiscard]] qint32 NumKeyParts() const { return iNumKeyPart; }
  // A seventh part is host error 9.
  void AddKeyPart(qint32 aType, qint32 aControlId, qint32 aWay, qint16 aLen);
  [[nodiscard]] int Compare(const QString& aKey1, const QString& aKey2) const override;
  void Clear();
  // Whether keys can be built: the background, which may be null, has all fields of the parts.
  [[nodiscard]] bool CanBuild(const CVelumControlSet* aBackground) const;
  [[nodiscard]] QString BuildKey(CVelumCard& aCard) const;
  // The same into aKey, whose memory is used again.
  void BuildKey(CVelumCard& aCard, QString& aKey) const;
  // The field is of another type; a type that cannot be sorted leaves the parts as they are.
  void SetControlType(qint32 aControlId, qint32 aConType);
  [[nodiscard]] bool ControlOccurs(qint32 aId) const;
  [[nodiscard]] bool GetFirstKeyPart(TVelumKeyPart& aPart, qint32& aIndex) const;
  [[nodiscard]] bool GetNextKeyPart(TVelumKeyPart& aPart, qint32& aIndex) const;
  [[nodiscard]] bool Changed() const override { return iChanged; }
  void SetChanged(bool aChanged) override { iChanged = aChanged; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"SortKey"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  friend class CVelumReplay; // raw access for changes

  [[nodiscard]] QByteArray RecordedParts() const;
  void RecordParts(const QByteArray& aOld);
  [[nodiscard]] int ComparePart(const TVelumKeyPart& aPart, QStringView aA, QStringView aB) const;

  qint32 iId = ENoInt;
  QString iName;
  qint32 iBackgroundId = ENoInt;
  TVelumKeyPart iKeyPart[EMaxParts];
  qint32 iNumKeyPart = 0;
  QString iStoredKey;
  bool iChanged = true;
};
