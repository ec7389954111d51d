// Hands out the ids of backgrounds, controls, sort keys, key indexes and blobs.
#pragma once

#include "core/CVelumError.h"
#include "model/change/TDocAddress.h"

// One id space for a stack; ids are never reused.
class CVelumIdGen final : public CVelumStored {
public:
  [[nodiscard]] QString ObjDescr() const override { return u"CVelumIdGen"_s; }
  [[nodiscard]] TDocAddress Address() const { return {EDocIdGen, ENoInt}; }
  // The next id; host error 6 when they are used up.
  [[nodiscard]] qint32 NextId();
  [[nodiscard]] qint32 PeekId() const { return iNextId; }
  [[nodiscard]] bool Changed() const override { return iChanged; }
  void SetChanged(bool aChanged) override { iChanged = aChanged; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"IdGen"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  friend class CVelumReplay; // raw access for changes

  qint32 iNextId = 0;
  bool iChanged = true;
};
