#include "exchange/CVelumContentImport.h"

#include "exchange/ContentStack.h"
#include "support/Assertions.h"
#include "support/Raised.h"

#include <QFile>
#include <sys/stat.h>

namespace {

class CVelumContentImportTest : public ContentStack {
protected:
  // A whole document around aCards.
  static QByteArray Document(const QByteArray& aCards) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<orvelle version=\"1.0\">\r\n" + aCards +
           "\r\n</orvelle>\r\n";
  }
  static QByteArray Card(const QByteArray& aControls, const QByteArray& aBackground = "Second") {
    return "<card name=\"c\" background=\"" + aBackground + "\">" + aControls + "</card>";
  }
  void Import(const QByteArray& aBytes) {
    EXPECT_TRUE(CVelumImports::ImportXml(iFolder.Write(u"in.xml"_s, aBytes), *iStack));
  }
  // The text of the assertion that fails.
  std::string AssertOf(const QByteArray& aBytes) {
    return Assertions::Of([&] { Import(aBytes); });
  }
  // What is raised when every assertion is overruled; -1 for nothing.
  qint32 Overruled(const QByteArray& aBytes) {
    iPresenter.SetDefaultAnswer(true);
    const qint32 raised = Raised([&] { Import(aBytes); });
    iPresenter.SetDefaultAnswer(false);
    return raised;
  }
};

TEST_F(CVelumContentImportTest, ReadsWhatTheExportWrites) {
  const Ref<CVelumCard> card = AddCard(iFirst, u"Ada <&>"_s, u"a\r\nb \"c\" &eol; "_s + QString(200, u'x'));
  Set(card, u"Size"_s, TVelumValue::OfInt(70000));
  Set(card, u"Price"_s, TVelumValue::OfReal(1234.25));
  Set(card, u"Since"_s, TVelumValue::OfDate(46044));
  Set(card, u"Open"_s, TVelumValue::OfBoolean(true));
  AddCard(iSecond, u"Bob"_s, QString::fromUtf8("Я 😀"));
  const QString path = iFolder.Path(u"x.xml"_s);
  ASSERT_TRUE(CVelumExports::ExportXml(*iStack, path));
  const Ref<CVelumStack> other = MakeStack();
  EXPECT_TRUE(CVelumImports::ImportXml(path, *other));
  EXPECT_EQ(Cards(*other), Cards(*iStack));
  Ref<CVelumCard> found;
  EXPECT_TRUE(other->GetCard(u"Bob"_s, found)) << "the names are in the index";
}

TEST_F(CVelumContentImportTest, FieldsOfOneNameTakeTheirTextsInOrder) {
  AddField(*iStack, iSecond, u"Twin"_s, EConCommand);
  AddField(*iStack, iSecond, u"Twin"_s, EConText);
  AddField(*iStack, iSecond, u"Twin"_s, EConText);
  const Ref<CVelumCard> card = AddCard(iSecond, u"c"_s, u"x"_s);
  card->SetControlVal(iSecond->ControlAt(2)->Id(), TVelumValue::OfStr(u"one"_s));
  card->SetControlVal(iSecond->ControlAt(3)->Id(), TVelumValue::OfStr(u"two"_s));
  const QString path = iFolder.Path(u"x.xml"_s);
  ASSERT_TRUE(CVelumExports::ExportXml(*iStack, path));
  EXPECT_TRUE(CVelumImports::ImportXml(path, *iStack));
  EXPECT_TRUE(CVelumImports::ImportXml(path, *iStack)) << "each card anew";
  EXPECT_EQ(Cards(*iStack), QStringList(3, u"Second|c|Text=x|Twin=one|Twin=two"_s));
}

TEST_F(CVelumContentImportTest, MoreTextsThanFieldsOfANameAreAnAssertion) {
  const QByteArray twice = "<control name=\"Text\">y</control><control name=\"Text\">z</control>";
  EXPECT_EQ(AssertOf(Document(Card(twice))), "Assert|ImportXml control Text twice");
  EXPECT_EQ(Overruled(Document(Card(twice))), -1);
  EXPECT_EQ(Cards(*iStack).last(), u"Second|c|Text=z"_s);
}

