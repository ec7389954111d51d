// What the window of the exports hands over to the window of the CSV settings when it opens that.
#pragma once

#include "model/fields/CVelumControlSet.h"

#include <functional>

struct TVelumCsvExport {
  // The background whose cards are to be exported, as it is chosen at the moment; nothing where none is.
  std::function<Ref<CVelumControlSet>()> iBackground = [] { return Ref<CVelumControlSet>(); };
  // The file is written: whoever opened the window closes, and takes it along.
  std::function<void()> iDone = [] {};
};

// "CVelumCsvExportOptions"
class CVelumCsvExporter {
public:
  virtual ~CVelumCsvExporter() = default;
  // To be called before the window is shown; without it there is nothing to export.
  virtual void SetExport(const TVelumCsvExport& aExport) = 0;
};
