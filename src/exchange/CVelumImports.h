// The import of CSV files.
#pragma once

#include "exchange/CVelumCsvColumns.h"
#include "exchange/CVelumCsvReports.h"
#include "model/CVelumStackHost.h"
#include "persist/CVelumViewState.h"

// What the user chose for an import.
struct TCsvOptions {
  QChar iDelim = u','; // neither a blank nor a quote
  qint32 iCoding = ECodLatin1;
  bool iHeaderLine = true;
  bool iDetectTypes = true;
  bool iGuessKey = true;
  bool iTryCardName = true;
  // Types that the user wants for columns, in place of those that are detected.
  std::array<std::optional<qint32>, CVelumCsvRows::EMaxItems> iTypes = {};
  qint32 iMaxRows = CVelumCsvRows::EAllRows; // further rows are left out
  bool iDrop = false; // a quote that is never closed does not keep cards from being replaced
};

// Faulty: something in the file cannot come in whole, and nothing has come in.
enum class ECsvOutcome { Done, Empty, Cancelled, Faulty };

// A stack that an import has made, with the persistent part of its view; both nothing where it has not.
struct TNewStack {
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};

namespace CVelumImports {

// Makes a stack of a CSV file: a background with a field for each item of the first row, at most 20, of which
// equal ones get a number, and a card for each further row. Its name is the path of the file. Nothing else is
// touched: whatever goes wrong, aNew stays as it is. Host errors carry the line; the other failures are those
// of CVelumFile. aReport gets what was found and done.
[[nodiscard]] ECsvOutcome ImportCsv1(const QString& aFilename, const TCsvOptions& aOptions,
                                     CVelumImportWatch& aWatch, TNewStack& aNew,
                                     TCsvReport* aReport = nullptr);

// Replaces the cards of a background of aHost's stack by those of a CSV file. No card goes before the whole
// file has been read and made into cards: up to then a failure, or a cancel, leaves the stack as it was.
// Faulty for a quote that is never closed.
[[nodiscard]] ECsvOutcome ImportCsv1(const QString& aFilename, const TCsvOptions& aOptions,
                                     CVelumImportWatch& aWatch, const Ref<CVelumControlSet>& aBackground,
                                     CVelumStackHost& aHost, TCsvReport* aReport = nullptr);
// The card that follows the last one of a background in the order of its stack; nothing when there is none.
[[nodiscard]] Ref<CVelumCard> FindNextCard(const CVelumStack& aStack, qint32 aBackgroundId);

} // namespace CVelumImports
