// The way through the records that shows which cells do not come back from the types that they are to have.
#pragma once

#include "exchange/CVelumCsvPlan.h"
#include "exchange/CVelumCsvReports.h"

// Works in steps; with nothing to check it is done at once. The text and the plan must outlive it.
class CVelumCsvCheck {
public:
  CVelumCsvCheck(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero,
                 const std::vector<TCsvPlanColumn>& aPlan);

  // Does a part of the work; false when all is done.
  [[nodiscard]] bool Step();
  [[nodiscard]] int Progress(int aAll) const;

  // Cells of a column, so far, whose values give another text, and cells that are no value of the type.
  [[nodiscard]] qint64 NumChanged(int aColumn) const {
    return iCounts[static_cast<size_t>(aColumn)].iChanged;
  }
  [[nodiscard]] qint64 NumRefused(int aColumn) const {
    return iCounts[static_cast<size_t>(aColumn)].iRefused;
  }
  [[nodiscard]] qint64 AllChanged() const { return iAllChanged; }
  [[nodiscard]] const CVelumCsvFaults& Faults() const { return iFaults; }
  // The first ones of them.
  [[nodiscard]] const std::vector<TCsvReportCell>& Cells() const { return iCells; }

private:
  struct TCount {
    qint64 iChanged = 0;
    qint64 iRefused = 0;
  };

  void TakeCell(int aColumn, std::string_view aText);

  std::string_view iText;
  const std::vector<TCsvPlanColumn>& iPlan;
  CVelumCsvTable iTable;
  std::vector<int> iColumns; // those that are to be checked
  std::vector<TCount> iCounts;
  qint64 iAllChanged = 0;
  CVelumCsvFaults iFaults;
  std::vector<TCsvReportCell> iCells;
};
