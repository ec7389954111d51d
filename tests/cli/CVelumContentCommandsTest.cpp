// import-xml, import-text, export-csv, export-xml.
#include "cli/CliRun.h"
#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

// Two backgrounds: "People" with Text and Age, and "Notes" with Text.
class CVelumContentCommands : public testing::Test {
protected:
  CVelumContentCommands() {
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    Make(iStack, true);
    Make(iEmpty, false);
    iBefore = iFolder.Read(u"a.Orvelle"_s);
  }
  static void Make(const QString& aPath, bool aWithCards) {
    auto stack = MakeRef<CVelumStack>(u"Test"_s);
    stack->SetFlag(EStaBinary, true);
    Ref<CVelumControlSet> people;
    qint32 index = 0;
    ASSERT_TRUE(stack->GetFirstBackground(people, index));
    people->SetName(u"People"_s);
    auto notes = MakeRef<CVelumControlSet>(u"Notes"_s, stack->IdGen().NextId());
    stack->AddBackground(notes);
    const qint32 text = AddField(*stack, *people, u"Text"_s, EConText);
    const qint32 age = AddField(*stack, *people, u"Age"_s, EConInteger);
    AddField(*stack, *notes, u"Text"_s, EConText);
    if (aWithCards) {
      auto card = MakeRef<CVelumCard>(u"Ada"_s, people);
      stack->AddCard(card, nullptr, false);
      card->SetControlVal(text, TVelumValue::OfStr(QString::fromUtf8("a \"b\"\r\nЯ")));
      card->SetControlVal(age, TVelumValue::OfInt(36));
      stack->AddCard(MakeRef<CVelumCard>(u"Note"_s, notes), nullptr, false);
    }
    CVelumStackFile(aPath).SaveStack(stack, MakeRef<CVelumViewState>(u"v"_s));
  }
  static qint32 AddField(CVelumStack& aStack, CVelumControlSet& aSet, const QString& aName, qint32 aType) {
    auto control = MakeRef<CVelumControl>(aStack.IdGen().NextId(), aName, aType);
    aSet.AddControl(control, ENoInt);
    return control->Id();
  }
  // Runs what must go well, and returns what it prints.
  static QByteArray Do(const QStringList& aArguments) {
    const TCliResult result = CliRun::Run(aArguments);
    EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
    EXPECT_EQ(result.iErr, QByteArray());
    return result.iOut;
  }
  static QByteArray CardsOf(const QString& aStack) {
    EXPECT_EQ(CliRun::Run({u"check"_s, aStack}).iStatus, 0);
    return CliRun::Run({u"cards"_s, aStack}).iOut;
  }
  [[nodiscard]] bool Untouched() const { return iFolder.Read(u"a.Orvelle"_s) == iBefore; }

  TempFolder iFolder;
  QString iStack = iFolder.Path(u"a.Orvelle"_s);
  QString iEmpty = iFolder.Path(u"empty.Orvelle"_s);
  QString iOut = iFolder.Path(u"out"_s);
  QByteArray iBefore;
};

TEST_F(CVelumContentCommands, ExportsCsv) {
  Do({u"export-csv"_s, iStack, iOut, u"--background"_s, u"Notes"_s});
  EXPECT_EQ(iFolder.Read(u"out"_s), QByteArray("\"Text\"\r\n\"\"\r\n"));
  const QStringList people{u"export-csv"_s, iStack, iOut, u"--background"_s, u"People"_s};
  Do(people + QStringList{u"--delimiter"_s, u";"_s, u"--coding"_s, u"utf8"_s});
  EXPECT_EQ(iFolder.Read(u"out"_s),
            QByteArray("\xEF\xBB\xBF\"Text\";\"Age\"\r\n\"a \"\"b\"\"&eol;Я\";\"36\"\r\n"));
  const TCliResult result = CliRun::Run(people + QStringList{u"--delimiter"_s, u"tab"_s});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: 1 character became \"?\"")) << result.iErr.toStdString();
  EXPECT_EQ(iFolder.Read(u"out"_s), QByteArray("\"Text\"\t\"Age\"\r\n\"a \"\"b\"\"&eol;?\"\t\"36\"\r\n"));
  EXPECT_TRUE(Untouched());
}

TEST_F(CVelumContentCommands, ContentGoesOutAndIn) {
  EXPECT_EQ(Do({u"export-xml"_s, iStack, iOut}), QByteArray());
  const QByteArray name = iEmpty.toUtf8();
  EXPECT_EQ(Do({u"import-xml"_s, iOut, iEmpty}), name + ": 1 card added to background 'People'\n" + name +
                                                     ": 1 card added to background 'Notes'\n");
  EXPECT_EQ(CardsOf(iEmpty), CardsOf(iStack));
  const QByteArray first = iFolder.Read(u"out"_s);
  Do({u"export-xml"_s, iEmpty, iOut});
  EXPECT_EQ(iFolder.Read(u"out"_s), first);
  EXPECT_TRUE(Untouched());
}

