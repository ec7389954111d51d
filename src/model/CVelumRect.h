// A small persistent rectangle, for saved window places.
#pragma once

#include "core/CVelumObject.h"

// Position and size in twips.
class CVelumRect final : public CVelumStored {
public:
  CVelumRect() = default;
  CVelumRect(float aX, float aY, float aWidth, float aHeight);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumRect"_s; }
  [[nodiscard]] float X() const { return iX; }
  [[nodiscard]] float Y() const { return iY; }
  [[nodiscard]] float Width() const { return iWidth; }
  [[nodiscard]] float Height() const { return iHeight; }
  void SetX(float aX);
  void SetY(float aY);
  void SetWidth(float aWidth);
  void SetHeight(float aHeight);
  // True if all four numbers are 0.
  [[nodiscard]] bool IsNull() const;
  [[nodiscard]] bool Changed() const override { return iChanged; }
  void SetChanged(bool aChanged) override { iChanged = aChanged; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Rect"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  float iX = 0;
  float iY = 0;
  float iWidth = 0;
  float iHeight = 0;
  bool iChanged = true;
};
