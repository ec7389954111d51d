// Import of a CSV file, beside the import of the sqlite3 program into a typed table with an index.
#include "Bench.h"

#include "exchange/CVelumImports.h"
#include "persist/CVelumStackFile.h"

#include <QFile>
#include <QProcess>
#include <sys/resource.h>

namespace {

constexpr int ERuns = 3;

// Ten columns: a name, whole numbers, reals, dates and texts. The names rise, as guessing a key demands.
void WriteCsv(const QString& aPath, qint32 aRows) {
  QFile file(aPath);
  if (!file.open(QIODevice::WriteOnly)) qFatal("open");
  file.write("name,size,count,price,weight,born,changed,city,note,code\n");
  quint32 random = 12345;
  const auto next = [&random](quint32 aBelow) {
    random = random * 1664525U + 1013904223U;
    return (random >> 8) % aBelow;
  };
  static const char* const cities[] = {"Lyon", "Bergen", "San Diego", "Odense", "Kyoto", "Graz"};
  for (qint32 row = 0; row < aRows; ++row) {
    char line[256];
    const int len = snprintf(line, sizeof line,
                             "Name%07d,%u,%u,%u.%02u,%u.%04u,%u/%u/%u,%04u-%02u-%02u,%s,note of row %d,c%u\n",
                             row, next(100000), next(32000), next(10000), next(100), next(100), next(10000),
                             next(12) + 1, next(28) + 1, 1950 + next(70), 1990 + next(30), next(12) + 1,
                             next(28) + 1, cities[next(6)], row, next(1000000));
    file.write(line, len);
  }
}

double SqliteSeconds(const QString& aCsv) {
  const QString database = Bench::TempPath(QStringLiteral("csv.db"));
  return Bench::Seconds(
      1,
      [&] {
        QProcess sqlite;
        sqlite.start(QStringLiteral("sqlite3"), {database});
        sqlite.write("create table t(name text,size integer,count integer,price real,weight real,born text,"
                     "changed text,city text,note text,code text);create index i on t(name);\n.mode csv\n"
                     ".import --skip 1 " +
                     aCsv.toUtf8() + " t\n");
        sqlite.closeWriteChannel();
        if (!sqlite.waitForFinished(-1) || sqlite.exitCode() != 0) qFatal("sqlite3");
      },
      [&] { QFile::remove(database); });
}

// Peak memory of this process in bytes.
double PeakBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

// Seconds of the import, and of the save behind it, and the peak.
QList<double> Import(const QString& aCsv) {
  const double before = PeakBytes();
  CVelumImportWatch watch;
  TNewStack made;
  const double import =
      Bench::Seconds(1, [&] { static_cast<void>(CVelumImports::ImportCsv1(aCsv, {}, watch, made)); });
  const double peak = PeakBytes() - before;
  const double save = Bench::Seconds(1, [&] {
    CVelumStackFile(Bench::TempPath(QStringLiteral("csv.Orvelle"))).SaveStack(made.iStack, made.iView);
  });
  return {import, save, peak};
}

void Measure(qint32 aRows) {
  const QString csv = Bench::TempPath(QStringLiteral("bench.csv"));
  WriteCsv(csv, aRows);
  double sqlite = 1e9;
  for (int i = 0; i < ERuns; ++i) sqlite = qMin(sqlite, SqliteSeconds(csv));
  const QList<double> ours = Bench::MedianInChildren(ERuns, [&] { return Import(csv); });
  Bench::Row({QString::number(aRows), Bench::Ms(sqlite), Bench::Ms(ours[0]),
              Bench::Ratio(ours[0], sqlite), Bench::Ms(ours[1]), QString::number(qRound(ours[2] / aRows))});
  QFile::remove(csv);
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({QStringLiteral("rows"), QStringLiteral("sqlite3"), QStringLiteral("import"),
               QStringLiteral("to sqlite3"), QStringLiteral("save"), QStringLiteral("peak bytes a row")});
  for (const qint32 rows : Bench::Counts(aArgc, aArgv)) Measure(rows);
  return 0;
}
