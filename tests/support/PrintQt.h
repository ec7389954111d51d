// Lets failed expectations show Qt texts in clear.
#pragma once

#include <QByteArray>
#include <QString>
#include <ostream>

inline void PrintTo(const QString& aText, std::ostream* aOut) {
  *aOut << '"' << aText.toUtf8().toStdString() << '"';
}
inline void PrintTo(const QByteArray& aBytes, std::ostream* aOut) {
  *aOut << '"' << aBytes.toPercentEncoding().toStdString() << '"';
}
