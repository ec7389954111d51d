#include "shell/help/CVelumHelpSearch.h"

#include <QEventLoop>
#include <QRegularExpression>
#include <QTimer>

namespace {

constexpr int EMaxResults = 200;
constexpr int EMaxWait = 5000; // milliseconds

// Each word in quotes, so that nothing in it is an operator of the query language; a star behind the last.
QString Terms(const QString& aText) {
  static const QRegularExpression between(u"[^\\w]+"_s, QRegularExpression::UseUnicodePropertiesOption);
  QStringList words = aText.split(between, Qt::SkipEmptyParts);
  for (QString& word : words) word = u'"' + word + u'"';
  return words.isEmpty() ? QString() : words.join(u' ') + u'*';
}

} // namespace

CVelumHelpSearch::CVelumHelpSearch(QHelpSearchEngine& aEngine) : iEngine(aEngine) {
  connect(&iEngine, &QHelpSearchEngine::searchingFinished, this, &CVelumHelpSearch::Finish);
  connect(&iEngine, &QHelpSearchEngine::indexingFinished, this, &CVelumHelpSearch::Start);
  iEngine.scheduleIndexDocumentation();
}

CVelumHelpSearch::~CVelumHelpSearch() {
  // An engine that goes while its thread is about to begin would take the ground from under it.
  if (!iRunning) return;
  QEventLoop loop;
  QTimer::singleShot(EMaxWait, &loop, &QEventLoop::quit);
  connect(&iEngine, &QHelpSearchEngine::searchingFinished, &loop, [&] {
    if (!iRunning) loop.quit();
  });
  iEngine.cancelSearching();
  loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void CVelumHelpSearch::Search(const QString& aText) {
  iTerms = Terms(aText);
  Start();
}

void CVelumHelpSearch::Start() {
  if (iTerms.isEmpty()) {
    Q_EMIT Found({});
  } else if (!iRunning) {
    iRunning = true;
    iEngine.search(iTerms);
  }
}

void CVelumHelpSearch::Finish(int aCount) {
  iRunning = false;
  // What was typed meanwhile is searched for now.
  if (iTerms != iEngine.searchInput())
    Start();
  else
    Q_EMIT Found(iEngine.searchResults(0, std::min(aCount, EMaxResults)));
}
