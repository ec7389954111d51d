// The file that an import reads, wherever it comes from.
#pragma once

#include <QString>

#include <memory>

class CVelumTerminal;
class QTemporaryDir;

// An operand "-" is standard input. That and a pipe can be read only once and have no size, so they are
// copied to a temporary file first; messages of aTerminal name them by what they are.
class CVelumCliInput {
public:
  // Bytes that are taken from a stream.
  static constexpr qint64 EMaxBytes = qint64{1} << 31;

  // Throws TVelumRefusal for a device, and for more than EMaxBytes.
  CVelumCliInput(const QString& aOperand, CVelumTerminal& aTerminal);
  ~CVelumCliInput();
  CVelumCliInput(const CVelumCliInput&) = delete;
  CVelumCliInput& operator=(const CVelumCliInput&) = delete;

  // What is to be read.
  [[nodiscard]] const QString& Path() const { return iPath; }
  // What the user calls it.
  [[nodiscard]] const QString& Name() const { return iName; }
  // Whether it was copied.
  [[nodiscard]] bool IsStream() const { return static_cast<bool>(iFolder); }

private:
  void Copy(int aFd);

  std::unique_ptr<QTemporaryDir> iFolder;
  QString iPath;
  QString iName;
};
