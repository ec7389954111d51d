#include "exchange/CVelumTextImport.h"

#include "exchange/ContentStack.h"
#include "support/Assertions.h"
#include "support/Raised.h"

#include <QFile>
#include <sys/stat.h>

namespace {

class CVelumTextImportTest : public ContentStack {
protected:
  // Imports into the second background and tells its cards.
  QStringList Import(const QByteArray& aBytes) {
    EXPECT_TRUE(CVelumImports::ImportTextFile(iFolder.Write(u"in.txt"_s, aBytes), iSecond, iHost));
    return Cards(*iStack);
  }
  static QByteArray Lines(int aFrom, int aTo) {
    QByteArray lines;
    for (int i = aFrom; i <= aTo; ++i) lines += QByteArray::number(i) + "\r\n";
    return lines;
  }
  // The same as the text of a card.
  static QString Text(int aFrom, int aTo) { return QString::fromLatin1(Lines(aFrom, aTo).chopped(2)); }

  CVelumPlainStackHost iHost{iStack};
};

TEST_F(CVelumTextImportTest, FiftyLinesToACard) {
  EXPECT_EQ(Import(Lines(1, 51)), (QStringList{u"Second|1|Text="_s + Text(1, 50), u"Second|2|Text=51"_s}));
}

TEST_F(CVelumTextImportTest, FullCardsAreFollowedByAnEmptyOne) {
  EXPECT_EQ(Import(Lines(1, 100)), (QStringList{u"Second|1|Text="_s + Text(1, 50),
                                                u"Second|2|Text="_s + Text(51, 100), u"Second|3|Text="_s}));
  EXPECT_EQ(Import(Lines(1, 49)), QStringList{u"Second|1|Text="_s + Text(1, 49)});
}

TEST_F(CVelumTextImportTest, AnEmptyFileGivesAnEmptyCard) {
  EXPECT_EQ(Import({}), QStringList{u"Second|1|Text="_s});
}

TEST_F(CVelumTextImportTest, EmptyLinesAndTheLastLineWithoutAnEndCount) {
  EXPECT_EQ(Import("\r\n\r\nx"), QStringList{u"Second|1|Text=\r\n\r\nx"_s});
}

TEST_F(CVelumTextImportTest, LinesEndAsTheFirstOneDoes) {
  EXPECT_EQ(Import("a\nb\n"), QStringList{u"Second|1|Text=a\r\nb"_s});
  EXPECT_EQ(Import("a\rb\r"), QStringList{u"Second|1|Text=a\r\nb"_s});
  EXPECT_EQ(Import("a\r\nb\nc"), QStringList{u"Second|1|Text=a\r\nb\nc"_s});
}

TEST_F(CVelumTextImportTest, TheCodingIsLatin1UnlessAMarkSaysOtherwise) {
  EXPECT_EQ(Import("\xE9\x80"), QStringList{u"Second|1|Text="_s + QString::fromUtf8("é€")});
  EXPECT_EQ(Import("\xEF\xBB\xBF\xC3\xA9"), QStringList{u"Second|1|Text="_s + QString::fromUtf8("é")});
}

TEST_F(CVelumTextImportTest, ReplacesTheCardsOfItsBackgroundWhereTheyEnded) {
  AddCard(iFirst, u"before"_s);
  AddCard(iSecond, u"old 1"_s);
  AddCard(iSecond, u"old 2"_s);
  AddCard(iFirst, u"behind"_s);
  EXPECT_EQ(Import(Lines(1, 50)),
            (QStringList{u"First Background|before"_s, u"Second|1|Text="_s + Text(1, 50), u"Second|2|Text="_s,
                         u"First Background|behind"_s}));
}

TEST_F(CVelumTextImportTest, WithoutTheFieldNothingHappens) {
  auto other = MakeRef<CVelumControlSet>(u"Third"_s, iStack->IdGen().NextId());
  iStack->AddBackground(other);
  AddField(*iStack, other, u"Texts"_s, EConText);
  AddCard(other, u"old"_s);
  EXPECT_FALSE(CVelumImports::ImportTextFile(iFolder.Write(u"in.txt"_s, "x"), other, iHost));
  EXPECT_EQ(iPresenter.CountOf(EMsgControlMissing), 1);
  EXPECT_EQ(iPresenter.Shown().last().iClass, EMsgCritical);
  EXPECT_EQ(iPresenter.LastText(),
            u"A field with the name 'Text' could not be found in background 'Third', but "
            u"is needed for this operation."_s);
  EXPECT_EQ(Cards(*iStack), QStringList{u"Third|old"_s});
}

TEST_F(CVelumTextImportTest, AFailureLeavesTheOldCards) {
  AddCard(iSecond, u"old"_s);
  const QStringList before = Cards(*iStack);
  const auto import = [&](const QString& aPath) { CVelumImports::ImportTextFile(aPath, iSecond, iHost); };
  EXPECT_EQ(Raised([&] { import(iFolder.Path(u"none"_s)); }), EMsgFileNotFound);
  const QString tooLong = iFolder.Write(u"long.txt"_s, Lines(1, 60) + QByteArray(15001, 'x'));
  EXPECT_EQ(Raised([&] { import(tooLong); }), EHostOverflow);
  try {
    import(tooLong);
  } catch (const CVelumException& e) {
    EXPECT_TRUE(e.Descr().contains(u"from 51 on"_s)) << e.Descr().toStdString();
  }
  const TVelumStep stop = [](qint64, qint64) { return false; };
  EXPECT_FALSE(CVelumImports::ImportTextFile(iFolder.Write(u"in.txt"_s, "x"), iSecond, iHost, stop));
  EXPECT_EQ(Cards(*iStack), before);
}

TEST_F(CVelumTextImportTest, AFieldOfAnotherTypeIsToldBeforeAnythingGoes) {
  Ref<CVelumControl> text;
  ASSERT_TRUE(iSecond->GetControlByName(u"Text"_s, text));
  AddCard(iSecond, u"old"_s);
  text->SetConType(EConInteger);
  EXPECT_EQ(Assertions::Of([&] { Import("x"); }), "Assert|type");
  EXPECT_EQ(Cards(*iStack), QStringList{u"Second|old"_s});
}

TEST_F(CVelumTextImportTest, APipeIsNoFile) {
  const QString pipe = iFolder.Path(u"pipe"_s);
  ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  EXPECT_EQ(Raised([&] { CVelumImports::ImportTextFile(pipe, iSecond, iHost); }), EHostPermissionDenied);
}

} // namespace
