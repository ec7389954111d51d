#include "script/CVelumCompiler.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "support/Assertions.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

namespace {

class CVelumCompilerTest : public testing::Test {
protected:
  CVelumCompilerTest() { CVelumMsg::InitMessages(); }

  // Compiles aSource, its lines parted by "\n". Returns a handler's code in hexadecimal.
  QString Code(const QString& aSource, const QString& aName = u"a"_s) {
    iHandlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
    iCompiler.Compile(CVelumLib::ToCrLf(aSource), *iHandlers);
    QString code;
    qint32 next = 0;
    return iHandlers->ReadStr(aName, code, next) ? code : u"(none)"_s;
  }
  // The code of statements, without what surrounds every handler, and without the first line mark.
  QString Body(const QString& aStatements) {
    const QString code = Code(u"On a\n"_s + aStatements + u"\nEnd\n"_s);
    constexpr qsizetype head = 2 * (2 + 3 + 3 + 3);
    constexpr qsizetype tail = 2 * (3 + 3);
    return code.mid(head, code.size() - head - tail);
  }
  // How aSource fails: procedure, message and parameters of an error of the language; the number of a host
  // error; or the assertion.
  std::string Failure(const QString& aSource) {
    const std::string assertion = Assertions::Of([&] { Code(aSource); });
    if (assertion != "error 2000") return assertion;
    const TCompError& error = iCompiler.GetError();
    return (CVelumError::GetErrorRecord().iProc.mid(15) + u'|' + CVelumMsg::Name(error.iMsg).mid(4) + u'|' +
            error.iParam0 + u'|' + error.iParam1)
        .toStdString();
  }
  std::string FailureOf(const QString& aStatements) {
    return Failure(u"On a\n"_s + aStatements + u"\nEnd\n"_s);
  }

  ScriptedPresenter iPresenter;
  CVelumCompiler iCompiler;
  Ref<CVelumArray> iHandlers;
};

QString Hex(const char* aWithBlanks) {
  return QString::fromLatin1(aWithBlanks).remove(u' ');
}

QString Lines(const QString& aLine, int aCount) {
  return QList<QString>(aCount, aLine).join(u'\n');
}

} // namespace

TEST_F(CVelumCompilerTest, MakesNothingOfNothing) {
  for (const QString& source : {u""_s, u"\n\n"_s, u"# note\n   \n  # another"_s}) {
    Code(source);
    EXPECT_EQ(iHandlers->Count(), 0) << source.toStdString();
  }
}

TEST_F(CVelumCompilerTest, SurroundsAHandler) {
  EXPECT_EQ(Code(u"On a\nEnd"_s), Hex("0000 0E0000 260000 0E0100 270000"));
  EXPECT_EQ(Code(u"on A\neND of it"_s, u"A"_s), Hex("0000 0E0000 260000 0E0100 270000"));
  EXPECT_EQ(Code(u"On a p\nx = 1\nEnd"_s),
            Hex("0000 0E0000 260200 2C 0D0000 0C 0E0100 0D0100 0D0100 0C 0E0200 270200"));
  EXPECT_EQ(Code(u"On a 5 rest\nEnd"_s), Code(u"On a\nEnd"_s)) << "only an identifier is a parameter";
  EXPECT_EQ(iCompiler.ObjDescr(), u"CVelumCompiler"_s);
  EXPECT_EQ(iCompiler.Code().toHex().toUpper(), Code(u"On a\nEnd"_s).toLatin1());
}

TEST_F(CVelumCompilerTest, MarksLines) {
  EXPECT_EQ(Code(u"\n# first\nOn a # note\n\n   \n  # note\n   Answer Tab   # note\nEnd"_s),
            Hex("0000 0E0100 0E0200 260000 0E0500 0E0600 2A 0A 0E0700 270000"));
}

