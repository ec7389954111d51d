#include "SampleData.h"

#include "core/CVelumConst.h"
#include "core/CVelumObject.h"

#include <QFile>
#include <stdexcept>

namespace {

// The lines of a file; those with "#" in front are comments.
QStringList Lines(const QString& aPath) {
  QFile file(aPath);
  if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("cannot read " + aPath.toStdString());
  QStringList lines;
  for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n'))
    if (!line.startsWith(u'#')) lines.append(line);
  return lines;
}

// The lines of a file that are not empty, each cut into aCount parts.
QList<QStringList> Rows(const QString& aPath, qsizetype aCount) {
  QList<QStringList> rows;
  for (const QString& line : Lines(aPath)) {
    if (line.isEmpty()) continue;
    const QStringList row = line.split(u'|');
    if (row.size() != aCount) throw std::runtime_error("wrong number of parts: " + line.toStdString());
    rows.append(row);
  }
  return rows;
}

double Number(const QString& aText) {
  bool ok = false;
  const double number = aText.toDouble(&ok);
  if (!ok) throw std::runtime_error("not a number: " + aText.toStdString());
  return number;
}

qint32 Day(const QString& aText) {
  return aText == u"-"_s ? ENoInt : static_cast<qint32>(Number(aText));
}

// "+5:30" as minutes.
int Minutes(const QString& aText) {
  const QStringList parts = aText.mid(1).split(u':');
  const int minutes = static_cast<int>(Number(parts.value(0)) * 60 + Number(parts.value(1)));
  return aText.startsWith(u'-') ? -minutes : minutes;
}

} // namespace

QList<TCountry> SampleData::Countries(const QString& aFolder) {
  QList<TCountry> all;
  for (const QStringList& r : Rows(aFolder + u"/countries.txt"_s, 9))
    all.append(
        {r[0], r[1], r[2], Number(r[3]), Number(r[4]), Day(r[5]), Minutes(r[6]), r[7] == u"L"_s, r[8]});
  return all;
}

QList<TMountain> SampleData::Mountains(const QString& aFolder) {
  QList<TMountain> all;
  for (const QStringList& r : Rows(aFolder + u"/mountains.txt"_s, 6))
    all.append({r[0], static_cast<qint32>(Number(r[1])), r[2], r[3], Day(r[4]), r[5]});
  return all;
}

QList<TRiver> SampleData::Rivers(const QString& aFolder) {
  QList<TRiver> all;
  for (const QStringList& r : Rows(aFolder + u"/rivers.txt"_s, 5))
    all.append({r[0], static_cast<qint32>(Number(r[1])), r[2], r[3], r[4]});
  return all;
}

QList<TPage> SampleData::Guide(const QString& aFolder) {
  const QString head = u"== "_s;
  QList<TPage> pages;
  for (const QString& line : Lines(aFolder + u"/guide.txt"_s)) {
    if (line.startsWith(head))
      pages.append({line.sliced(head.size()), QString()});
    else if (!pages.isEmpty())
      pages.last().iText += line + u'\n';
  }
  for (TPage& page : pages) page.iText = page.iText.trimmed().replace(u'\n', u"\r\n"_s);
  return pages;
}