TEST_F(CVelumContentImportTest, CardsGoBehindAllOthersWithoutDefaults) {
  Ref<CVelumControl> text;
  ASSERT_TRUE(iSecond->GetControlByName(u"Text"_s, text));
  text->SetDefaultVal(u"default"_s);
  AddCard(iSecond, u"old"_s, u"x"_s);
  Import(Document(Card({}) + Card("<control name=\"Text\">y</control>")));
  EXPECT_EQ(Cards(*iStack), (QStringList{u"Second|old|Text=x"_s, u"Second|c"_s, u"Second|c|Text=y"_s}));
}

TEST_F(CVelumContentImportTest, AnEmptyTextIsTheZeroOfTheType) {
  Import(Document(
      Card("<control name=\"Size\"></control><control name=\"Open\"> </control>", "First Background")));
  EXPECT_EQ(Cards(*iStack), QStringList{u"First Background|c|Size=0|Open=0"_s});
}

TEST_F(CVelumContentImportTest, TextsAreExternalOnes) {
  Import(
      Document(Card("<control name=\"Price\">1,234.567</control><control name=\"Since\">1/22/2026</control>"
                    "<control name=\"Open\">T</control><control name=\"Size\">12abc</control>",
                    "First Background")));
  EXPECT_EQ(Cards(*iStack),
            QStringList{u"First Background|c|Size=12|Price=1234.57|Since=20260122|Open=-1"_s});
}

TEST_F(CVelumContentImportTest, PicturesArePassedOver) {
  Import(Document(Card("<control name=\"Photo\">(Blob 7)</control><control name=\"Size\">1</control>",
                       "First Background")));
  EXPECT_EQ(Cards(*iStack), QStringList{u"First Background|c|Size=1"_s});
}

TEST_F(CVelumContentImportTest, ACommandIsTreatedAsAnyOther) {
  const QByteArray document = Document(Card("<control name=\"Go\">x</control>", "First Background"));
  EXPECT_EQ(AssertOf(document), "Assert|ConToValType type");
}

TEST_F(CVelumContentImportTest, AByteOrderMarkIsTaken) {
  Import("\xEF\xBB\xBF" + Document(Card("<control name=\"Text\">\xC3\xA9</control>")));
  EXPECT_EQ(Val(*iStack, 0, u"Text"_s), QString::fromUtf8("é"));
}

TEST_F(CVelumContentImportTest, Latin1IsRead) {
  QByteArray document = Document(Card("<control name=\"Text\">\xE9</control>"));
  Import(document.replace("UTF-8", "ISO-8859-1"));
  EXPECT_EQ(Val(*iStack, 0, u"Text"_s), QString::fromUtf8("é"));
}

TEST_F(CVelumContentImportTest, EachAssertion) {
  const struct {
    QByteArray iDocument;
    const char* iText;
  } cases[] = {
      {"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<orvelle version=\"1.1\">\r\n</orvelle>",
       "Assert|ImportXml Version"},
      {"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<orvelle>\r\n</orvelle>", "Assert|ImportXml Version"},
      {"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<VelumStack>\r\n</VelumStack>",
       "ReadTheNext|ReadTheNext name wanted=orvelle,got=VelumStack"},
      {Document("<kard>"), "Assert|ImportXml card kard"},
      {Document("</card>"), "ReadAttr|ReadAttr sym"},
      {Document(Card({}, "Nowhere")), "Assert|ImportXml Background"},
      {Document(Card("<kontrol name=\"Text\"></kontrol>")), "Assert|ImportXml control"},
      {Document(Card("<control name=\"Nothing\"></control>")), "Assert|ImportXml control"},
      {Document(Card("<control name=\"Text\">x</kontrol>")),
       "ReadTheNext|ReadTheNext name wanted=control,got=kontrol"},
      {Document("<card name=\"c\" background=\"Second\">"), "Assert|ImportXml control"},
      {{}, "ReadHeader|ReadHeader lt"},
      {"text", "ReadHeader|ReadHeader lt"},
  };
  for (const auto& each : cases)
    EXPECT_EQ(AssertOf(each.iDocument), each.iText) << each.iDocument.toStdString();
}

