// The backgrounds of the sample stack: fields, buttons, fonts, colours.
#pragma once

#include "model/CVelumStack.h"

// Fills a stack with its backgrounds and keeps the fields' ids for those who set values.
struct TStartLayout {
  Ref<CVelumControlSet> iBackground;
  qint32 iText;
};

struct TCountryLayout {
  Ref<CVelumControlSet> iBackground;
  qint32 iCapital, iContinent, iPeople, iArea, iDensity, iFounded, iNoon, iLandlocked, iNotes;
};

struct TMountainLayout {
  Ref<CVelumControlSet> iBackground;
  qint32 iHeight, iRange, iCountries, iAscent, iNotes;
};

struct TRiverLayout {
  Ref<CVelumControlSet> iBackground;
  qint32 iLength, iMouth, iCountries, iNotes;
};

struct TChartLayout {
  Ref<CVelumControlSet> iBackground;
  qint32 iChart, iLegend;
};

namespace SampleLayout {

// Colours of the cards by continent; ENoInt for a name that is none.
[[nodiscard]] qint32 ContinentColor(const QString& aContinent);

[[nodiscard]] TStartLayout Start(CVelumStack& aStack);
[[nodiscard]] TStartLayout Workshop(CVelumStack& aStack);
[[nodiscard]] TStartLayout Guide(CVelumStack& aStack);
[[nodiscard]] TCountryLayout Countries(CVelumStack& aStack);
[[nodiscard]] TMountainLayout Mountains(CVelumStack& aStack);
[[nodiscard]] TRiverLayout Rivers(CVelumStack& aStack);
[[nodiscard]] TChartLayout Charts(CVelumStack& aStack);

// A button at the bottom of a background's cards that goes to a card.
void AddGoTo(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName, qint32 aCardId);
// The row of leafing buttons at the bottom; the stack's first card needs none that leads to it or before it.
void AddLeafing(CVelumStack& aStack, CVelumControlSet& aBackground, bool aWithFirst = true);
// Orders the cards of a background by a field of Integer type, highest first, and keeps them so.
void KeepSorted(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName, qint32 aControlId);
// A sort key for the user to sort by.
void AddSortKey(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName, qint32 aControlId,
                EWay aWay);

} // namespace SampleLayout