TEST_F(CVelumCompilerTest, CompilesFactors) {
  const std::pair<const char16_t*, const char*> factors[] = {
      {u"x", "0D0000 0B"},
      {u"0", "0D0000"},
      {u"00032767", "0DFF7F"},
      {u"\"ab\"", "010B026162"},
      {u"\"\"", "010B00"},
      {u"\"open", "010B046F70656E"},
      {u"\"\u20ac\"", "010B0180"},
      {u"(1)", "0D0100"},
      {u"((1))", "0D0100"},
      {u"Not 1", "0D0100 10"},
      {u"Not Not 1", "0D0100 10 10"},
      {u"Field 1", "1D 0D0100 03 09"},
      {u"Field \"a\" Of Card 2", "0D0200 02 010B0161 03 09"},
      {u"Field Field 1 Of Card 2", "1D 0D0200 02 0D0100 03 09 03 09"},
      {u"Field 1 Of Card Field 2", "1D 0D0200 03 09 02 0D0100 03 09"},
      {u"Random", "0D0000 21"},
      {u"Random(6)", "0D0600 0D0100 21"},
      {u"Random(1, 2)", "0D0100 0D0200 0D0200 21"},
      {u"Number Of Cards", "22"},
      {u"Number Of Cards Of Background \"B\"", "010B0142 23 2D"},
      {u"Return", "29"},
      {u"Tab", "2A"},
      {u"The Date", "2B"},
  };
  for (const auto& [factor, code] : factors)
    EXPECT_EQ(Body(u"Answer "_s + QString::fromUtf16(factor)), Hex(code) + u"0A"_s)
        << QString::fromUtf16(factor).toStdString();
}

TEST_F(CVelumCompilerTest, CompilesOperators) {
  const std::pair<const char16_t*, const char*> operators[] = {
      {u"*", "11"}, {u"/", "12"},  {u"And", "13"}, {u"+", "14"},  {u"-", "15"}, {u"Or", "17"}, {u"&", "28"},
      {u"=", "07"}, {u"Is", "07"}, {u">", "18"},   {u">=", "19"}, {u"<", "1A"}, {u"<=", "1B"}, {u"<>", "1C"}};
  for (const auto& [op, code] : operators)
    EXPECT_EQ(Body(u"Answer 1 "_s + QString::fromUtf16(op) + u" 2"_s),
              Hex("0D0100 0D0200") + Hex(code) + u"0A"_s)
        << QString::fromUtf16(op).toStdString();
}

TEST_F(CVelumCompilerTest, OrdersOperators) {
  EXPECT_EQ(Body(u"Answer 1 - 2 - 3"_s), Hex("0D0100 0D0200 15 0D0300 15 0A"));
  EXPECT_EQ(Body(u"Answer 1 / 2 * 3"_s), Hex("0D0100 0D0200 12 0D0300 11 0A"));
  EXPECT_EQ(Body(u"Answer 1 Or 2 And 3"_s), Hex("0D0100 0D0200 0D0300 13 17 0A"));
  EXPECT_EQ(Body(u"Answer 1 < 2 & 3"_s), Hex("0D0100 0D0200 0D0300 28 1A 0A"));
  EXPECT_EQ(Body(u"Answer Not 1 = 2"_s), Hex("0D0100 10 0D0200 07 0A"));
  EXPECT_EQ(Body(u"Answer 1 * (2 + 3)"_s), Hex("0D0100 0D0200 0D0300 14 11 0A"));
  EXPECT_EQ(Body(u"Answer 1 = 2 = 3"_s), Hex("0D0100 0D0200 07 0A")) << "one comparison only";
  EXPECT_EQ(Body(u"Answer -5"_s), Hex("0D0500 0A")) << "a sign has no effect";
  EXPECT_EQ(Body(u"Answer +5 - 1"_s), Hex("0D0500 0D0100 15 0A"));
  EXPECT_EQ(Body(u"Answer 1 = -5"_s), Hex("0D0100 0D0500 07 0A"));
}

