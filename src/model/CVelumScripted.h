// What stack, background, control and card share: name, id, flags, script, font, colour.
#pragma once

#include "core/array/CVelumArray.h"
#include "model/CVelumFont.h"
#include "model/change/TDocAddress.h"

// The common block. Setters mark the object changed and are recorded.
class CVelumScripted : public CVelumStored {
public:
  // How changes name this object.
  [[nodiscard]] virtual TDocAddress Address() const = 0;
  [[nodiscard]] const QString& Name() const { return iName; }
  virtual void SetName(const QString& aName);
  [[nodiscard]] qint32 Id() const { return iId; }
  void SetId(qint32 aId);
  [[nodiscard]] qint32 Flags() const { return iFlags; }
  virtual void SetFlags(qint32 aFlags);
  // True if any bit of aMask is set.
  [[nodiscard]] bool Flag(qint32 aMask) const { return (iFlags & aMask) != 0; }
  // For one-bit masks: with aOn false the mask is subtracted only if one of its bits is set.
  void SetFlag(qint32 aMask, bool aOn);
  [[nodiscard]] QString ScriptSource() const;
  void SetScriptSource(const QString& aSource);
  // Compiled handlers by name, or nothing.
  [[nodiscard]] Ref<CVelumArray> Script() const;
  void SetScript(const Ref<CVelumArray>& aScript);
  [[nodiscard]] qint16 ScriptCount() const;
  [[nodiscard]] Ref<CVelumFont> Font() const;
  void SetFont(const Ref<CVelumFont>& aFont);
  // 0xBBGGRR; ENoInt when unset.
  [[nodiscard]] qint32 BackColor() const { return iBackColor; }
  void SetBackColor(qint32 aColor);
  [[nodiscard]] bool OwnChanged() const { return iChanged; }

  // aFlags with the bits of aMask set, or with aMask subtracted if any of its bits is set.
  [[nodiscard]] static qint32 WithFlag(qint32 aFlags, qint32 aMask, bool aOn);

protected:
  // Frame and common block; returns the generation.
  int InternalizeCommon(CVelumFile& aFile, int aTypeId, int aMinGen, int aMaxGen);
  void ExternalizeCommon(CVelumFile& aFile, int aTypeId, int aGen);
  [[nodiscard]] qint64 ExtLenCommon() const;
  // The same in XML, where only script and font stand together: what the attributes promise ...
  struct TXmlExtras {
    bool iScript;
    bool iFont;
  };
  [[nodiscard]] static TXmlExtras ReadExtrasAttr(const CVelumXmlParser& aParser);
  // ... and the children.
  void ReadExtrasXml(CVelumXmlParser& aParser, TXmlExtras aExtras);
  void WriteExtrasAttr(CVelumXmlWriter& aWriter) const;
  void WriteExtrasXml(CVelumXmlWriter& aWriter) const;
  // Changed of the script and the font, and clearing both.
  [[nodiscard]] bool ExtrasChanged() const;
  void ClearExtrasChanged();

  // The order of the members leaves no gaps: cards come in hundreds of thousands.
  qint32 iId = ENoInt;
  QString iName;

private:
  friend class CVelumReplay; // raw access for changes

  // Rare on cards.
  struct TExtras {
    QString iScriptSource;
    Ref<CVelumArray> iScript;
    Ref<CVelumFont> iFont;
  };
  // Records and stores one of them; setting "none" on an object without extras makes none.
  template <class T> void StoreExtra(EMember aMember, T TExtras::*aSlot, const T& aNew);
  TExtras& Extras();
  std::unique_ptr<TExtras> iExtras;

protected:
  qint32 iFlags = 0;
  qint32 iBackColor = ENoInt;
  bool iChanged = true;
};
