// Import of a CSV file, beside the import of the sqlite3 program into a typed table with an index; and
// export, beside what that program writes of the same table.
#include "Bench.h"

#include "exchange/CVelumExports.h"
#include "exchange/CVelumImports.h"
#include "persist/CVelumStackFile.h"

#include <QFile>
#include <QProcess>
#include <cstdio>
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

QString Database() {
  return Bench::TempPath(QStringLiteral("csv.db"));
}

// Seconds in which the sqlite3 program writes the table that it imported last.
double SqliteExportSeconds() {
  const QString out = Bench::TempPath(QStringLiteral("sqlite.csv"));
  const double seconds = Bench::Seconds(1, [&] {
    QProcess sqlite;
    sqlite.setStandardOutputFile(out);
    sqlite.start(QStringLiteral("sqlite3"), {QStringLiteral("-csv"), QStringLiteral("-header"), Database(),
                                             QStringLiteral("select * from t")});
    if (!sqlite.waitForFinished(-1) || sqlite.exitCode() != 0) qFatal("sqlite3");
  });
  QFile::remove(out);
  return seconds;
}

double SqliteSeconds(const QString& aCsv) {
  const QString database = Database();
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

double ExportSeconds(const CVelumStack& aStack) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (!aStack.GetFirstBackground(background, index)) qFatal("background");
  const QString out = Bench::TempPath(QStringLiteral("ours.csv"));
  const double seconds =
      Bench::Seconds(1, [&] { static_cast<void>(CVelumExports::ExportCsv(out, *background)); });
  QFile::remove(out);
  return seconds;
}

// Seconds of the import, and of the save behind it, the peak, seconds of the export, and processor time of
// import and save.
QList<double> Import(const QString& aCsv) {
  const double before = PeakBytes();
  CVelumImportWatch watch;
  TNewStack made;
  const Bench::TCost import =
      Bench::Cost([&] { static_cast<void>(CVelumImports::ImportCsv1(aCsv, {}, watch, made)); });
  const double peak = PeakBytes() - before;
  const Bench::TCost save = Bench::Cost([&] {
    CVelumStackFile(Bench::TempPath(QStringLiteral("csv.Orvelle"))).SaveStack(made.iStack, made.iView);
  });
  return {import.iWall, save.iWall, peak, ExportSeconds(*made.iStack), import.Cpu() + save.Cpu()};
}

// Returns the processor time of import and save.
double Measure(qint32 aRows) {
  const QString csv = Bench::TempPath(QStringLiteral("bench.csv"));
  WriteCsv(csv, aRows);
  double sqlite = 1e9;
  double sqliteExport = 1e9;
  for (int i = 0; i < ERuns; ++i) {
    sqlite = qMin(sqlite, SqliteSeconds(csv));
    sqliteExport = qMin(sqliteExport, SqliteExportSeconds());
  }
  const QList<double> ours = Bench::MedianInChildren(ERuns, [&] { return Import(csv); });
  Bench::Row({QString::number(aRows), Bench::Ms(sqlite), Bench::Ms(ours[0]), Bench::Ratio(ours[0], sqlite),
              Bench::Ms(ours[1]), QString::number(qRound(ours[2] / aRows)), Bench::Ms(sqliteExport),
              Bench::Ms(ours[3]), Bench::Ratio(ours[3], sqliteExport), Bench::Ms(ours[4])});
  QFile::remove(Database());
  QFile::remove(csv);
  return ours[4];
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  CVelumExports::InitExports();
  Bench::Head({QStringLiteral("rows"), QStringLiteral("sqlite3"), QStringLiteral("import"),
               QStringLiteral("to sqlite3"), QStringLiteral("save"), QStringLiteral("peak bytes a row"),
               QStringLiteral("sqlite3 -csv"), QStringLiteral("export"), QStringLiteral("to sqlite3"),
               QStringLiteral("import and save, CPU")});
  double before = 0;
  for (const qint32 rows : Bench::Counts(aArgc, aArgv)) {
    const double cpu = Measure(rows);
    if (before > 0) std::printf("CPU of the line before to this one: %.3f\n", before / cpu);
    before = cpu;
  }
  return 0;
}
