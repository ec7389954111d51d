// A folder of a test's own, removed at its end.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

class TempFolder {
public:
  // Fails the running test when the folder could not be made.
  TempFolder();
  [[nodiscard]] QString Path() const { return iDir.path(); }
  // Path of a file in the folder.
  [[nodiscard]] QString Path(const QString& aName) const { return iDir.filePath(aName); }
  // Writes a whole file; returns its path.
  QString Write(const QString& aName, const QByteArray& aBytes) const;
  // The bytes of a file in the folder; fails the running test when it cannot be read.
  [[nodiscard]] QByteArray Read(const QString& aName) const;
  [[nodiscard]] bool Has(const QString& aName) const;

private:
  QTemporaryDir iDir;
};