TEST_F(CVelumContentImportTest, AnUnknownBackgroundStopsThereAndKeepsTheCardsBefore) {
  const QByteArray document =
      Document(Card("<control name=\"Text\">1</control>") + Card({}, "Nowhere") + Card({}));
  EXPECT_EQ(AssertOf(document), "Assert|ImportXml Background");
  EXPECT_EQ(Cards(*iStack), QStringList{u"Second|c|Text=1"_s});
  EXPECT_EQ(Overruled(document), EHostObjectNotSet);
  EXPECT_EQ(iStack->NumCards(), 2);
  Ref<CVelumCard> card;
  EXPECT_TRUE(iStack->GetCard(u"c"_s, card)) << "they are in the index of names all the same";
}

TEST_F(CVelumContentImportTest, CutAnywhereItEndsCleanly) {
  const QByteArray document = Document(Card("<control name=\"Text\">a&amp;b</control>"));
  const qsizetype whole = document.indexOf("</orvelle>") + 10;
  for (qsizetype len = 0; len < whole; ++len) {
    iStack = MakeStack();
    EXPECT_EQ(Raised([&] { Import(document.first(len)); }), EMsgAssertFailed) << len;
    iStack = MakeStack();
    EXPECT_NE(Overruled(document.first(len)), -2) << len;
    EXPECT_LE(iStack->NumCards(), 1) << len;
  }
}

TEST_F(CVelumContentImportTest, AnyByteChangedItEndsCleanly) {
  const QByteArray document = Document(Card("<control name=\"Text\">a&amp;b</control>"));
  for (qsizetype at = 0; at < document.size(); ++at) {
    for (const char byte : {'<', '"', '\0', '\n', '\xFF'}) {
      QByteArray changed = document;
      changed[at] = byte;
      iStack = MakeStack();
      static_cast<void>(Raised([&] { Import(changed); }));
      iStack = MakeStack();
      static_cast<void>(Overruled(changed));
      EXPECT_LE(iStack->NumCards(), 2) << at << ' ' << int(byte);
    }
  }
}

TEST_F(CVelumContentImportTest, ATextThatNoStackCanHoldIsRefused) {
  const QByteArray longest(15000, 'x');
  Import(Document(Card("<control name=\"Text\">" + longest + "</control>")));
  EXPECT_EQ(Val(*iStack, 0, u"Text"_s).size(), 15000);
  const QByteArray document = Document("\r\n" + Card("<control name=\"Text\">" + longest + "x</control>"));
  EXPECT_EQ(Raised([&] { Import(document); }), EHostOverflow);
  EXPECT_EQ(
      Raised([&] { Import(Document("<card name=\"" + longest + "x\" background=\"Second\"></card>")); }),
      EHostOverflow);
  try {
    Import(document);
  } catch (const CVelumException& e) {
    EXPECT_TRUE(e.Descr().contains(u"line 4"_s)) << e.Descr().toStdString();
  }
}

TEST_F(CVelumContentImportTest, GivenUpItKeepsWhatWasRead) {
  const QByteArray document = Document((Card({}) + "\r\n").repeated(1200));
  const QString path = iFolder.Write(u"in.xml"_s, document);
  qint64 done = 0;
  EXPECT_FALSE(CVelumImports::ImportXml(path, *iStack, [&](qint64 aDone, qint64) {
    done = aDone;
    return aDone < 1000;
  }));
  EXPECT_EQ(done, 1000);
  EXPECT_EQ(iStack->NumCards(), 1000);
  EXPECT_EQ(iStack->NameIndex().Count(), 1000);
}

TEST_F(CVelumContentImportTest, AFileThatIsNotThereIsNamed) {
  EXPECT_EQ(Raised([&] { CVelumImports::ImportXml(iFolder.Path(u"none"_s), *iStack); }), EMsgFileNotFound);
}

TEST_F(CVelumContentImportTest, APipeIsNoFile) {
  const QString pipe = iFolder.Path(u"pipe"_s);
  ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  EXPECT_EQ(Raised([&] { CVelumImports::ImportXml(pipe, *iStack); }), EHostPermissionDenied);
}

} // namespace
