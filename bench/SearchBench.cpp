// Search through a whole stack, beside SQLite's LIKE '%text%' over all columns of the same values.
#include "Bench.h"
#include "BenchStack.h"

#include "core/CVelumValue.h"
#include "model/lists/CVelumSearch.h"
#include "persist/CVelumStackFile.h"

#include <QFile>
#include <sqlite3.h>

namespace {

class Database {
public:
  explicit Database(const QString& aPath) {
    QFile::remove(aPath);
    if (sqlite3_open(QFile::encodeName(aPath).constData(), &iDb) != SQLITE_OK) qFatal("open");
  }
  ~Database() { sqlite3_close(iDb); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // The number in the first column of the first row; 0 without one.
  qint32 Run(const QByteArray& aSql) {
    sqlite3_stmt* statement = Prepare(aSql);
    const qint32 num = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int(statement, 0) : 0;
    sqlite3_finalize(statement);
    return num;
  }
  // All values as texts, which spares the database turning them into texts for each LIKE.
  void Fill(const CVelumStack& aStack) {
    Run("create table cards (c0,c1,c2,c3,c4,c5,c6,c7,c8,c9,c10)");
    Run("begin");
    sqlite3_stmt* insert = Prepare("insert into cards values (?,?,?,?,?,?,?,?,?,?,?)");
    Ref<CVelumCard> card;
    for (qint32 i = 0; aStack.GetNextCard(card, i);) {
      Bind(insert, 1, card->Name());
      for (qint32 c = 0; c < EColumns - 1; ++c)
        Bind(insert, c + 2,
             c < card->Value().Count() ? CVelumValue::ValToIntText(card->Value().ValRef(c)) : QString());
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    Run("commit");
  }
  [[nodiscard]] qint32 CountLike(const QByteArray& aText) {
    QByteArray where;
    for (int c = 0; c < EColumns; ++c)
      where += (c ? " or c" : "c") + QByteArray::number(c) + " like '%" + aText + "%'";
    return Run("select count(*) from cards where " + where);
  }

private:
  static constexpr int EColumns = 11;

  sqlite3_stmt* Prepare(const QByteArray& aSql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(iDb, aSql.constData(), -1, &statement, nullptr) != SQLITE_OK)
      qFatal("%s", sqlite3_errmsg(iDb));
    return statement;
  }
  static void Bind(sqlite3_stmt* aStatement, int aColumn, const QString& aText) {
    const QByteArray utf8 = aText.toUtf8();
    sqlite3_bind_text(aStatement, aColumn, utf8.constData(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
  }

  sqlite3* iDb = nullptr;
};

qint32 CountHits(CVelumStack& aStack, const QString& aText) {
  CVelumSearch search(aStack, aText);
  TVelumSearchHit hit;
  qint32 hits = 0;
  while (search.Next(hit)) ++hits;
  return hits;
}

void Write(BenchStack::EKind aKind, qint32 aCount, const QString& aPath) {
  BenchStack stack(aKind);
  stack.AddBulk(stack.Names(aCount));
  stack.Stack()->SetFlag(EStaBinary, true);
  CVelumStackFile(aPath).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
}

// For each text: seconds and hits of ours in the loaded stack, seconds and hits of the database.
QList<double> Search(const QString& aPath, const QList<QString>& aTexts) {
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  CVelumStackFile(aPath).LoadStack(stack, view);
  Database database(Bench::TempPath(u"search.sqlite"_s));
  database.Fill(*stack);
  QList<double> figures;
  for (const QString& text : aTexts) {
    qint32 hits = 0;
    figures.append(Bench::Seconds(5, [&] { hits = CountHits(*stack, text); }));
    figures.append(hits);
    figures.append(Bench::Seconds(5, [&] { hits = database.CountLike(text.toUtf8()); }));
    figures.append(hits);
  }
  return figures;
}

void Measure(BenchStack::EKind aKind, qint32 aCount) {
  const QList<QString> texts{u"qzxjvk"_s, u"e"_s, u"9999999"_s, u"47"_s};
  const QString path = Bench::TempPath(u"search.Orvelle"_s);
  QFile::remove(path);
  static_cast<void>(Bench::InChild([&] {
    Write(aKind, aCount, path);
    return QList<double>{};
  }));
  const QList<double> figures = Bench::InChild([&] { return Search(path, texts); });
  QFile::remove(path);
  for (qsizetype i = 0; i < texts.size(); ++i) {
    const double* of = figures.constData() + 4 * i;
    Bench::Row({BenchStack::KindName(aKind), QString::number(aCount), texts.at(i), Bench::Ms(of[0]),
                QString::number(of[1]), Bench::Ms(of[2]), QString::number(of[3]),
                Bench::Ratio(of[0], of[2])});
  }
  QFile::remove(Bench::TempPath(u"search.sqlite"_s));
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({u"stack"_s, u"cards"_s, u"text"_s, u"search"_s, u"cards found"_s, u"SQLite LIKE"_s,
               u"rows found"_s, u"ratio"_s});
  for (const auto kind : {BenchStack::EPlain, BenchStack::ELists})
    for (const qint32 count : Bench::Counts(aArgc, aArgv)) Measure(kind, count);
  return 0;
}
