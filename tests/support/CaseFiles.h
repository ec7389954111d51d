// The cases of the folder data: a source or stack, and beside it what comes of it.
#pragma once

#include "support/TestTree.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace CaseFiles {

inline QString Folder(const char* aName) {
  return TestTree::Data() + QLatin1Char('/') + QString::fromLatin1(aName);
}

inline QByteArray Bytes(const QString& aPath) {
  QFile file(aPath);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aPath.toStdString();
  return file.readAll();
}

// What is expected of the case in aPath.
inline QJsonObject Expected(const QString& aPath) {
  return QJsonDocument::fromJson(Bytes(aPath + QStringLiteral(".expected.json"))).object();
}

// Names of the cases of a folder, with an ending such as "*.txt".
inline std::vector<std::string> Names(const char* aFolder, const QString& aPattern) {
  std::vector<std::string> names;
  for (const QString& name : QDir(Folder(aFolder)).entryList({aPattern}, QDir::Files, QDir::Name))
    names.push_back(name.toStdString());
  return names;
}

// A test's name from a file's name.
inline std::string TestName(const testing::TestParamInfo<std::string>& aInfo) {
  std::string name = aInfo.param.substr(0, aInfo.param.find('.'));
  for (char& c : name)
    if (!isalnum(static_cast<unsigned char>(c))) c = '_';
  return name;
}

} // namespace CaseFiles
