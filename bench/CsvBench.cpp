// Import of a CSV file in both ways, beside the import of the sqlite3 program into a typed table with an
// index; and export, beside what that program writes of the same table.
#include "Bench.h"

#include "exchange/CVelumCsvExact.h"
#include "exchange/CVelumCsvProposal.h"
#include "exchange/CVelumCsvSample.h"
#include "exchange/CVelumExports.h"
#include "exchange/CVelumImports.h"
#include "exchange/CVelumPlainExport.h"
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

// Processor time in which the sqlite3 program writes the table that it imported last.
double SqliteExport() {
  const QString out = Bench::TempPath(QStringLiteral("sqlite.csv"));
  const double cpu =
      Bench::Cost([&] {
        QProcess sqlite;
        sqlite.setStandardOutputFile(out);
        sqlite.start(QStringLiteral("sqlite3"), {QStringLiteral("-csv"), QStringLiteral("-header"),
                                                 Database(), QStringLiteral("select * from t")});
        if (!sqlite.waitForFinished(-1) || sqlite.exitCode() != 0) qFatal("sqlite3");
      }).Cpu();
  QFile::remove(out);
  return cpu;
}

double SqliteImport(const QString& aCsv) {
  QFile::remove(Database());
  return Bench::Cost([&] {
           QProcess sqlite;
           sqlite.start(QStringLiteral("sqlite3"), {Database()});
           sqlite.write(
               "create table t(name text,size integer,count integer,price real,weight real,born text,"
               "changed text,city text,note text,code text);create index i on t(name);\n.mode csv\n"
               ".import --skip 1 " +
               aCsv.toUtf8() + " t\n");
           sqlite.closeWriteChannel();
           if (!sqlite.waitForFinished(-1) || sqlite.exitCode() != 0) qFatal("sqlite3");
         })
      .Cpu();
}

// Peak memory of this process in bytes.
double PeakBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

TNewStack Made(const QString& aCsv, bool aExact) {
  CVelumImportWatch watch;
  TNewStack made;
  const ECsvOutcome outcome =
      aExact ? CVelumCsvExact(std::make_shared<CVelumCsvSource>(aCsv), {}, {}).IntoNew(watch, made)
             : CVelumImports::ImportCsv1(aCsv, {}, watch, made);
  if (outcome != ECsvOutcome::Done) qFatal("import");
  return made;
}

double ExportCpu(const CVelumStack& aStack, bool aExact) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (!aStack.GetFirstBackground(background, index)) qFatal("background");
  const QString out = Bench::TempPath(QStringLiteral("ours.csv"));
  const double cpu = Bench::Cost([&] {
                       const bool done = aExact ? CVelumPlainExport::Write(out, *background)
                                                : CVelumExports::ExportCsv(out, *background);
                       if (!done) qFatal("export");
                     }).Cpu();
  QFile::remove(out);
  return cpu;
}

// Processor time of the import and of the save behind it, the peak, and processor time of the export.
QList<double> Import(const QString& aCsv, bool aExact) {
  const double before = PeakBytes();
  TNewStack made;
  const Bench::TCost import = Bench::Cost([&] { made = Made(aCsv, aExact); });
  const double peak = PeakBytes() - before;
  const Bench::TCost save = Bench::Cost([&] {
    CVelumStackFile(Bench::TempPath(QStringLiteral("csv.Orvelle"))).SaveStack(made.iStack, made.iView);
  });
  return {import.Cpu(), save.Cpu(), peak, ExportCpu(*made.iStack, aExact)};
}

