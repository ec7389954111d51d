// A thin horizontal line.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class CVelumBaseLine final : public CVelumBaseControl {
public:
  CVelumBaseLine(const QString& aName, QWidget* aParent);
  // From (aX1, aY) to (aX2, aY), in twips.
  void SetEnds(float aX1, float aX2, float aY);
};
