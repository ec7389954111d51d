// The import of a CSV file that changes nothing silently: what the file holds, what would become of it, and
// the import itself.
#pragma once

#include "exchange/CVelumCsvCheck.h"
#include "exchange/CVelumCsvMaker.h"
#include "exchange/CVelumCsvSource.h"
#include "exchange/CVelumImports.h"

// How a file is to be read; what is left open is found out.
struct TCsvReading {
  std::optional<QChar> iDelim;
  bool iHeaderLine = true;
  qint64 iSkipLines = 0;
};

// Looks through the whole file in steps, before anything is made of it: reading, types, and a check of the
// types that were chosen. Host errors of a step are those of CVelumCsvSource.
class CVelumCsvExact {
public:
  // aBackground, if any, is the one into which the cards are to go; it stays as it is until Into. The source
  // may have been used up to its end before.
  CVelumCsvExact(std::shared_ptr<CVelumCsvSource> aSource, const TCsvReading& aReading, TCsvChoice aChoice,
                 Ref<CVelumControlSet> aBackground = {});

  // Does a part of the work; false when all is known.
  [[nodiscard]] bool Step();
  // How much is done, of aAll.
  [[nodiscard]] int Progress(int aAll) const;
  // Takes all steps; false if cancelled. The progress runs up to aTo.
  [[nodiscard]] bool Finish(int aTo, CVelumImportWatch& aWatch);

  // The rest counts when all is known.
  [[nodiscard]] bool IsEmpty() const { return iScan->NumColumns() == 0; }
  [[nodiscard]] const TCsvLayout& Layout() const { return iLayout; }
  [[nodiscard]] const CVelumCsvSource& Source() const { return *iSource; }
  [[nodiscard]] const CVelumCsvScan& Scan() const { return *iScan; }
  [[nodiscard]] const std::vector<TCsvPlanColumn>& Plan() const { return iPlan; }
  [[nodiscard]] const CVelumCsvCheck& Check() const { return *iCheck; }
  // Other choices about the same file. What is known of the file stays known.
  void Choose(TCsvChoice aChoice, Ref<CVelumControlSet> aBackground);
  // Takes what a choice says of names, of the order and of what is dropped. Its types and fields count no
  // more when all is known.
  void Decide(TCsvChoice aChoice);
  // What cannot come in whole; it keeps the import from happening unless the choice says to drop it.
  [[nodiscard]] const CVelumCsvFaults& Faults() const { return iFaults; }

  // The cards, with the progress from aFrom to aTo. Both take all steps that are left. Nothing but aNew, or
  // the background's cards, changes; and these only where the outcome is Done. With Faulty, Faults says why.
  [[nodiscard]] ECsvOutcome IntoNew(CVelumImportWatch& aWatch, TNewStack& aNew);
  [[nodiscard]] ECsvOutcome Into(CVelumImportWatch& aWatch, CVelumStackHost& aHost);
  // What came of it.
  [[nodiscard]] const TCsvReport& Report() const { return iReport; }
  // The field by which the cards could be kept sorted; ENoInt: none.
  [[nodiscard]] qint32 SortField() const { return iSortField; }
  // Keeps the cards of a background sorted by a field.
  static void KeepSorted(CVelumStack& aStack, const Ref<CVelumControlSet>& aBackground, qint32 aField);

private:
  enum class EState : quint8 { Source, Scan, Check, Known };

  void BeginScan();
  void BeginCheck();
  void EndCheck();
  [[nodiscard]] std::optional<ECsvOutcome> Prepare(CVelumImportWatch& aWatch);
  void MakeFields(CVelumStack& aStack, CVelumControlSet& aBackground);
  [[nodiscard]] bool MakeCards(const Ref<CVelumControlSet>& aBackground, qint32 aFirstNumber,
                               CVelumImportWatch& aWatch, CVelumNewCards& aCards);
  void ProposeKey(const CVelumCsvMaker& aMaker, const CVelumControlSet& aBackground);
  void BeginReport();
  void NoteColumns();
  void NoteBytes();
  void NoteColumn(int aColumn, qint32 aType);
  void NoteOf(const QString& aWhat, int aColumn);
  void NoteNames(const CVelumControlSet& aBackground);
  void NoteOutside(const CVelumControlSet& aBackground);

  std::shared_ptr<CVelumCsvSource> iSource;
  TCsvReading iReading;
  TCsvChoice iChoice;
  Ref<CVelumControlSet> iBackground;
  EState iState = EState::Source;
  TCsvLayout iLayout;
  std::unique_ptr<CVelumCsvScan> iScan;
  std::vector<TCsvPlanColumn> iPlan;
  std::unique_ptr<CVelumCsvCheck> iCheck;
  CVelumCsvFaults iFaults;
  TCsvReport iReport;
  QList<std::pair<QString, QStringList>> iColumnNotes; // what is said of columns, and their names
  qint32 iSortField = ENoInt;
};