TEST_F(CVelumContentCommands, DatesAndNumbersAreOfTheLocale) {
  Do({u"--locale"_s, u"de_DE"_s, u"export-xml"_s, CliRun::Sample(), iOut});
  Do({u"--locale"_s, u"de_DE"_s, u"import-xml"_s, iOut, CliRun::Sample(), u"--out"_s, iEmpty});
  Do({u"--locale"_s, u"de_DE"_s, u"export-xml"_s, iEmpty, iFolder.Path(u"again"_s)});
  const QByteArray again = iFolder.Read(u"again"_s);
  EXPECT_EQ(again.count("<card "), 2 * iFolder.Read(u"out"_s).count("<card "));
}

TEST_F(CVelumContentCommands, StreamsAreReadAndWritten) {
  const QByteArray content = Do({u"export-xml"_s, iStack, u"-"_s});
  Do({u"export-xml"_s, iStack, iOut});
  EXPECT_EQ(content, iFolder.Read(u"out"_s));
  EXPECT_EQ(Do({u"export-xml"_s, iStack, u"/dev/stdout"_s}), content) << "which is a pipe here";
  const QStringList csv{u"export-csv"_s, iStack, u"-"_s, u"--background"_s, u"Notes"_s};
  EXPECT_EQ(Do(csv), QByteArray("\"Text\"\r\n\"\"\r\n"));
  const TCliResult xml = CliRun::RunFed(content, {u"import-xml"_s, u"-"_s, iEmpty, u"--json"_s});
  EXPECT_EQ(xml.iStatus, 0) << xml.iErr.toStdString();
  EXPECT_EQ(xml.iOut.count("\"cards\": 1"), 2) << xml.iOut.toStdString();
  EXPECT_EQ(CardsOf(iEmpty), CardsOf(iStack));
  const TCliResult text =
      CliRun::RunFed("a\n", {u"import-text"_s, u"-"_s, iEmpty, u"--background"_s, u"Notes"_s});
  EXPECT_EQ(text.iStatus, 0) << text.iErr.toStdString();
  EXPECT_TRUE(text.iOut.contains("1 card in background 'Notes'")) << text.iOut.toStdString();
}

TEST_F(CVelumContentCommands, AStreamIsAppendedToAndAPipeIsWritten) {
  const QString log = iFolder.Write(u"log"_s, "kept\n");
  const TCliResult result =
      CliRun::RunProgram(u"env"_s, {u"LC_ALL=C"_s, u"bash"_s, u"-c"_s,
                                    u"\"$0\" export-csv \"$1\" /dev/stdout --background Notes >> \"$2\"; "
                                    "\"$0\" export-csv \"$1\" >(cat >&2) --background Notes; "
                                    "status=$?; wait $!; exit $status"_s,
                                    CliRun::Program(), iStack, log});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_EQ(result.iErr, QByteArray("\"Text\"\r\n\"\"\r\n"));
  EXPECT_EQ(iFolder.Read(u"log"_s), QByteArray("kept\n\"Text\"\r\n\"\"\r\n"));
}

TEST_F(CVelumContentCommands, OneBackgroundNeedsNoName) {
  const QString csv = iFolder.Write(u"a.csv"_s, "Text\nx\n");
  const QString one = iFolder.Path(u"one.Orvelle"_s);
  Do({u"import-csv"_s, csv, one});
  EXPECT_EQ(Do({u"export-csv"_s, one, u"-"_s}), QByteArray("\"Text\"\r\n\"x\"\r\n"));
  EXPECT_TRUE(Do({u"import-text"_s, csv, one}).contains(": 1 card in background 'First Background'"));
}

TEST_F(CVelumContentCommands, FieldsOfOneNameKeepTheirValues) {
  const QString two = iFolder.Path(u"two.Orvelle"_s);
  {
    auto stack = MakeRef<CVelumStack>(u"Test"_s);
    stack->SetFlag(EStaBinary, true);
    Ref<CVelumControlSet> set;
    qint32 index = 0;
    ASSERT_TRUE(stack->GetFirstBackground(set, index));
    const qint32 first = AddField(*stack, *set, u"a"_s, EConText);
    const qint32 second = AddField(*stack, *set, u"a"_s, EConText);
    auto card = MakeRef<CVelumCard>(u"x"_s, set);
    stack->AddCard(card, nullptr, false);
    card->SetControlVal(first, TVelumValue::OfStr(u"1"_s));
    card->SetControlVal(second, TVelumValue::OfStr(u"2"_s));
    CVelumStackFile(two).SaveStack(stack, MakeRef<CVelumViewState>(u"v"_s));
  }
  Do({u"export-xml"_s, two, iOut});
  Do({u"import-xml"_s, iOut, two});
  EXPECT_EQ(Do({u"cards"_s, two}), QByteArray("x\t1\t2\nx\t1\t2\n"));
  const QByteArray json = Do({u"cards"_s, two, u"--json"_s});
  EXPECT_EQ(json.count("\"a\": \"1\""), 2) << json.toStdString();
  EXPECT_EQ(json.count("\"a 2\": \"2\""), 2) << json.toStdString();
}

