// The way through the records of a CSV file that makes cards of them.
#pragma once

#include "core/text/CVelumTextPool.h"
#include "exchange/CVelumCsvPlan.h"
#include "exchange/CVelumImportWatch.h"
#include "exchange/CVelumNewCards.h"

#include <array>

// The background's fields are those of the plan; cells without a field, and cells that are no value of its
// type, are left out. Nothing touches a stack here.
class CVelumCsvMaker {
public:
  struct TInput {
    std::string_view iText;
    TCsvLayout iLayout;
    bool iHasZero = false;
    const std::vector<TCsvPlanColumn>* iPlan = nullptr;
    std::optional<int> iNameColumn; // nothing: numbers
    qint64 iRecords = 0;
    qint32 iFirstNumber = 1;
  };

  CVelumCsvMaker(TInput aInput, const Ref<CVelumControlSet>& aBackground);

  // The progress runs from aFrom to aTo. False if cancelled.
  [[nodiscard]] bool Make(int aFrom, int aTo, CVelumImportWatch& aWatch, CVelumNewCards& aCards);
  // Whether the records stand in ascending order of a column, without a gap, and not all are equal.
  [[nodiscard]] bool IsAscending(int aColumn) const;

private:
  static constexpr size_t ECached = 32;

  // A text that came lately, to be shared by the cells that repeat it.
  struct TCached {
    std::string_view iBytes;
    QString iText;
  };
  struct TColumn {
    const TCsvPlanColumn* iPlan = nullptr;
    CVelumControl* iField = nullptr;
    std::vector<TCached> iCache;
    TVelumValue iLast;
    bool iOrdered = true;
    bool iRising = false;
  };

  [[nodiscard]] Ref<CVelumCard> CardOf(CVelumCsvTable& aTable, qint64 aNumber);
  [[nodiscard]] bool ValueOf(TColumn& aColumn, std::string_view aText, TVelumValue& aValue);
  [[nodiscard]] QString TextOf(TColumn& aColumn, std::string_view aText);
  [[nodiscard]] QString NewText(std::string_view aText);
  static void CheckOrder(TColumn& aColumn, const TVelumValue& aValue);
  [[nodiscard]] QString NameOf(CVelumCsvTable& aTable, qint64 aNumber);

  TInput iInput;
  Ref<CVelumControlSet> iBackground;
  std::vector<TColumn> iColumns;
  std::optional<size_t> iNaming; // column whose value is the name
  std::vector<TVelumElem> iElems;
  CVelumTextPool iTexts;
};
