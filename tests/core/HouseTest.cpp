// What holds for the sources as a whole: the rooms include only what they link, and names are given once.
#include "support/TestTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString TextOf(const QString& aFile) {
  QFile file(aFile);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aFile.toStdString();
  return QString::fromUtf8(file.readAll());
}

QDir Sources() {
  return QDir(TestTree::Source() + u"/src"_s);
}

// The files under src/ with one of the endings, by their paths from there.
QStringList Files(const QStringList& aPatterns) {
  QStringList files;
  for (QDirIterator it(Sources().path(), aPatterns, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
    files.append(Sources().relativeFilePath(it.next()));
  files.sort();
  return files;
}

// Room to the rooms that its files may include, itself among them.
using Rooms = QMap<QString, QSet<QString>>;

void AddRoom(Rooms& aRooms, const QString& aName, const QString& aLinks) {
  static const QRegularExpression link(u"orvelles_(\\w+)"_s);
  QSet<QString> may{aName};
  for (auto it = link.globalMatch(aLinks); it.hasNext();) {
    const QString below = it.next().captured(1);
    EXPECT_TRUE(aRooms.contains(below)) << aName.toStdString() << " links " << below.toStdString();
    may.unite(aRooms.value(below));
  }
  aRooms.insert(aName, may);
}

// As the list of the build says, which names each room after those that it links.
Rooms ReadRooms() {
  const QString list = TextOf(Sources().filePath(u"CMakeLists.txt"_s));
  static const QRegularExpression room(u"orvelles_room\\((\\w+) LINKS ([^)]*)\\)"_s);
  static const QRegularExpression program(
      u"target_link_libraries\\((orvelles(?:-cli)?) PRIVATE ([^)]*)\\)"_s);
  Rooms rooms;
  for (auto it = room.globalMatch(list); it.hasNext();) {
    const QRegularExpressionMatch match = it.next();
    AddRoom(rooms, match.captured(1), match.captured(2));
  }
  for (auto it = program.globalMatch(list); it.hasNext();) {
    const QRegularExpressionMatch match = it.next();
    AddRoom(rooms, match.captured(1) == u"orvelles" ? u"app"_s : u"cli"_s, match.captured(2));
  }
  return rooms;
}

TEST(HouseTest, ListsAllRooms) {
  const Rooms rooms = ReadRooms();
  EXPECT_EQ(rooms.keys(), Sources().entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name));
  EXPECT_EQ(rooms.value(u"core"_s), QSet<QString>{u"core"_s});
  EXPECT_FALSE(rooms.value(u"toolkit"_s).contains(u"model"_s));
  EXPECT_TRUE(rooms.value(u"app"_s).contains(u"core"_s));
}

TEST(HouseTest, IncludesOnlyRoomsThatAreLinked) {
  const Rooms rooms = ReadRooms();
  static const QRegularExpression include(u"#include \"(([^/\"]+)/[^\"]+)\""_s);
  int seen = 0;
  for (const QString& file : Files({u"*.h"_s, u"*.cpp"_s})) {
    const QString text = TextOf(Sources().filePath(file));
    for (auto it = include.globalMatch(text); it.hasNext(); ++seen) {
      const QRegularExpressionMatch match = it.next();
      EXPECT_TRUE(rooms.value(file.section(u'/', 0, 0)).contains(match.captured(2)))
          << file.toStdString() << " includes " << match.captured(1).toStdString();
    }
  }
  EXPECT_GT(seen, 100);
}

TEST(HouseTest, GivesEveryNameOfAFileOnce) {
  QHash<QString, QString> seen, folders;
  for (const QString& file : Files({u"*.h"_s, u"*.cpp"_s, u"*.ui"_s, u"*.qrc"_s})) {
    const QString name = file.section(u'/', -1), stem = name.section(u'.', 0, 0);
    EXPECT_FALSE(seen.contains(name)) << file.toStdString() << " and " << seen.value(name).toStdString();
    seen.insert(name, file);
    if (name.endsWith(u".ui")) continue; // beside its class lies in a folder of its own
    const QString folder = file.section(u'/', 0, -2);
    EXPECT_EQ(folders.value(stem, folder), folder) << file.toStdString() << ": its pair lies elsewhere";
    folders.insert(stem, folder);
  }
  EXPECT_GT(seen.size(), 100);
}

// Types of files that are not nested in others. A type of two meanings, in two rooms, links by chance.
TEST(HouseTest, GivesEveryNameOfATypeOnce) {
  static const QRegularExpression type(
      u"^(?:class|struct|enum(?: class)?) (\\w+)(?: final)?(?: :[^:;\n][^;\n]*)? \\{"_s,
      QRegularExpression::MultilineOption);
  QHash<QString, QString> seen;
  for (const QString& file : Files({u"*.h"_s, u"*.cpp"_s})) {
    const QString text = TextOf(Sources().filePath(file));
    for (auto it = type.globalMatch(text); it.hasNext();) {
      const QString name = it.next().captured(1);
      EXPECT_EQ(seen.value(name, file), file) << name.toStdString() << " is in " << file.toStdString();
      seen.insert(name, file);
    }
  }
  EXPECT_GT(seen.size(), 100);
}

// Without tr() a translator never sees a text. Calls that show one are known by their names.
TEST(HouseTest, ShowsOnlyTextsThatCanBeTranslated) {
  static const QRegularExpression shown(
      u"\\b(Tell|SetCaption|SetTitle|SetText|Define1Column|DefineColumnsList|setWindowTitle|setText|"
      u"setToolTip"
      "|setTitle|addAction|addItem|addButton|BrowseForFolder|f\\w+Dialog)\\((?:this, )?u\"[A-Z&(][^\"]*[a-z]"_s);
  for (const QString& file : Files({u"*.cpp"_s})) {
    static const QStringList rooms{u"shell"_s, u"runtime"_s, u"toolkit"_s};
    // Names what it takes pictures of, for nobody to read.
    if (!rooms.contains(file.section(u'/', 0, 0)) || file.endsWith(u"/CVelumPictures.cpp")) continue;
    const QRegularExpressionMatch found = shown.match(TextOf(Sources().filePath(file)));
    EXPECT_FALSE(found.hasMatch()) << file.toStdString() << ": " << found.captured().toStdString();
  }
}

} // namespace
