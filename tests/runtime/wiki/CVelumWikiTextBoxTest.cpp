#include "runtime/wiki/CVelumWikiTextBox.h"

#include "core/CVelumError.h"
#include "core/CVelumMsg.h"
#include "support/CaseFiles.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <QJsonArray>

namespace {

// What stands between the start of the first paragraph and its end.
QString FirstPara(const CVelumWikiTextBox& aBox) {
  const QString text = aBox.TextStr();
  const qsizetype from = text.indexOf(u"\\fs20 "_s) + 6;
  return text.sliced(from, text.indexOf(u"\\par "_s) - from);
}

QString LinkAt(const CVelumWikiTextBox& aBox, int aPos) {
  QString target;
  return aBox.GetLink(aPos, target) ? target : u"-"_s;
}

Ref<CVelumFont> FontOf(const QJsonValue& aFont) {
  if (!aFont.isObject()) return nullptr;
  auto font = MakeRef<CVelumFont>(aFont[u"face_name"].toString(), static_cast<qint16>(aFont[u"size"].toInt()),
                                  aFont[u"fore_color"].toInt());
  font->SetFlags(aFont[u"flags"].toInt());
  return font;
}

class WikiCases : public testing::TestWithParam<std::string> {};

TEST_P(WikiCases, GivesTheRtfAndTheLinks) {
  const QString path = CaseFiles::Folder("wiki") + u'/' + QString::fromStdString(GetParam());
  const QJsonObject expected = CaseFiles::Expected(path);
  CVelumWikiTextBox box;
  box.SetFont(FontOf(expected[u"font"]));
  box.SetStr(QString::fromUtf8(CaseFiles::Bytes(path)));
  EXPECT_EQ(box.TextStr(), expected[u"rtf"].toString());
  const QJsonArray links = expected[u"links"].toArray();
  ASSERT_EQ(box.Links().size(), links.size());
  for (qsizetype i = 0; i < links.size(); ++i) {
    EXPECT_EQ(box.Links()[i].iStart, links[i][u"start"].toInt());
    EXPECT_EQ(box.Links()[i].iLen, links[i][u"len"].toInt());
    EXPECT_EQ(box.Links()[i].iTarget, links[i][u"target"].toString());
    EXPECT_EQ(box.Links()[i].iText, links[i][u"text"].toString());
  }
  const QJsonObject linkAt = expected[u"linkAt"].toObject();
  for (auto at = linkAt.begin(); at != linkAt.end(); ++at)
    EXPECT_EQ(LinkAt(box, at.key().toInt()), at->isNull() ? u"-"_s : at->toString())
        << at.key().toStdString();
}

INSTANTIATE_TEST_SUITE_P(CVelumWikiTextBox, WikiCases,
                         testing::ValuesIn(CaseFiles::Names("wiki", u"*.txt"_s)), CaseFiles::TestName);

TEST(CVelumWikiTextBox, AnEmptySourceIsOneEmptyParagraph) {
  CVelumWikiTextBox box;
  EXPECT_EQ(box.TextStr(), QString()) << "nothing was set";
  box.SetStr(QString());
  EXPECT_EQ(FirstPara(box), QString());
  EXPECT_EQ(box.TextStr().count(u"\\par "_s), 1);
  EXPECT_EQ(box.ObjDescr(), u"CVelumWikiTextBox"_s);
}

TEST(CVelumWikiTextBox, MarkupSwitchesStyles) {
  CVelumWikiTextBox box;
  box.SetStr(u"a**b**c//d//__e__"_s);
  EXPECT_EQ(FirstPara(box), u"a\\b1 b\\b0 c\\i1 d\\i0 \\ul1 e\\ul0 "_s);
  box.SetStr(u"a*b/c_d\\e[f"_s);
  EXPECT_EQ(FirstPara(box), u"a*b/c_d\\\\e[f"_s) << "a single one stands for itself";
}

TEST(CVelumWikiTextBox, AStyleLeftOnEndsWithTheText) {
  CVelumWikiTextBox box;
  box.SetStr(u"**a"_s);
  EXPECT_TRUE(box.TextStr().endsWith(u"\\b1 a\\par }"_s));
  box.SetStr(u"b**c"_s);
  EXPECT_TRUE(box.TextStr().endsWith(u"b\\b1 c\\par }"_s));
}

TEST(CVelumWikiTextBox, AnEmptyLineEndsAllStyles) {
  CVelumWikiTextBox box;
  box.SetStr(u"**//__a\r\n\r\nb**c"_s);
  EXPECT_EQ(FirstPara(box), u"\\b1 \\i1 \\ul1 a\\b0 \\i0 \\ul0 "_s);
  EXPECT_TRUE(box.TextStr().endsWith(u"\\fs10 \\par \\uc1\\pard\\fi-0\\li0\\tx0\\f0\\fs20 b\\b1 c\\par }"_s));
}

TEST(CVelumWikiTextBox, ALineEndIsABlankAndDroppedBehindABreak) {
  CVelumWikiTextBox box;
  box.SetStr(u"a\r\nb"_s);
  EXPECT_EQ(FirstPara(box), u"a b"_s);
  box.SetStr(u"a\\\\\r\nb\\\\c"_s);
  EXPECT_EQ(box.TextStr().count(u"\\fs20 "_s), 3);
  EXPECT_FALSE(box.TextStr().contains(u"\\fs20  "_s)) << "no blank in front of b";
}

TEST(CVelumWikiTextBox, LinksAreFoundByPosition) {
  CVelumWikiTextBox box;
  box.SetStr(u"[[Home]]"_s);
  EXPECT_EQ(LinkAt(box, 0), u"Home"_s);
  EXPECT_EQ(LinkAt(box, 3), u"Home"_s);
  EXPECT_EQ(LinkAt(box, 4), u"-"_s);
  EXPECT_EQ(LinkAt(box, -1), u"-"_s);
  box.SetStr(u"[[Go|x]]"_s);
  EXPECT_EQ(LinkAt(box, 0), u"Go"_s);
  EXPECT_EQ(LinkAt(box, 1), u"Go"_s) << "short links are longer";
  EXPECT_EQ(LinkAt(box, 2), u"-"_s);
  box.SetStr(u"[[Go|xyz]]"_s);
  EXPECT_EQ(LinkAt(box, 3), u"-"_s);
}

TEST(CVelumWikiTextBox, TheSplitIsAtTheFirstBar) {
  CVelumWikiTextBox box;
  box.SetStr(u"[[a|b|c]][[|d]][[e|]]"_s);
  ASSERT_EQ(box.Links().size(), 3);
  EXPECT_EQ(box.Links()[0].iTarget, u"a"_s);
  EXPECT_EQ(box.Links()[0].iText, u"b|c"_s);
  EXPECT_EQ(box.Links()[1].iTarget, QString());
  EXPECT_EQ(box.Links()[2].iLen, 0);
}

TEST(CVelumWikiTextBox, PositionsCountParagraphEndsAsTwo) {
  CVelumWikiTextBox box;
  box.SetStr(u"a\r\nb\\\\c\r\n\r\nd[[e]]"_s);
  EXPECT_EQ(box.Links()[0].iStart, 3 + 2 + 1 + 4 + 1);
  box.SetStr(u"\U0001F600{}[[e]]"_s);
  EXPECT_EQ(box.Links()[0].iStart, 4) << "UTF-16 units, and braces as themselves";
}

TEST(CVelumWikiTextBox, ALinkNestsNoMarkup) {
  CVelumWikiTextBox box;
  box.SetStr(u"[[**a**]]"_s);
  EXPECT_EQ(FirstPara(box), u"\\ul1 \\cf1 **a**\\cf0 \\ul0 "_s);
}

TEST(CVelumWikiTextBox, TakesAThousandAndOneLinks) {
  CVelumMsg::InitMessages();
  CVelumWikiTextBox box;
  box.SetStr(u"[[a]]"_s.repeated(1001));
  EXPECT_EQ(box.Links().size(), 1001);
  EXPECT_EQ(LinkAt(box, 1000), u"a"_s);
  try {
    box.SetStr(u"[[a]]"_s.repeated(1002));
    ADD_FAILURE() << "one too many";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostIndex);
  }
  EXPECT_EQ(box.TextStr(), QString()) << "no half text";
  EXPECT_TRUE(box.Links().isEmpty());
  box.SetStr(u"b"_s);
  EXPECT_EQ(FirstPara(box), u"b"_s) << "as if nothing had been";
}

TEST(CVelumWikiTextBox, TakesTheLongestText) {
  CVelumWikiTextBox box;
  box.SetStr(QString(32766, u'\u20AC'));
  EXPECT_EQ(box.TextStr().count(u"{\\u8364}"_s), 32766);
  box.SetStr(u"x"_s.repeated(32761) + u"[[l"_s);
  EXPECT_EQ(box.Links()[0].iStart, 32761);
  box.SetStr(u"[[l]]"_s);
  try {
    box.SetStr(QString(32767, u'a'));
    ADD_FAILURE() << "too long";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostOverflow);
  }
  EXPECT_EQ(LinkAt(box, 0), u"-"_s) << "the links of the text before are gone";
}

} // namespace