// Returns the processor time of import and save.
double Measure(qint32 aRows, bool aExact) {
  const QString csv = Bench::TempPath(QStringLiteral("bench.csv"));
  WriteCsv(csv, aRows);
  double sqlite = 1e9;
  double sqliteExport = 1e9;
  for (int i = 0; i < ERuns; ++i) {
    sqlite = qMin(sqlite, SqliteImport(csv));
    sqliteExport = qMin(sqliteExport, SqliteExport());
  }
  const QList<double> ours = Bench::MedianInChildren(ERuns, [&] { return Import(csv, aExact); });
  const double whole = ours[0] + ours[1];
  Bench::Row({QString::number(aRows), aExact ? QStringLiteral("exact") : QStringLiteral("classic"),
              Bench::Ms(sqlite), Bench::Ms(ours[0]), Bench::Ms(ours[1]), Bench::Ratio(whole, sqlite),
              QString::number(qRound(ours[2] / aRows)), Bench::Ms(sqliteExport), Bench::Ms(ours[3]),
              Bench::Ratio(ours[3], sqliteExport)});
  QFile::remove(Database());
  QFile::remove(csv);
  return whole;
}

void MeasureWays(const QList<qint32>& aCounts) {
  Bench::Head({QStringLiteral("rows"), QStringLiteral("way"), QStringLiteral("sqlite3, CPU"),
               QStringLiteral("import, CPU"), QStringLiteral("save, CPU"), QStringLiteral("both to sqlite3"),
               QStringLiteral("peak bytes a row"), QStringLiteral("sqlite3 -csv, CPU"),
               QStringLiteral("export, CPU"), QStringLiteral("to sqlite3")});
  for (const bool exact : {true, false}) {
    double before = 0;
    for (const qint32 rows : aCounts) {
      const double cpu = Measure(rows, exact);
      if (before > 0) std::printf("CPU of the line before to this one: %.3f\n", before / cpu);
      before = cpu;
    }
  }
}

// Half of the columns are whole numbers, the others short texts.
void WriteWide(const QString& aPath, qint32 aRows, int aColumns) {
  QFile file(aPath);
  if (!file.open(QIODevice::WriteOnly)) qFatal("open");
  for (qint32 row = -1; row < aRows; ++row) {
    QByteArray line;
    for (int i = 0; i < aColumns; ++i) {
      if (i > 0) line += ',';
      if (row < 0 || i % 2 == 0) line += 'c';
      line += QByteArray::number(row < 0 ? i : (row * 31 + i * 17) % 10000);
    }
    file.write(line + '\n');
  }
}

void MeasureWide() {
  constexpr qint32 rows = 100000;
  constexpr int columns = 100;
  constexpr double megabyte = 1e6;
  const QString csv = Bench::TempPath(QStringLiteral("wide.csv"));
  WriteWide(csv, rows, columns);
  const QList<double> ours = Bench::InChild([&]() -> QList<double> {
    const double before = PeakBytes();
    TNewStack made;
    const Bench::TCost cost = Bench::Cost([&] { made = Made(csv, true); });
    return {cost.Cpu(), PeakBytes() - before, static_cast<double>(Bench::HeapBytes())};
  });
  std::printf("\n%d rows of %d columns, exact: %s CPU, peak %.0f MB, then %.0f MB of heap\n", rows, columns,
              qPrintable(Bench::Ms(ours[0])), ours[1] / megabyte, ours[2] / megabyte);
  QFile::remove(csv);
}

// What a window does before it shows the first records of a file.
void MeasureBeginning() {
  const QString csv = Bench::TempPath(QStringLiteral("long.csv"));
  WriteCsv(csv, 3500000);
  const double size = static_cast<double>(QFile(csv).size());
  const double seconds = Bench::Seconds(ERuns, [&] {
    const auto begin = CVelumCsvSamples::Begin(csv);
    const TCsvLayout layout{CVelumCsvSamples::ProposeDelim(begin->Text(), 0)};
    if (CVelumCsvSamples::Take(begin->Text(), layout, begin->HasZero()).iRecords.isEmpty()) qFatal("sample");
    if (CVelumImports::ProposeCsv(csv, false).iLines.isEmpty()) qFatal("lines");
  });
  std::printf("first records of %.0f MB: %s\n", size / 1e6, qPrintable(Bench::Ms(seconds)));
  QFile::remove(csv);
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  CVelumExports::InitExports();
  MeasureWays(Bench::Counts(aArgc, aArgv));
  MeasureWide();
  MeasureBeginning();
  return 0;
}
