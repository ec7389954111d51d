// What an import of a CSV file has found and done.
#pragma once

#include "exchange/CVelumCsvReports.h"
#include "model/fields/CVelumControlSet.h"
#include "toolkit/CVelumDialogForm.h"

#include <memory>

namespace Ui {
class CVelumCsvReport;
}

// Shows the report, the cells that changed or were left out, and offers to keep the cards sorted where they
// are in order.
class CVelumCsvReport final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumCsvReport();
  ~CVelumCsvReport() override;

  void Load() override;
  // Lets go of the background when it is deleted, or the stack closes.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  // The report of an import into a background of the open stack; aSortField is the field that it names as the
  // one by which the cards could be kept sorted, or ENoInt.
  static void Show(const TCsvReport& aReport, const Ref<CVelumControlSet>& aBackground, qint32 aSortField);

private:
  void SetReport(const TCsvReport& aReport, const Ref<CVelumControlSet>& aBackground, qint32 aSortField);
  void FillCells(const TCsvReport& aReport);
  void KeepSorted();

  std::unique_ptr<Ui::CVelumCsvReport> iUi;
  Ref<CVelumControlSet> iBackground;
  qint32 iSortField = ENoInt;
};
