#include "core/text/CVelumScanner.h"

#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

struct TSym {
  qint32 iSym;
  QString iStr;
  qint16 iKeyword = 0;
  bool operator==(const TSym&) const = default;
};

void PrintTo(const TSym& aSym, std::ostream* aStream) {
  *aStream << aSym.iSym << " '" << aSym.iStr.toStdString() << "' " << aSym.iKeyword;
}

// All symbols up to the end of the line.
QList<TSym> Symbols(CVelumScanner& aScanner, const QString& aLine) {
  aScanner.SetLine(aLine);
  QList<TSym> syms;
  TSym sym{};
  do {
    aScanner.GetSym(sym.iSym, sym.iStr, sym.iKeyword);
    syms.append(sym);
  } while (sym.iSym != ESymEol && syms.size() < 1000);
  return syms;
}

QList<TSym> Symbols(const QString& aLine) {
  CVelumScanner scanner;
  return Symbols(scanner, aLine);
}

QList<TSym> WikiTokens(const QString& aText) {
  CVelumScanner scanner;
  scanner.SetLine(aText);
  QList<TSym> syms;
  TSym sym{};
  for (;;) {
    scanner.GetWikiSym(sym.iSym, sym.iStr);
    if (sym.iSym == ESymEol) return syms;
    syms.append(sym);
  }
}

class ScannerFile : public testing::Test {
protected:
  Ref<CVelumFile> Open(const QByteArray& aBytes) {
    auto file = MakeRef<CVelumFile>(iFolder.Write(u"text"_s, aBytes), qint32{EFilSeqRead});
    file->OpenFile();
    return file;
  }
  // All cells, "|" behind each, and "\n" behind each line.
  QString Cells(const QByteArray& aBytes, const QString& aDelim = u","_s) {
    const Ref<CVelumFile> file = Open(aBytes);
    CVelumScanner scanner;
    scanner.SetCsvDelim(aDelim);
    QString all;
    QString line;
    while (file->ReadLine(line)) {
      scanner.SetLine(line);
      qint32 sym = 0;
      QString str;
      for (;;) {
        scanner.GetCsvSym(*file, sym, str);
        if (sym == ESymEol) break;
        all += str + (sym == ESymEof ? u"<eof>"_s : u"|"_s);
        if (sym == ESymEof) return all;
      }
      all += u'\n';
    }
    return all;
  }
  TempFolder iFolder;
};

} // namespace

