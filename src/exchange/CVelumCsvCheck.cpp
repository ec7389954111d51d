#include "exchange/CVelumCsvCheck.h"

#include "exchange/CVelumCsvText.h"

namespace {

constexpr int ERecordsAStep = 8192;
constexpr size_t EBytesAStep = 1 << 20;

} // namespace

CVelumCsvCheck::CVelumCsvCheck(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero,
                               const std::vector<TCsvPlanColumn>& aPlan)
    : iText(aText), iPlan(aPlan), iTable(aText, aLayout, aHasZero, static_cast<int>(aPlan.size())),
      iCounts(aPlan.size()) {
  for (size_t i = 0; i < aPlan.size(); ++i)
    if (aPlan[i].iChecked) iColumns.push_back(static_cast<int>(i));
}

int CVelumCsvCheck::Progress(int aAll) const {
  return static_cast<int>(static_cast<double>(iTable.Pos()) / static_cast<double>(iText.size() + 1) * aAll);
}

bool CVelumCsvCheck::Step() {
  if (iColumns.empty()) return false;
  const size_t start = iTable.Pos();
  for (int i = 0; i < ERecordsAStep && iTable.Pos() - start < EBytesAStep; ++i) {
    if (!iTable.Next()) return false;
    for (const int column : iColumns)
      if (column < iTable.NumCells())
        if (const std::string_view text = iTable.Cell(column); !text.empty()) TakeCell(column, text);
  }
  return true;
}

void CVelumCsvCheck::TakeCell(int aColumn, std::string_view aText) {
  TVelumValue value;
  const ECsvFit fit = CVelumCsvForms::Read(aText, iPlan[static_cast<size_t>(aColumn)].iForm, value);
  if (fit == ECsvFit::Same) return;
  TCount& count = iCounts[static_cast<size_t>(aColumn)];
  const qint64 line = iTable.LineOf(aColumn);
  if (fit == ECsvFit::Refused) {
    ++count.iRefused;
    iFaults.Note(ECsvFault::NotOfType, line, aColumn + 1, aText);
  } else {
    ++count.iChanged;
    ++iAllChanged;
  }
  if (iCells.size() >= TCsvReport::EMaxCells) return;
  iCells.push_back({line, aColumn, CVelumCsvText::Wide(aText),
                    fit == ECsvFit::Refused ? QString() : CVelumCsvForms::PlainText(value)});
}
