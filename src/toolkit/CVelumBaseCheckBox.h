// A check box.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class QCheckBox;

// Click comes whenever the value becomes another, by the user or by SetValue.
class CVelumBaseCheckBox final : public CVelumBaseControl {
public:
  CVelumBaseCheckBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // 0 clear, 1 checked, 2 grey.
  [[nodiscard]] int Value() const;
  void SetValue(int aValue);
  [[nodiscard]] QString Text() const override;
  void SetText(const QString& aText) override;

private:
  QCheckBox* iBox;
};