TEST_F(CVelumContentCommands, ImportsText) {
  const QString text = iFolder.Write(u"t.txt"_s, QByteArray("line\n").repeated(51));
  Do({u"import-text"_s, text, iStack, u"--background"_s, u"Notes"_s, u"--out"_s, iOut});
  EXPECT_TRUE(Untouched());
  EXPECT_EQ(CardsOf(iOut).count('\n'), 3) << "Ada and two notes";
  Do({u"import-text"_s, text, iStack, u"--background"_s, u"People"_s});
  EXPECT_FALSE(Untouched());
}

TEST_F(CVelumContentCommands, FailuresWriteNothing) {
  const QString bad = iFolder.Write(
      u"bad.xml"_s,
      "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<orvelle version=\"1.0\">\r\n"
      "<card name=\"x\" background=\"People\"></card>\r\n<card name=\"y\" background=\"None\">");
  const QString text = iFolder.Write(u"t.txt"_s, "x");
  const struct {
    QStringList iArguments;
    const char* iMessage;
  } cases[] = {
      {{u"import-xml"_s, bad, iStack}, "ImportXml Background"},
      {{u"import-xml"_s, iFolder.Path(u"none"_s), iStack}, "EMsgFileNotFound"},
      {{u"import-text"_s, iFolder.Path(u"none"_s), iStack, u"--background"_s, u"Notes"_s},
       "EMsgFileNotFound"},
      {{u"import-text"_s, text, iStack, u"--background"_s, u"None"_s}, "EMsgBackgroundNotFound"},
      {{u"export-csv"_s, iStack, iOut, u"--background"_s, u"None"_s}, "EMsgBackgroundNotFound"},
      {{u"export-csv"_s, iStack, iStack, u"--background"_s, u"Notes"_s}, "is the stack itself"},
      {{u"export-xml"_s, iStack, iStack}, "is the stack itself"},
      {{u"export-xml"_s, iStack, iFolder.Path()}, "is a folder"},
      {{u"import-xml"_s, bad, iStack, u"--out"_s, bad}, "is the file that is read"},
      {{u"import-xml"_s, bad, iStack, u"--out"_s, text}, "is no stack"},
      {{u"import-text"_s, text, iStack, u"--background"_s, u"Notes"_s, u"--out"_s, text}, "that is read"},
      {{u"import-xml"_s, iEmpty, iStack}, "is a stack"},
      {{u"import-text"_s, iEmpty, iStack, u"--background"_s, u"Notes"_s}, "is a stack"},
      {{u"export-csv"_s, iStack, u"/dev/full"_s, u"--background"_s, u"Notes"_s}, "a folder or a device"},
      {{u"import-xml"_s, u"/dev/zero"_s, iStack}, "a pipe or a device"},
      {{u"import-text"_s, u"/dev/zero"_s, iStack, u"--background"_s, u"Notes"_s}, "a pipe or a device"},
      {{u"export-xml"_s, iStack, iFolder.Path(u"no/folder"_s)}, "there is no folder"},
  };
  for (const auto& each : cases) {
    const TCliResult result = CliRun::Run(each.iArguments);
    EXPECT_EQ(result.iStatus, 1) << each.iMessage;
    EXPECT_TRUE(result.iErr.contains(each.iMessage)) << each.iMessage << ": " << result.iErr.toStdString();
    EXPECT_TRUE(Untouched()) << each.iMessage;
  }
  EXPECT_FALSE(iFolder.Has(u"out"_s));
}

TEST_F(CVelumContentCommands, WrongUsage) {
  const QStringList csv{u"export-csv"_s, iStack, iOut, u"--background"_s, u"Notes"_s};
  EXPECT_EQ(CliRun::Run({u"export-csv"_s, iStack, iOut}).iStatus, 2);
  EXPECT_EQ(CliRun::Run(csv + QStringList{u"--delimiter"_s, u"ab"_s}).iStatus, 2);
  EXPECT_EQ(CliRun::Run(csv + QStringList{u"--coding"_s, u"utf16"_s}).iStatus, 2);
  const TCliResult several = CliRun::Run({u"import-text"_s, iOut, iStack});
  EXPECT_EQ(several.iStatus, 2);
  EXPECT_TRUE(several.iErr.contains("--background is missing; the stack has 'People', 'Notes'."));
  EXPECT_FALSE(iFolder.Has(u"out"_s));
}

} // namespace