TEST_F(CVelumCompilerTest, CompilesStatements) {
  const std::pair<const char16_t*, const char*> statements[] = {
      {u"x = 1", "0D0100 0D0000 0C"},
      {u"x = y", "0D0000 0B 0D0100 0C"},
      {u"Put 1 Into Field 2", "0D0100 1D 0D0200 03 04"},
      {u"Put 1 Into Field \"a\" Of Card \"b\"", "0D0100 010B0162 02 010B0161 03 04"},
      {u"Go Next Card", "06"},
      {u"Go To Next Card", "06"},
      {u"Go 1", "0D0100 0F"},
      {u"Go To Card \"a\"", "010B0161 0F"},
      {u"Go Card 1 + 1", "0D0100 0D0100 14 0F"},
      {u"Answer 1 2", "0D0100 0A"},
      {u"Exit Repeat", "1E0000"},
      {u"Send \"m\" To Field 1", "010B016D 1D 0D0100 03 2F"},
      {u"Send \"m\" To ) 1 Of Card 2", "010B016D 0D0200 02 0D0100 03 2F"},
      {u"x = Random(6) + 1", "0D0600 0D0100 21 0D0000 0C"},
      {u"x = (Random(6) + 1", "0D0600 0D0100 21 0D0100 14 0D0000 0C"},
  };
  for (const auto& [statement, code] : statements)
    EXPECT_EQ(Body(QString::fromUtf16(statement)), Hex(code)) << QString::fromUtf16(statement).toStdString();
}

TEST_F(CVelumCompilerTest, DropsWhatStandsBehindThen) {
  EXPECT_EQ(Body(u"If 1 = 1 Then Answer 1\nEnd If"_s), Hex("0D0100 0D0100 07 081800 0E0200"));
  EXPECT_EQ(Body(u"If 1 = 1 Then )\nElse )\nEnd If )"_s),
            Hex("0D0100 0D0100 07 081B00 0E0200 1E1E00 0E0300"));
}

TEST_F(CVelumCompilerTest, CompilesLoops) {
  EXPECT_EQ(Body(u"Repeat While x\nEnd Repeat"_s), Hex("0D0000 0B 081800 0E0200 1E0B00"));
  EXPECT_EQ(Body(u"Repeat For Each Card c\nEnd Repeat"_s), Hex("0D0000 1F1A00 0E0200 201A00 1E1100 2E2E2E"));
  EXPECT_EQ(Body(u"Repeat For Each Card c Of Background \"B\"\nEnd Repeat"_s),
            Hex("0D0000 010B0142 23 241F00 0E0200 251F00 1E1600 2E2E2E"));
  EXPECT_EQ(Body(u"Repeat For Each Card c\nExit Repeat\nEnd Repeat"_s),
            Hex("0D0000 1F2000 0E0200 1E2000 0E0300 202000 1E1100 2E2E2E"))
      << "an exit drops what the walk has on the stack";
}

TEST_F(CVelumCompilerTest, SharesVariablesOfASource) {
  const QString source = u"On a\nx = 1\nEnd\nOn b\ny = 2\nAnswer x\nEnd\n"_s;
  EXPECT_EQ(Code(source, u"a"_s), Hex("0000 0E0000 260100 0E0100 0D0100 0D0000 0C 0E0200 270100"));
  EXPECT_EQ(Code(source, u"b"_s),
            Hex("0000 0E0300 260100 0E0400 0D0200 0D0000 0C 0E0500 0D0000 0B 0A 0E0600 270100"));
  EXPECT_EQ(Body(u"x = X"_s), Hex("0D0000 0B 0D0000 0C")) << "in any case";
  EXPECT_EQ(Body(u"y = 1"_s), Hex("0D0100 0D0000 0C")) << "the next source starts anew";
}

