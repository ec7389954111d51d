// The pictures of the sample stack: charts that are drawn here, pixel by pixel.
#pragma once

#include "SampleData.h"
#include "SampleLayout.h"

namespace SampleCharts {

// A card with a chart for each continent: its countries with the most people, the longest bar the largest.
// Throws when a picture could not be taken into the stack.
void AddTo(CVelumStack& aStack, const TChartLayout& aLayout, const QList<TCountry>& aCountries);
// A light pattern behind the cards of a background.
void AddWallPaper(CVelumStack& aStack, CVelumControlSet& aBackground);

} // namespace SampleCharts
