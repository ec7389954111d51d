#include "exchange/CVelumCsvPlan.h"

#include "core/CVelumFieldTypes.h"
#include "exchange/CVelumFieldNames.h"

#include <QSet>

namespace {

// Gives columns the fields of a background, each at most once.
class CMatching {
public:
  explicit CMatching(const CVelumControlSet& aBackground) {
    for (qint32 i = 0; i < aBackground.NumControls(); ++i)
      if (const CVelumControl* control = aBackground.ControlAt(i);
          control && CVelumCsvPlans::IsUsable(*control))
        iFields.append(control);
  }

  const CVelumControl* ById(qint32 aId) {
    return Take([aId](const CVelumControl& aField) { return aField.Id() == aId; });
  }
  const CVelumControl* ByName(const QString& aName) {
    return Take([&aName](const CVelumControl& aField) { return aField.Name() == aName; });
  }
  const CVelumControl* Next() {
    return Take([](const CVelumControl&) { return true; });
  }

private:
  template <class TTest> const CVelumControl* Take(const TTest& aTest) {
    for (const CVelumControl* field : iFields) {
      if (iTaken.contains(field) || !aTest(*field)) continue;
      iTaken.insert(field);
      return field;
    }
    return nullptr;
  }

  QList<const CVelumControl*> iFields;
  QSet<const CVelumControl*> iTaken;
};

QStringList NamesOf(const CVelumCsvScan& aScan) {
  QStringList names = aScan.Header();
  while (names.size() < aScan.NumColumns()) names.append(QString());
  for (qsizetype i = 0; i < names.size(); ++i)
    if (names.at(i).isEmpty()) names[i] = u"Field "_s + QString::number(i + 1);
  return CVelumImports::NumberEqualNames(names);
}

void TakeField(const CVelumControl& aField, const CVelumCsvColumn& aColumn, TCsvPlanColumn& aPlan) {
  aPlan.iField = aField.Id();
  aPlan.iForm = aColumn.FormFor(aField.ConType());
  const bool text = CVelumFieldTypes::Of(aField.ConType()).iValType == EValStr;
  aPlan.iChecked = !text && !(aPlan.iForm == aColumn.Found());
  aPlan.iQuotedEmpty = text && !aField.DefaultVal().isEmpty();
}

// Fields that were named by hand come first, then those of the same name, and no field goes twice.
void MatchFields(const CVelumCsvScan& aScan, const TCsvChoice& aChoice, const CVelumControlSet& aBackground,
                 std::vector<TCsvPlanColumn>& aPlan) {
  CMatching matching(aBackground);
  const auto match = [&](const auto& aFind) {
    for (int i = 0; i < aScan.NumColumns(); ++i) {
      TCsvPlanColumn& column = aPlan[static_cast<size_t>(i)];
      if (column.iField != ENoInt) continue;
      if (const CVelumControl* field = aFind(i, column)) TakeField(*field, aScan.Column(i), column);
    }
  };
  const auto byHand = [&](int aColumn) { return aChoice.iFields.contains(aColumn); };
  match([&](int aColumn, const TCsvPlanColumn&) {
    return byHand(aColumn) ? matching.ById(aChoice.iFields.value(aColumn)) : nullptr;
  });
  if (aScan.Header().isEmpty())
    return match(
        [&](int aColumn, const TCsvPlanColumn&) { return byHand(aColumn) ? nullptr : matching.Next(); });
  match([&](int aColumn, const TCsvPlanColumn& aPlanned) {
    return byHand(aColumn) ? nullptr : matching.ByName(aPlanned.iHeader);
  });
  match([&](int aColumn, const TCsvPlanColumn& aPlanned) {
    return byHand(aColumn) ? nullptr : matching.ByName(aPlanned.iName);
  });
}

void TakeTypes(const CVelumCsvScan& aScan, const TCsvChoice& aChoice, std::vector<TCsvPlanColumn>& aPlan) {
  for (int i = 0; i < aScan.NumColumns(); ++i) {
    TCsvPlanColumn& column = aPlan[static_cast<size_t>(i)];
    const TCsvForm found = aScan.Column(i).Found();
    if (aChoice.iTypes.contains(i)) {
      column.iForm = aScan.Column(i).FormFor(aChoice.iTypes.value(i));
      column.iChecked = column.iForm.iType != EConText && !(column.iForm == found);
    } else if (aChoice.iDetectTypes) {
      column.iForm = found;
    }
  }
}

} // namespace

bool CVelumCsvPlans::IsUsable(const CVelumControl& aControl) {
  return aControl.ConType() != EConCommand && aControl.ConType() != EConPicture &&
         !aControl.Flag(EConCardList);
}

std::vector<TCsvPlanColumn> CVelumCsvPlans::Make(const CVelumCsvScan& aScan, const TCsvChoice& aChoice,
                                                 const CVelumControlSet* aBackground) {
  std::vector<TCsvPlanColumn> plan(static_cast<size_t>(aScan.NumColumns()));
  const QStringList names = NamesOf(aScan);
  for (int i = 0; i < aScan.NumColumns(); ++i) {
    plan[static_cast<size_t>(i)].iName = names.at(i);
    plan[static_cast<size_t>(i)].iHeader = aScan.Header().value(i);
  }
  if (aBackground)
    MatchFields(aScan, aChoice, *aBackground, plan);
  else
    TakeTypes(aScan, aChoice, plan);
  return plan;
}

CVelumCsvFaults CVelumCsvPlans::Fieldless(const CVelumCsvScan& aScan,
                                          const std::vector<TCsvPlanColumn>& aPlan) {
  CVelumCsvFaults faults;
  for (int i = 0; i < aScan.NumColumns(); ++i) {
    const TCsvPlanColumn& column = aPlan[static_cast<size_t>(i)];
    if (column.iField == ENoInt && aScan.Column(i).NumFilled() > 0)
      faults.Note(ECsvFault::NoField, aScan.FirstLine(), i + 1, column.iName.toStdString());
  }
  return faults;
}

std::optional<int> CVelumCsvPlans::NameColumn(const CVelumCsvScan& aScan, const TCsvChoice& aChoice) {
  if (aScan.NumColumns() == 0 || aChoice.iNaming == ECsvNaming::Numbers) return {};
  if (aChoice.iNaming == ECsvNaming::First) return aScan.FirstNames() ? std::optional(0) : std::nullopt;
  return aChoice.iNameColumn < aScan.NumColumns() ? std::optional(aChoice.iNameColumn) : std::nullopt;
}
