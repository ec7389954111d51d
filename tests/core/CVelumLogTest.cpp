#include "core/CVelumLog.h"
#include "core/CVelumError.h"
#include "support/TestTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList gHeard;

// Takes what is logged while it lives, with aRules for the categories.
class CListener {
public:
  explicit CListener(const QString& aRules) {
    gHeard.clear();
    QLoggingCategory::setFilterRules(aRules);
    iBefore = qInstallMessageHandler([](QtMsgType, const QMessageLogContext& aContext, const QString& aText) {
      gHeard.append(QString::fromLatin1(aContext.category) + u": "_s + aText);
    });
  }
  ~CListener() {
    qInstallMessageHandler(iBefore);
    QLoggingCategory::setFilterRules({});
  }
  CListener(const CListener&) = delete;
  CListener& operator=(const CListener&) = delete;

private:
  QtMessageHandler iBefore = nullptr;
};

void CatchOne() {
  try {
    CVelumError::RaiseHost(EHostOverflow, u"too much"_s);
  } catch (...) {
    CVelumError::CatchError(u"Proc"_s);
  }
}

TEST(CVelumLog, IsSilentUnlessSwitchedOn) {
  const CListener listener({});
  CatchOne();
  EXPECT_EQ(gHeard, QStringList{});
}

TEST(CVelumLog, TellsWhatWasCaughtAndWhere) {
  const CListener listener(u"orvelles.core.debug=true"_s);
  CatchOne();
  ASSERT_EQ(gHeard.size(), 1);
  EXPECT_TRUE(gHeard.front().startsWith(u"orvelles.core: \"Proc\" caught 6 "))
      << gHeard.front().toStdString();
  EXPECT_TRUE(gHeard.front().contains(u"too much"));
}

// A room without a message of its own could as well have no category.
TEST(CVelumLog, EachRoomHasACategoryThatItUses) {
  const QDir sources(TestTree::Source() + u"/src"_s);
  for (const QString& room : sources.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    if (room == u"app") continue; // nothing but the start of the program
    const QString use = u"qCDebug(gLog"_s + room.at(0).toUpper() + room.mid(1) + u')';
    bool found = false;
    for (QDirIterator it(sources.filePath(room), {u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
         !found && it.hasNext();) {
      QFile file(it.next());
      ASSERT_TRUE(file.open(QIODevice::ReadOnly));
      found = QString::fromUtf8(file.readAll()).contains(use);
    }
    EXPECT_TRUE(found) << use.toStdString();
  }
}

} // namespace
