// What becomes of the columns of a CSV file: names, types, fields.
#pragma once

#include "exchange/CVelumCsvScan.h"
#include "model/fields/CVelumControlSet.h"

#include <QHash>
#include <optional>

// By what cards are named. First: by the first column, if it is suitable.
enum class ECsvNaming : quint8 { First, Column, Numbers };

// What the user chooses about the cards.
struct TCsvChoice {
  bool iDetectTypes = true;  // otherwise all columns are texts that no type was chosen for
  QHash<int, qint32> iTypes; // by column, of a field
  ECsvNaming iNaming = ECsvNaming::First;
  int iNameColumn = 0;
  bool iProposeKey = true;
  bool iDrop = false; // import all the same what cannot come in whole
  // For a background that is there:
  bool iAdd = false;          // its cards stay
  QHash<int, qint32> iFields; // id of the field by column, ENoInt for none; else that of the same name
};

struct TCsvPlanColumn {
  QString iName;
  QString iHeader; // as it stands in the file
  TCsvForm iForm;
  bool iChecked = false;     // the type need not fit all cells
  qint32 iField = ENoInt;    // id, in a background that is there
  bool iQuotedEmpty = false; // an empty text in quotes is a value of its own
};

namespace CVelumCsvPlans {

// Without aBackground each column gets a field of its own, else those of the same name; without a header line
// those of the same place. Commands, pictures and computed lists take nothing.
[[nodiscard]] std::vector<TCsvPlanColumn> Make(const CVelumCsvScan& aScan, const TCsvChoice& aChoice,
                                               const CVelumControlSet* aBackground);
// Whether the values of a field can be set.
[[nodiscard]] bool IsUsable(const CVelumControl& aControl);
// Columns with cells that have no field.
[[nodiscard]] CVelumCsvFaults Fieldless(const CVelumCsvScan& aScan, const std::vector<TCsvPlanColumn>& aPlan);
// The column that names the cards; nothing: numbers do.
[[nodiscard]] std::optional<int> NameColumn(const CVelumCsvScan& aScan, const TCsvChoice& aChoice);

} // namespace CVelumCsvPlans