TEST_F(CVelumCompilerTest, TakesAHundredAndOneLines) {
  EXPECT_NE(Code(u"On a\n"_s + Lines(u"x = 1"_s, 99) + u"\nEnd"_s), u"(none)"_s);
  EXPECT_EQ(Failure(u"On a\n"_s + Lines(u"x = 1"_s, 100) + u"\nEnd"_s), "error 9");
  EXPECT_EQ(Failure(Lines(u""_s, 102) + u"# more"_s), "error 9") << "empty lines count";
  EXPECT_NE(Code(u"On a\n"_s + Lines(u"x = 1"_s, 99) + u"\nEnd\n"_s), u"(none)"_s)
      << "nothing comes behind a final line end";
}

TEST_F(CVelumCompilerTest, TakesNumbersOfSixteenBits) {
  EXPECT_EQ(Body(u"Answer 32767"_s), Hex("0DFF7F 0A"));
  EXPECT_EQ(FailureOf(u"Answer 32768"_s), "error 6");
  EXPECT_EQ(FailureOf(u"Answer "_s + QString(400, u'9')), "error 6");
}

TEST_F(CVelumCompilerTest, TakesTextsOf255Characters) {
  EXPECT_EQ(Body(u"Answer \""_s + QString(255, u'a') + u'"'),
            Hex("010BFF") + QString(u"61"_s).repeated(255) + u"0A"_s);
  EXPECT_EQ(FailureOf(u"Answer \""_s + QString(256, u'a') + u'"'), "error 5");
}

TEST_F(CVelumCompilerTest, TakesLinesThatTheScannerCanCount) {
  EXPECT_EQ(Body(u"Answer 1 #"_s + QString(32766 - 10, u'x')), Hex("0D0100 0A"));
  EXPECT_EQ(FailureOf(u"Answer 1 #"_s + QString(32767 - 10, u'x')), "error 6");
}

TEST_F(CVelumCompilerTest, CountsPositionsInSixteenBits) {
  // Four bytes a term; with what surrounds them this handler has 27 more.
  const QString sum = u"1"_s + QString(u"+1"_s).repeated(8184);
  EXPECT_EQ(Code(u"On a\nAnswer "_s + sum + u"\nAnswer \"abc\"\nEnd"_s).size(), 2 * 32767);
  EXPECT_EQ(Failure(u"On a\nAnswer "_s + sum + u"\nAnswer \"abcd\"\nEnd"_s), "error 6");
  EXPECT_EQ(FailureOf(u"Answer "_s + sum + u"\nAnswer \"abcdef\"\nExit Repeat"_s), "error 6");
}

TEST_F(CVelumCompilerTest, TakesFiftyOneExits) {
  const QString loop = u"Repeat While x\nRepeat While y\n%1\nEnd Repeat\nEnd Repeat"_s;
  EXPECT_EQ(Body(loop.arg(Lines(u"Exit Repeat"_s, 51))).count(u"1E5401"_s), 51)
      << "all lead out of the inner loop";
  EXPECT_EQ(FailureOf(loop.arg(Lines(u"Exit Repeat"_s, 52))), "error 9");
}

TEST_F(CVelumCompilerTest, KeepsExitsOutsideLoopsAcrossCompiles) {
  for (int i = 0; i < 50; ++i) EXPECT_EQ(Body(u"Exit Repeat"_s), Hex("1E0000"));
  EXPECT_EQ(Body(u"Repeat While x\nExit Repeat\nEnd Repeat"_s),
            Hex("0D0000 0B 081E00 0E0200 1E1E00 0E0300 1E0B00"))
      << "a loop resolves its own";
  EXPECT_EQ(FailureOf(u"Repeat While x\nExit Repeat\nExit Repeat\nEnd Repeat"_s), "error 9");
  EXPECT_EQ(FailureOf(u"Exit Repeat"_s), "error 9") << "what failed left its entry, too";
  CVelumCompiler another;
  CVelumArray handlers(EArrStrKey, EValStr);
  another.Compile(u"On a\r\nExit Repeat\r\nEnd"_s, handlers);
  EXPECT_EQ(handlers.Count(), 1);
}

