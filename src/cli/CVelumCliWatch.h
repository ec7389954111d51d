// Imports as the terminal follows them.
#pragma once

#include "exchange/CVelumImportWatch.h"

class CVelumTerminal;

// A message that comes once a line is counted, and told once at the end.
class CVelumCliWatch final : public CVelumImportWatch {
public:
  explicit CVelumCliWatch(CVelumTerminal& aTerminal) : iTerminal(aTerminal) {}
  // Tells what has been counted.
  ~CVelumCliWatch() override;

  void Message(qint32 aMsg, const QString& aP0) override;
  void Unclosed(qint32 aLineNum) override;
  [[nodiscard]] bool Progress(int aDone) override;

private:
  CVelumTerminal& iTerminal;
  int iTooManyItems = 0;
  QString iFirstPlace; // of the first of them
};
