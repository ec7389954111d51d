// A partial font definition.
#pragma once

#include "core/array/CVelumArray.h"

enum EFnt : qint32 { EFntBold = 1, EFntItalic = 2, EFntUnderline = 4 };

// Each attribute can be left unset, so that the levels stack, background, card and control each state only
// what differs.
class CVelumFont final : public CVelumStored {
public:
  CVelumFont() = default;
  // aSize in twentieths of a point (ENoShort unset), aForeColor 0xBBGGRR (ENoInt unset).
  CVelumFont(QString aFaceName, qint16 aSize, qint32 aForeColor);

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] const QString& FaceName() const { return iFaceName; }
  [[nodiscard]] qint16 Size() const { return iSize; }
  [[nodiscard]] qint32 ForeColor() const { return iForeColor; }
  void SetForeColor(qint32 aColor);
  [[nodiscard]] qint32 Flags() const { return iFlags; }
  void SetFlags(qint32 aFlags);
  [[nodiscard]] bool Changed() const override { return iChanged; }
  void SetChanged(bool aChanged) override { iChanged = aChanged; }

  // Overlays aFont (or nothing): each attribute that it sets replaces this font's; flags as a whole.
  void AddFont(const CVelumFont* aFont);
  // Fills what is unset: Arial, 220, colour 0.
  void SetDefaults();
  // Size / 20; unset gives 31999.
  [[nodiscard]] float PointSize() const;
  // Text of that number; unset gives the empty text.
  [[nodiscard]] QString PointSizeStr() const;
  // Points used on the desktop: the phone's default size 220 is 8 points unless aExact.
  [[nodiscard]] float HostPointSize(bool aExact) const;
  [[nodiscard]] QString FaceNameWithFlags() const;

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Font"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  QString iFaceName;
  qint16 iSize = ENoShort;
  bool iChanged = true;
  qint32 iForeColor = ENoInt;
  qint32 iFlags = 0;
};