TEST_F(CVelumCompilerTest, RefusesDeepNesting) {
  EXPECT_EQ(Body(u"Answer "_s + QString(900, u'(') + u'1' + QString(900, u')')), Hex("0D0100 0A"));
  EXPECT_EQ(FailureOf(u"Answer "_s + QString(15000, u'(') + u'1' + QString(15000, u')')), "error 7");
  EXPECT_EQ(FailureOf(u"Answer "_s + QString(u"Not "_s).repeated(8000) + u'1'), "error 7");
  EXPECT_EQ(Body(u"Answer 1"_s), Hex("0D0100 0A")) << "the next compile is not touched";
}

TEST_F(CVelumCompilerTest, NamesTheKeywordThatIsMissing) {
  const std::pair<const char16_t*, const char*> sources[] = {
      {u"Put 1 In Field 1", "CheckSymIsKw|WrongKeyword|INTO|In"},
      {u"Put 1 Into 1", "CheckSymIsKw|WrongKeyword|FIELD|1"},
      {u"Put 1 Into Field 1 Of 2", "CheckSymIsKw|WrongKeyword|CARD|2"},
      {u"Put Random(6) Into Field 1", "CheckSymIsKw|WrongKeyword|INTO|)"},
      {u"Go Next", "CheckSymIsKw|WrongKeyword|CARD|"},
      {u"If 1 Answer 2", "CheckSymIsKw|WrongKeyword|THEN|Answer"},
      {u"If 1 Then\nEnd Repeat", "CheckSymIsKw|WrongKeyword|IF|Repeat"},
      {u"If 1 Then\nElse\nEnd", "CheckSymIsKw|WrongKeyword|IF|"},
      {u"Repeat", "CheckSymIsKw|WrongKeyword|FOR|"},
      {u"Repeat Until 1", "CheckSymIsKw|WrongKeyword|FOR|Until"},
      {u"Repeat For All", "CheckSymIsKw|WrongKeyword|EACH|All"},
      {u"Repeat For Each c", "CheckSymIsKw|WrongKeyword|CARD|c"},
      {u"Repeat For Each Card c Of Card", "CheckSymIsKw|WrongKeyword|BACKGROUND|Card"},
      {u"Repeat While 1\nEnd If", "CheckSymIsKw|WrongKeyword|REPEAT|If"},
      {u"Repeat For Each Card c\nEnd If", "CheckSymIsKw|WrongKeyword|REPEAT|If"},
      {u"Exit If", "CheckSymIsKw|WrongKeyword|REPEAT|If"},
      {u"Send 1 Into", "CheckSymIsKw|WrongKeyword|TO|Into"},
      {u"Answer Number Cards", "CheckSymIsKw|WrongKeyword|OF|Cards"},
      {u"Answer Number Of Card", "CheckSymIsKw|WrongKeyword|CARDS|Card"},
      {u"Answer Number Of Cards Of Card", "CheckSymIsKw|WrongKeyword|BACKGROUND|Card"},
  };
  for (const auto& [source, failure] : sources)
    EXPECT_EQ(FailureOf(QString::fromUtf16(source)), failure) << QString::fromUtf16(source).toStdString();
}

TEST_F(CVelumCompilerTest, NamesTheSymbolThatIsMissing) {
  EXPECT_EQ(FailureOf(u"x 1"_s), "CheckSymIsSym|WrongSymbol|=|1");
  EXPECT_EQ(FailureOf(u"x"_s), "CheckSymIsSym|WrongSymbol|=|");
  EXPECT_EQ(FailureOf(u"x # note"_s), "CheckSymIsSym|WrongSymbol|=|#");
  EXPECT_EQ(FailureOf(u"x = (1 2"_s), "CheckSymIsSym|WrongSymbol|)|2");
  EXPECT_EQ(FailureOf(u"Repeat For Each Card 5"_s), "CheckSymIsSym|WrongSymbol|<ident>|5");
}

