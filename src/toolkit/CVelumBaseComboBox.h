// A combo box whose text can be typed.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class QComboBox;

class CVelumBaseComboBox final : public CVelumBaseControl {
public:
  CVelumBaseComboBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // Height that the box wants in its font, in twips.
  [[nodiscard]] float NaturalHeight() const;
  [[nodiscard]] int ListCount() const;
  [[nodiscard]] QString Text() const override;
  void SetText(const QString& aText) override;
  void SetMaxChar(qint16 aMax) override;
  void Clear() override;

private:
  QComboBox* iCombo;
  int iMaxChar = EffMaxChar(ENoShort);
};
