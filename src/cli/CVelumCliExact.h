// The exact import of a CSV file, as import-csv is asked for it.
#pragma once

#include "cli/CVelumCommand.h"
#include "exchange/CVelumImports.h"

namespace CVelumCliExact {

// A file into a new stack, or, with aBackground, into that one of aHost's stack. Names of columns and fields
// that are not there are a TVelumUsage. aReport gets what was found also where nothing came in.
[[nodiscard]] ECsvOutcome IntoNew(const QString& aPath, const TVelumArgs& aArgs, CVelumImportWatch& aWatch,
                                  TNewStack& aNew, TCsvReport& aReport);
[[nodiscard]] ECsvOutcome Into(const QString& aPath, const TVelumArgs& aArgs, CVelumImportWatch& aWatch,
                               const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost,
                               TCsvReport& aReport);

} // namespace CVelumCliExact