TEST_F(CVelumCompilerTest, RefusesBadExpressions) {
  EXPECT_EQ(FailureOf(u"Answer )"_s), "CompFactor|BadExpression|)|");
  EXPECT_EQ(FailureOf(u"Answer"_s), "CompFactor|BadExpression||");
  EXPECT_EQ(FailureOf(u"Answer\t1"_s), "CompFactor|BadExpression|\t|") << "a tab is no blank";
  EXPECT_EQ(FailureOf(u"Answer 1 + -2"_s), "CompFactor|BadExpression|-|");
  EXPECT_EQ(FailureOf(u"Answer 1 = = 2"_s), "CompFactor|BadExpression|=|");
  EXPECT_EQ(FailureOf(u"Answer To"_s), "CompFactor|BadExpression|To|") << "a keyword that begins none";
  EXPECT_EQ(FailureOf(u"Answer The Card"_s), "CompFactor|BadExpression|Card|");
  EXPECT_EQ(FailureOf(u"Answer The"_s), "CompFactor|BadExpression||");
  EXPECT_EQ(FailureOf(u"Answer 1 < > 2"_s), "CompFactor|BadExpression|>|");
}

TEST_F(CVelumCompilerTest, RefusesBadParameters) {
  EXPECT_EQ(FailureOf(u"x = Random(6"_s), "CompFunctionCall|BadParamList||");
  EXPECT_EQ(FailureOf(u"x = Random(6 7)"_s), "CompFunctionCall|BadParamList||");
  EXPECT_EQ(FailureOf(u"x = Random()"_s), "CompFactor|BadExpression|)|");
  EXPECT_EQ(FailureOf(u"x = Random(1,)"_s), "CompFactor|BadExpression|)|");
}

TEST_F(CVelumCompilerTest, MissesTheEndOfTheSource) {
  for (const QString& source :
       {u"On a"_s, u"On a\nAnswer 1\n# note\n"_s, u"On a\nIf 1 Then\nEnd If"_s, u"On a\nIf 1 Then\nElse"_s,
        u"On a\nRepeat While 1"_s, u"On a\nRepeat For Each Card c"_s})
    EXPECT_EQ(Failure(source), "GetNextLine|SourceEnd||") << source.toStdString();
}

TEST_F(CVelumCompilerTest, TellsThePlaceOfAnError) {
  EXPECT_EQ(Failure(u"On a\n\n  # note\nEnd\nOn b\n   Answer )  \nEnd"_s), "CompFactor|BadExpression|)|");
  const TCompError& error = iCompiler.GetError();
  EXPECT_EQ(error.iLine, u"   Answer )  "_s) << "untrimmed";
  EXPECT_EQ(error.iLineIndex, 5);
  EXPECT_EQ(error.iStart, 6 + 2 + 10 + 5 + 6);
  EXPECT_EQ(error.iEnd, error.iStart + 13);
  EXPECT_EQ(error.iPos, 9) << "in the trimmed line";
  EXPECT_EQ(iHandlers->Count(), 1) << "what was finished";
}

// Of failures that are no errors of the language, too.
TEST_F(CVelumCompilerTest, KnowsTheLineOfEveryFailure) {
  const auto line = [this](const QString& aSource) {
    EXPECT_NE(Failure(aSource), "nothing failed");
    EXPECT_EQ(iCompiler.GetError().iMsg, 0);
    return iCompiler.GetError().iLineIndex;
  };
  EXPECT_EQ(line(u"On a\nAnswer 40000\nEnd"_s), 1);
  EXPECT_EQ(iCompiler.GetError().iLine, u"Answer 40000"_s);
  EXPECT_EQ(line(u"On a\nx = 1\n\tx = 2\nEnd"_s), 2);
  EXPECT_TRUE(iPresenter.LastText().contains(u"Line 3: \tx = 2"_s)) << "the question says it as well";
  EXPECT_EQ(line(u"On a\nEnd\n\nx = 1"_s), 3);
  EXPECT_EQ(line(u"On a\nAnswer \""_s + QString(256, u'x') + u"\"\nEnd"_s), 1);
  EXPECT_EQ(line(u"On a\n"_s + QString(32767, u'x') + u"\nEnd"_s), 1);
  EXPECT_EQ(line(Lines(u"# note"_s, 102)), 101);
  Code(u"On a\nEnd"_s);
  EXPECT_EQ(iCompiler.GetError().iLine, QString()) << "nothing failed";
}

