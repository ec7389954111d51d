// The persistent part of the stack view: what a stack file holds of its windows.
#pragma once

#include "model/CVelumRect.h"

// Stored as the object of type 4. A null rectangle stays null here; the view replaces it when it opens.
class CVelumViewState final : public CVelumStored {
public:
  CVelumViewState();
  explicit CVelumViewState(QString aName);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumStackView name="_s + iName; }
  QString iName;
  bool iCardViewOpen = true;
  Ref<CVelumRect> iCardViewRect;
  bool iCardListOpen = true;
  Ref<CVelumRect> iCardListRect;

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"StackView"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;
};