TEST(CVelumScanner, TellsIdentifiersFromNumbers) {
  EXPECT_EQ(Symbols(u"a1"_s), (QList<TSym>{{ESymIdent, u"a1"_s}, {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"1a"_s), (QList<TSym>{{ESymNumber, u"1"_s}, {ESymIdent, u"a"_s}, {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"_1"_s), (QList<TSym>{{ESymIdent, u"_1"_s}, {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"1.5"_s),
            (QList<TSym>{{ESymNumber, u"1"_s}, {ESymDot, u"."_s}, {ESymNumber, u"5"_s}, {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"ä"_s), (QList<TSym>{{ESymOther, u"ä"_s}, {ESymEol, {}}}));
}

TEST(CVelumScanner, FindsKeywordsInAnyCaseAndKeepsTheSpelling) {
  CVelumScanner scanner;
  scanner.DefKeyword(u"Put"_s, 0);
  scanner.DefKeyword(u"Into"_s, 7);
  scanner.DefKeyword(u"INTO"_s, 8);
  EXPECT_EQ(Symbols(scanner, u"Put PUT put"_s), (QList<TSym>{{ESymKeyword, u"Put"_s, 0},
                                                             {ESymKeyword, u"PUT"_s, 0},
                                                             {ESymKeyword, u"put"_s, 0},
                                                             {ESymEol, {}}}));
  EXPECT_EQ(Symbols(scanner, u"into"_s).first(), (TSym{ESymKeyword, u"into"_s, 7}));
  EXPECT_EQ(scanner.KeywStr(7), u"INTO"_s);
}

TEST(CVelumScanner, AssertsOnAnUnknownKeywordId) {
  ScriptedPresenter presenter;
  CVelumScanner scanner;
  EXPECT_THROW(static_cast<void>(scanner.KeywStr(3)), CVelumException);
  EXPECT_TRUE(presenter.LastText().contains(u"found"_s));
  EXPECT_EQ(CVelumError::GetErrorRecord().iProc, u"KeywStr"_s);
  presenter.SetDefaultAnswer(true);
  EXPECT_EQ(scanner.KeywStr(3), QString());
}

TEST(CVelumScanner, TakesAHundredAndOneKeywords) {
  CVelumScanner scanner;
  for (qint16 i = 0; i < 101; ++i) scanner.DefKeyword(u"k"_s + QString::number(i), i);
  try {
    scanner.DefKeyword(u"more"_s, 101);
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostIndex);
  }
}

TEST(CVelumScanner, GivesOperatorsWithTheirFirstCharacter) {
  EXPECT_EQ(Symbols(u"<= <> < >= >"_s), (QList<TSym>{{ESymLessEqual, u"<"_s},
                                                     {ESymNotEqual, u"<"_s},
                                                     {ESymLess, u"<"_s},
                                                     {ESymGreaterEqual, u">"_s},
                                                     {ESymGreater, u">"_s},
                                                     {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"()., /?=*+-&"_s), (QList<TSym>{{ESymLParen, u"("_s},
                                                     {ESymRParen, u")"_s},
                                                     {ESymDot, u"."_s},
                                                     {ESymComma, u","_s},
                                                     {ESymSlash, u"/"_s},
                                                     {ESymQuestion, u"?"_s},
                                                     {ESymEqual, u"="_s},
                                                     {ESymStar, u"*"_s},
                                                     {ESymPlus, u"+"_s},
                                                     {ESymMinus, u"-"_s},
                                                     {ESymAmpersand, u"&"_s},
                                                     {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"\t"_s).first(), (TSym{ESymOther, u"\t"_s}));
}

TEST(CVelumScanner, EndsStringsQuietly) {
  EXPECT_EQ(Symbols(u"\"abc"_s), (QList<TSym>{{ESymString, u"abc"_s}, {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"\"a\"\"b\""_s),
            (QList<TSym>{{ESymString, u"a"_s}, {ESymString, u"b"_s}, {ESymEol, {}}}));
  EXPECT_EQ(Symbols(u"\"\""_s), (QList<TSym>{{ESymString, u""_s}, {ESymEol, {}}}));
}

TEST(CVelumScanner, StripsCommentsOnlyWhenTold) {
  CVelumScanner scanner;
  EXPECT_EQ(Symbols(scanner, u"# a"_s),
            (QList<TSym>{{ESymHash, u"#"_s}, {ESymIdent, u"a"_s}, {ESymEol, {}}}));
  scanner.SetStripComments(true);
  EXPECT_EQ(Symbols(scanner, u"   "_s), (QList<TSym>{{ESymEol, {}}}));
  EXPECT_EQ(Symbols(scanner, u"a # b"_s), (QList<TSym>{{ESymIdent, u"a"_s}, {ESymEol, u"#"_s}}));
  EXPECT_EQ(Symbols(scanner, u"# b"_s), (QList<TSym>{{ESymEol, u"#"_s}}));
  EXPECT_EQ(Symbols(scanner, u"\"#\""_s).first(), (TSym{ESymString, u"#"_s}));
}

TEST(CVelumScanner, RepeatsTheEndOfALine) {
  CVelumScanner scanner;
  scanner.SetLine(u"a"_s);
  qint32 sym = 0;
  QString str;
  qint16 keyword = 0;
  scanner.GetSym(sym, str, keyword);
  EXPECT_EQ(scanner.LinePos(), 2);
  for (int i = 0; i < 3; ++i) {
    scanner.GetSym(sym, str, keyword);
    EXPECT_EQ(sym, ESymEol);
  }
  EXPECT_EQ(scanner.LineNum(), 0);
}

TEST(CVelumScanner, EndsALineAtTheCharacterOne) {
  EXPECT_EQ(Symbols(QString(u"a"_s) + QChar(1) + u"b"_s), (QList<TSym>{{ESymIdent, u"a"_s}, {ESymEol, {}}}));
}

TEST(CVelumScanner, RefusesALineThatItsPositionsCannotCount) {
  CVelumScanner scanner;
  scanner.SetLine(QString(32766, u'a'));
  try {
    scanner.SetLine(QString(32767, u'a'));
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostOverflow);
  }
}

TEST_F(ScannerFile, NamesALineThatIsTooLong) {
  CVelumScanner scanner;
  scanner.SetFile(Open("a\n" + QByteArray(32767, 'b')));
  scanner.BeginFile();
  qint32 sym = 0;
  QString str;
  qint16 keyword = 0;
  scanner.GetSym(sym, str, keyword);
  try {
    scanner.GetSym(sym, str, keyword);
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostOverflow);
    EXPECT_TRUE(e.Descr().contains(u"line 2: the line has 32767 characters"_s)) << e.what();
  }
}

TEST(CVelumScanner, NamesItsSymbols) {
  const std::pair<qint32, const char16_t*> names[] = {
      {0, u"<ident>"},  {1, u"<number>"}, {2, u"<string>"}, {3, u"#"},   {4, u","},
      {5, u"("},        {6, u")"},        {7, u"."},        {8, u"="},   {9, u"<"},
      {10, u">"},       {11, u"/"},       {12, u"?"},       {13, u"*"},  {14, u"+"},
      {15, u"-"},       {16, u"<>"},      {17, u"<="},      {18, u">="}, {19, u"#"},
      {20, u"&"},       {50, u"<link>"},  {51, u"<char>"},  {52, u""},   {53, u"**"},
      {54, u"//"},      {55, u"__"},      {56, u""},        {57, u""},   {97, u"<keyword>"},
      {98, u"<other>"}, {99, u"<eol>"},   {100, u"<eof>"},  {-1, u""},   {21, u""},
      {42, u""},        {101, u""}};
  for (const auto& [sym, name] : names)
    EXPECT_EQ(CVelumScanner::SymStr(sym), QString::fromUtf16(name)) << sym;
}

TEST(CVelumScanner, BeginsInLineMode) {
  CVelumScanner scanner;
  EXPECT_EQ(scanner.LineNum(), 0);
  EXPECT_EQ(scanner.LinePos(), 0);
  EXPECT_FALSE(scanner.StripComments());
  EXPECT_EQ(scanner.CsvDelim(), u","_s);
  scanner.SetLine(u"a"_s);
  EXPECT_EQ(scanner.LineNum(), 0);
  EXPECT_EQ(scanner.LinePos(), 1) << "the look-ahead is taken";
}

TEST_F(ScannerFile, ReadsSymbolsOverLines) {
  CVelumScanner scanner;
  scanner.SetFile(Open("a\r\n\r\n  b\r\n"));
  scanner.BeginFile();
  qint32 sym = 0;
  QString str;
  qint16 keyword = 0;
  scanner.GetSym(sym, str, keyword);
  EXPECT_EQ(str, u"a"_s);
  EXPECT_EQ(scanner.LineNum(), 1);
  scanner.GetSym(sym, str, keyword);
  EXPECT_EQ(str, u"b"_s);
  EXPECT_EQ(scanner.LineNum(), 3);
  scanner.GetSym(sym, str, keyword);
  EXPECT_EQ(sym, ESymEof);
  scanner.GetSym(sym, str, keyword);
  EXPECT_EQ(sym, ESymEof);
}

TEST_F(ScannerFile, AssertsThatThereIsAFile) {
  ScriptedPresenter presenter;
  CVelumScanner scanner;
  EXPECT_THROW(scanner.BeginFile(), CVelumException);
  EXPECT_TRUE(presenter.LastText().contains(u"Start file set"_s));
  presenter.SetDefaultAnswer(true);
  EXPECT_THROW(scanner.BeginFile(), CVelumException) << "overruled, there is still no file";
}

TEST_F(ScannerFile, ReadsOneFileOnly) {
  ScriptedPresenter presenter;
  CVelumScanner scanner;
  scanner.SetFile(Open(""));
  scanner.BeginFile();
  qint32 sym = 0;
  QString str;
  qint16 keyword = 0;
  scanner.GetSym(sym, str, keyword);
  EXPECT_EQ(sym, ESymEof);
  scanner.GetWikiSym(sym, str);
  EXPECT_EQ(sym, ESymEof);
  bool eof = false;
  scanner.GetAllUntil(u'<', true, str, eof);
  EXPECT_TRUE(eof);
  scanner.SetFile(Open("a\r\n"));
  EXPECT_THROW(scanner.BeginFile(), CVelumException);
  EXPECT_TRUE(presenter.LastText().contains(u"ReadFileLine eof"_s));
}

TEST_F(ScannerFile, ReadsCsvCells) {
  EXPECT_EQ(Cells("a, b ,\"c\"\r\n"), u"a|b |c|\n"_s);
  EXPECT_EQ(Cells("a,\r\n"), u"a|\n"_s) << "no cell behind a delimiter at the end";
  EXPECT_EQ(Cells("a,,b\r\n"), u"a||b|\n"_s);
  EXPECT_EQ(Cells("\"x\"\"y\"\r\n"), u"x\"\"y|\n"_s);
  EXPECT_EQ(Cells("\"x\" , y\r\n"), u"x||y|\n"_s) << "what stands behind a closing quote is the next cell";
  EXPECT_EQ(Cells("\"x\"y,z\r\n"), u"x|y|z|\n"_s);
  EXPECT_EQ(Cells("a;b\r\n", u";"_s), u"a|b|\n"_s);
}

TEST_F(ScannerFile, CarriesAQuotedCellOverLines) {
  EXPECT_EQ(Cells("\"x\r\ny\",z\r\n"), u"x\r\ny|z|\n"_s);
  EXPECT_EQ(Cells("\"x\r\n\"y\",z\r\n"), u"x\r\n\"y|z|\n"_s)
      << "a quote that begins a line does not close the cell";
  EXPECT_EQ(Cells("\"x\r\ny"), u"x\r\ny<eof>"_s);
}

TEST_F(ScannerFile, KeepsAnEmptyLineInsideAQuotedCell) {
  EXPECT_EQ(Cells("\"x\r\n\r\ny\",z\r\n"), u"x\r\n\r\ny|z|\n"_s);
  EXPECT_EQ(Cells("\"\r\n\r\n"), u"\r\n<eof>"_s);
}

TEST_F(ScannerFile, EndsACellAtTheCharacterOne) {
  EXPECT_EQ(Cells("a\x01"
                  "b,c\r\n"),
            u"a|\n"_s);
  EXPECT_EQ(Cells("\"a\x01"
                  "b\",c\r\nd\",e\r\n"),
            u"a\r\nd|e|\n"_s);
}

TEST(CVelumScanner, ReadsWikiMarkup) {
  EXPECT_EQ(WikiTokens(u"**"_s), (QList<TSym>{{ESymBold, u"**"_s}}));
  EXPECT_EQ(WikiTokens(u"*a"_s), (QList<TSym>{{ESymChar, u"*"_s}, {ESymChar, u"a"_s}}));
  EXPECT_EQ(WikiTokens(u"//__\\\\"_s),
            (QList<TSym>{{ESymItalic, u"//"_s}, {ESymUnderline, u"__"_s}, {ESymBackslash, u"\\\\"_s}}));
  EXPECT_EQ(WikiTokens(u"***"_s), (QList<TSym>{{ESymBold, u"**"_s}, {ESymChar, u"*"_s}}));
}

TEST(CVelumScanner, ReadsWikiLinks) {
  EXPECT_EQ(WikiTokens(u"[[a]b]]c"_s), (QList<TSym>{{ESymLink, u"a]b"_s}, {ESymChar, u"c"_s}}));
  EXPECT_EQ(WikiTokens(u"[a"_s), (QList<TSym>{{ESymChar, u"["_s}, {ESymChar, u"a"_s}}));
  EXPECT_EQ(WikiTokens(u"["_s), (QList<TSym>{{ESymChar, u"["_s}}));
  EXPECT_EQ(WikiTokens(u"[[ab"_s), (QList<TSym>{{ESymLink, u"ab"_s}}));
  EXPECT_EQ(WikiTokens(u"[[ab]"_s), (QList<TSym>{{ESymLink, u"ab"_s}})) << "a last bracket is lost";
}

TEST(CVelumScanner, ReadsWikiLineBreaks) {
  EXPECT_EQ(WikiTokens(u"\r\n"_s), (QList<TSym>{{ESymLineBreak, u"\r\n"_s}}));
  EXPECT_EQ(WikiTokens(u"\r\n\r\n"_s), (QList<TSym>{{ESymParagraph, u"\r\n\r\n"_s}}));
  EXPECT_EQ(WikiTokens(u"\r\n\r\n\r\n"_s),
            (QList<TSym>{{ESymParagraph, u"\r\n\r\n"_s}, {ESymLineBreak, u"\r\n"_s}}));
  EXPECT_EQ(WikiTokens(u"\ra"_s), (QList<TSym>{{ESymChar, u"\r"_s}, {ESymChar, u"a"_s}}));
}

TEST_F(ScannerFile, ReadsRawText) {
  CVelumScanner scanner;
  scanner.SetFile(Open("ab\r\ncd<e"));
  scanner.BeginFile();
  QString str;
  bool eof = true;
  scanner.GetAllUntil(u'<', true, str, eof);
  EXPECT_EQ(str, u"ab\r\ncd"_s);
  EXPECT_FALSE(eof);
  scanner.GetAllUntil(u'<', true, str, eof);
  EXPECT_EQ(str, QString()) << "the stop character stays";
  scanner.GetAllUntil(u'>', false, str, eof);
  EXPECT_EQ(str, u"<e"_s);
  EXPECT_TRUE(eof);
}

TEST_F(ScannerFile, PutsLineEndsAheadOfAChunkThatWasNotMoved) {
  const QByteArray first(101, 'a');
  CVelumScanner scanner;
  scanner.SetFile(Open(first + "bb\r\ncc<"));
  scanner.BeginFile();
  QString str;
  bool eof = false;
  scanner.GetLongAllUntil(u'<', true, str, eof);
  EXPECT_EQ(str, QString::fromLatin1(first) + u"\r\nbbcc"_s);
}

TEST(CVelumScanner, ViewsAreTheSymbolsOfTheLine) {
  const QString line = u"<Ab a1=\"x y\" 12 /> é >= <> \"open"_s;
  CVelumScanner scanner;
  scanner.SetLine(line);
  QList<TSym> syms;
  QStringView str;
  qint32 sym = ESymEof;
  do {
    sym = scanner.GetSymView(str);
    syms.append({sym, str.toString()});
  } while (sym != ESymEol && syms.size() < 1000);
  EXPECT_EQ(syms, Symbols(line));
}

TEST(CVelumScanner, TakesTagsThatStandTogether) {
  const auto taken = [](const QString& aLine, QStringView aName, bool aEnd) {
    CVelumScanner scanner;
    scanner.SetLine(aLine);
    if (!scanner.TakeTag(aName, aEnd)) {
      QStringView str;
      EXPECT_EQ(scanner.GetSymView(str), aLine.startsWith(u'/') ? ESymSlash : ESymIdent)
          << "nothing was taken";
      return u"-"_s;
    }
    QString rest;
    bool eof = false;
    scanner.GetAllUntil(u'!', false, rest, eof);
    return rest;
  };
  EXPECT_EQ(taken(u"Elem a=\"1\">!"_s, u"Elem", false), u" a=\"1\">"_s);
  EXPECT_EQ(taken(u"Elem!"_s, u"Elem", false), QString());
  EXPECT_EQ(taken(u"Elem"_s, u"Elem", false), QString()) << "the end of the line may follow";
  EXPECT_EQ(taken(u"Elem2>"_s, u"Elem", false), u"-"_s);
  EXPECT_EQ(taken(u"elem>"_s, u"Elem", false), u"-"_s);
  EXPECT_EQ(taken(u"El"_s, u"Elem", false), u"-"_s);
  EXPECT_EQ(taken(u"/Elem>x!"_s, u"Elem", true), u"x"_s);
  EXPECT_EQ(taken(u"/Elem>"_s, u"Elem", true), QString());
  EXPECT_EQ(taken(u"/Elem>=!"_s, u"Elem", true), u"-"_s);
  EXPECT_EQ(taken(u"/Elem"_s, u"Elem", true), u"-"_s);
  EXPECT_EQ(taken(u"/Elem >"_s, u"Elem", true), u"-"_s);
  EXPECT_EQ(taken(u"/"_s, u"Elem", true), u"-"_s);
  EXPECT_EQ(taken(u"Elem>"_s, u"Elem", true), u"-"_s);
}

TEST(CVelumScanner, TakesAttributesThatStandTogether) {
  const auto taken = [](const QString& aLine) {
    CVelumScanner scanner;
    scanner.SetLine(aLine);
    QStringView str;
    if (scanner.TakeAttrValue(str)) return str.toString();
    EXPECT_EQ(scanner.GetSymView(str), ESymEqual) << "nothing was taken";
    return u"-"_s;
  };
  EXPECT_EQ(taken(u"=\"a b\" c"_s), u"a b"_s);
  EXPECT_EQ(taken(u"=\"\""_s), QString());
  EXPECT_EQ(taken(u"= \"a\""_s), u"-"_s);
  EXPECT_EQ(taken(u"=\"a"_s), u"-"_s);
  EXPECT_EQ(taken(u"="_s), u"-"_s);
  EXPECT_EQ(taken(u"=a"_s), u"-"_s);
  EXPECT_EQ(taken(u"=\"a\x01z\""_s), u"-"_s);
}

TEST_F(ScannerFile, TakesTextsOfOneLine) {
  CVelumScanner scanner;
  scanner.SetFile(Open("ab<\r\nc\r\nd<"));
  scanner.BeginFile();
  QStringView view;
  EXPECT_TRUE(scanner.GetViewUntil(u'<', view));
  EXPECT_EQ(view, u"ab");
  EXPECT_TRUE(scanner.GetViewUntil(u'<', view)) << "the stop character stays";
  EXPECT_EQ(view, u"");
  EXPECT_EQ(scanner.GetSymView(view), ESymLess);
  EXPECT_FALSE(scanner.GetViewUntil(u'<', view)) << "at the end of a line";
  EXPECT_EQ(scanner.GetSymView(view), ESymIdent);
  QString str;
  bool eof = false;
  scanner.GetLongAllUntil(u'<', false, str, eof);
  EXPECT_EQ(str, u"d"_s);
}

TEST(CVelumScanner, FiltersNumbers) {
  CVelumScanner scanner;
  QString kept;
  scanner.FilterNumberStr(u"EUR -1'234,50 x"_s, u","_s, kept);
  EXPECT_EQ(kept, u"-1234,50"_s);
  scanner.FilterNumberStr(QString(), u"."_s, kept);
  EXPECT_EQ(kept, QString());
}

TEST(CVelumScanner, TellsShortNumbers) {
  CVelumScanner scanner;
  for (const QString& yes : {u""_s, u"-"_s, u"12-3"_s, u"32767"_s, u"-32768"_s, u"+5"_s})
    EXPECT_TRUE(scanner.IsShortNumberStr(yes)) << yes.toStdString();
  for (const QString& no : {QString(400, u'9'), u"32768"_s, u"-32769"_s, u"1.5"_s, u"a"_s, u" 1"_s})
    EXPECT_FALSE(scanner.IsShortNumberStr(no)) << no.toStdString();
}
