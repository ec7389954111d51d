#include "support/TempFolder.h"

#include <QFile>
#include <gtest/gtest.h>

TempFolder::TempFolder() {
  EXPECT_TRUE(iDir.isValid()) << iDir.errorString().toStdString();
}

QString TempFolder::Write(const QString& aName, const QByteArray& aBytes) const {
  QFile file(Path(aName));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << file.errorString().toStdString();
  EXPECT_EQ(file.write(aBytes), aBytes.size());
  return file.fileName();
}

QByteArray TempFolder::Read(const QString& aName) const {
  QFile file(Path(aName));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.errorString().toStdString();
  return file.readAll();
}

bool TempFolder::Has(const QString& aName) const {
  return QFile::exists(Path(aName));
}
