#include "exchange/CVelumFieldNames.h"

#include "core/CVelumObject.h"

#include <QHash>
#include <QSet>

namespace {

// Gives numbers to names that are there already.
class CNumbering {
public:
  explicit CNumbering(const QStringList& aNames) : iTaken(aNames.begin(), aNames.end()) {}

  QString Number(const QString& aName) {
    qint32& number = iLast[aName];
    number = qMax(number, 1);
    QString name;
    do name = aName + u' ' + QString::number(++number);
    while (iTaken.contains(name));
    iTaken.insert(name);
    return name;
  }
  QString OfPlace(qsizetype aPlace) {
    const QString name = u"Field "_s + QString::number(aPlace);
    if (iTaken.contains(name)) return Number(name);
    iTaken.insert(name);
    return name;
  }

private:
  QSet<QString> iTaken;
  QHash<QString, qint32> iLast;
};

} // namespace

QStringList CVelumImports::NumberEqualNames(const QStringList& aNames) {
  CNumbering numbering(aNames);
  QSet<QString> seen;
  QStringList names;
  for (qsizetype i = 0; i < aNames.size(); ++i) {
    const QString& name = aNames.at(i);
    const bool first = !seen.contains(name);
    seen.insert(name);
    if (first)
      names.append(name);
    else
      names.append(name.isEmpty() ? numbering.OfPlace(i + 1) : numbering.Number(name));
  }
  return names;
}
