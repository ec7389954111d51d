// Where a command writes a file, be it one of the streams.
#pragma once

#include <QString>

#include <memory>

class CVelumTerminal;
class QTemporaryDir;

// An operand "-" is standard output, as are the names that the system has for it. What goes there or into a
// pipe is written to a temporary file, and handed on when it is whole.
class CVelumCliOutput {
public:
  CVelumCliOutput(const QString& aOperand, CVelumTerminal& aTerminal);
  ~CVelumCliOutput();
  CVelumCliOutput(const CVelumCliOutput&) = delete;
  CVelumCliOutput& operator=(const CVelumCliOutput&) = delete;

  // Whether an operand names standard output.
  [[nodiscard]] static bool IsStandard(const QString& aOperand);
  // Whether it names that or a pipe.
  [[nodiscard]] static bool IsStream(const QString& aOperand);

  // What is to be written.
  [[nodiscard]] const QString& Path() const { return iPath; }
  // Hands on what was written to Path. Raises.
  void Finish();

private:
  CVelumTerminal& iTerminal;
  std::unique_ptr<QTemporaryDir> iFolder;
  QString iOperand;
  QString iPath;
};
