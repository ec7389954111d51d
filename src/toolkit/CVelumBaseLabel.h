// A passive text.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class QLabel;

class CVelumBaseLabel final : public CVelumBaseControl {
public:
  CVelumBaseLabel(const QString& aName, QWidget* aParent);
  [[nodiscard]] QString Text() const override;
  // Plain text; "&" and markup stand for themselves.
  void SetText(const QString& aText) override;

private:
  QLabel* iLabel;
};