TEST_F(CVelumCompilerTest, NotesWhatIsNotRead) {
  const auto notes = [this](const char16_t* aStatements) {
    Code(u"On a\n"_s + QString::fromUtf16(aStatements) + u"\nEnd\n"_s);
    QList<QString> all;
    for (const TCompNote& note : iCompiler.Notes())
      all.append(QString::number(note.iLineIndex) + u':' + QString::number(note.iPos) + u' ' + note.iText);
    return all;
  };
  const auto rest = [](const char16_t* aRest) {
    return QList<QString>{u"1:"_s + QString::fromUtf16(aRest).section(u' ', 0, 0) +
                          u" The rest of the line is not read: "_s +
                          QString::fromUtf16(aRest).section(u' ', 1)};
  };
  EXPECT_EQ(notes(u"  x = Field \"Amount\" * 0.19"), rest(u"23 .19"));
  EXPECT_EQ(notes(u"Answer 1 2"), rest(u"10 2"));
  EXPECT_EQ(notes(u"Answer 1  2  # note"), rest(u"11 2  # note"));
  EXPECT_EQ(notes(u"If 1 = 1 Then Answer 1\nEnd If"), rest(u"15 Answer 1"));
  EXPECT_EQ(notes(u"Go Next Card now"), rest(u"14 now"));
  EXPECT_EQ(notes(u"x = Random(6) + 1"), rest(u"15 + 1"));
  EXPECT_EQ(notes(u"If 1 = 1 Then\nElse If 2 = 2 Then\nEnd If now"),
            (QList<QString>{u"2:6 The rest of the line is not read: If 2 = 2 Then"_s,
                            u"3:8 The rest of the line is not read: now"_s}));
  EXPECT_EQ(notes(u"x = -1"), QList<QString>{u"1:5 The sign has no effect: write 0 - ... instead."_s});
  EXPECT_EQ(notes(u"Answer \"\u65e5\""),
            QList<QString>{u"1:8 The text holds letters that scripts do not know; they become '?'."_s});
  for (const char16_t* plain :
       {u"Answer 1 # note", u"x = (Random(6) + 1", u"x = Random(6)", u"x = Random(6)   # note",
        u"Go Next Card", u"If 1 = 1 Then # note\nElse # note\nEnd If # note",
        u"Repeat While 1 = 1\nExit Repeat\nEnd Repeat", u"x = +1", u"Send \"a\" To Field 1 Of Card 2",
        u"Answer \"\u20ac\"", u"x = Random"})
    EXPECT_EQ(notes(plain), QList<QString>()) << QString::fromUtf16(plain).toStdString();
  Code(u"On a p q\nEnd it\n"_s);
  EXPECT_EQ(iCompiler.Notes().size(), 2);
  Code(u"On a p # q\nEnd # it\n"_s);
  EXPECT_EQ(iCompiler.Notes().size(), 0);
}

TEST_F(CVelumCompilerTest, NotesNamesThatAreOneVariable) {
  Code(u"On a\nx = 1\ny = 2\nEnd\nOn b\nY = 1\nX = y\nEnd\nOn c\nz = 1\nEnd\n"_s);
  EXPECT_EQ(iCompiler.Notes().size(), 0);
  Code(u"On a\nx = 1\nEnd\nOn b\nz = 1\nz = z + x\nEnd\n"_s);
  ASSERT_EQ(iCompiler.Notes().size(), 1);
  EXPECT_EQ(iCompiler.Notes().first().iLineIndex, 5);
  EXPECT_EQ(iCompiler.Notes().first().iPos, 9);
  EXPECT_EQ(iCompiler.Notes().first().iText, u"'x' is the same variable as 'z' here."_s);
}

// A line mark, the sum, its slot and the store are 10 bytes more than the handler's own 14.
TEST_F(CVelumCompilerTest, NotesCodeThatABinaryDocumentCannotHold) {
  Code(u"On b\nEnd\n\nOn a\nx = 1"_s + QString(u"+1"_s).repeated(1869) + u"\nEnd\n"_s);
  EXPECT_EQ(Code(u"On b\nEnd\n\nOn a\nx = 1"_s + QString(u"+1"_s).repeated(1869) + u"\nEnd\n"_s).size(),
            15000);
  EXPECT_EQ(iCompiler.Notes().size(), 0);
  EXPECT_EQ(Code(u"On b\nEnd\n\nOn a\nx = 1"_s + QString(u"+1"_s).repeated(1870) + u"\nEnd\n"_s).size(),
            15008);
  ASSERT_EQ(iCompiler.Notes().size(), 1);
  EXPECT_EQ(iCompiler.Notes().first().iLineIndex, 3);
  EXPECT_EQ(iCompiler.Notes().first().iPos, 0);
  EXPECT_EQ(iCompiler.Notes().first().iText,
            u"The code of 'a' takes 15008 characters; a document in the binary form holds at most 15000."_s);
  Code(u"On a\nEnd\n#"_s + QString(15000 - 12, u'x'));
  EXPECT_EQ(iCompiler.Notes().size(), 0);
  Code(u"On a\nEnd\n#"_s + QString(15001 - 12, u'x'));
  ASSERT_EQ(iCompiler.Notes().size(), 1);
  EXPECT_TRUE(iCompiler.Notes().first().iText.startsWith(u"The source has 15001 characters"_s));
}

TEST_F(CVelumCompilerTest, AssertsThatHandlersBegin) {
  EXPECT_EQ(Failure(u"Off a\nEnd"_s), "Compile|Compile On");
  EXPECT_EQ(Failure(u"On a\nEnd\nAnswer 1"_s), "Compile|Compile On");
  EXPECT_EQ(Failure(u"On 1\nEnd"_s), "Compile|Compile Ident");
  EXPECT_EQ(Failure(u"On Card\nEnd"_s), "Compile|Compile Ident");
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(Code(u"Off a\nEnd"_s), Code(u"On a\nEnd"_s));
  EXPECT_EQ(Code(u"On 1\nEnd"_s, u"1"_s), Code(u"On a\nEnd"_s));
}

TEST_F(CVelumCompilerTest, AssertsThatStatementsBegin) {
  EXPECT_EQ(FailureOf(u"5 Into Field 1"_s), "CompStatement|CompileLine keyword");
  EXPECT_EQ(FailureOf(u"\"text\""_s), "CompStatement|CompileLine keyword");
  EXPECT_EQ(FailureOf(u"Into Field 1"_s), "CompStatement|CompStatement keyword id");
  EXPECT_EQ(FailureOf(u"Else"_s), "CompStatement|CompStatement keyword id");
  EXPECT_EQ(FailureOf(u"If 1 Then\nElse\nElse\nEnd If"_s), "CompStatement|CompStatement keyword id");
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(Body(u"5 1 Into Field 2"_s), Body(u"Put 1 Into Field 2"_s)) << "overruled, it is taken as Put";
  EXPECT_EQ(Body(u"Into Field 1\nx = 1"_s), Hex("0E0200 0D0100 0D0000 0C")) << "overruled, it is skipped";
}
