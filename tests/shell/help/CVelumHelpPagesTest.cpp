// Every window, control and message has a help page that says something of its own.
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "script/CVelumCompiler.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumMsgForm.h"
#include "shell/dialogs/CVelumSave.h"
#include "shell/frame/CVelumCommandTable.h"
#include "shell/help/CVelumHelpBook.h"
#include "shell/help/CVelumHelpForm.h"
#include "support/TestTree.h"
#include "toolkit/CVelumWinMan.h"

#include <QDirIterator>
#include <QHelpEngine>
#include <QMenu>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <QXmlStreamReader>
#include <algorithm>

namespace {

constexpr int EMinWords = 40;
// Of the runs of three words, the part that two pages may share.
constexpr double EMaxShared = 0.4;

QString Plain(QString aHtml) {
  static const QRegularExpression around(
      u"<head>.*</head>|<p class=\"(way|status)\">.*?</p>|<h1>.*?</h1>|<ul class=\"parts\">.*?</ul>"_s,
      QRegularExpression::DotMatchesEverythingOption);
  static const QRegularExpression tag(u"<[^>]*>"_s);
  return aHtml.remove(around).replace(tag, u" "_s);
}

// Without what may be a name: emphasised words, quotes of code, and words with a capital inside a sentence.
QString WithoutNames(QString aHtml) {
  static const QRegularExpression name(u"<(strong|em|code|a)[^>]*>.*?</\\1>"_s,
                                       QRegularExpression::DotMatchesEverythingOption);
  static const QRegularExpression capital(u"\\b[A-Z]\\w*"_s);
  return Plain(aHtml.remove(name)).remove(capital);
}

QStringList Words(const QString& aText) {
  static const QRegularExpression between(u"[^\\w']+"_s, QRegularExpression::UseUnicodePropertiesOption);
  return aText.toLower().split(between, Qt::SkipEmptyParts);
}

QSet<QString> Runs(const QStringList& aWords) {
  QSet<QString> runs;
  for (qsizetype i = 2; i < aWords.size(); ++i)
    runs.insert(aWords[i - 2] + u' ' + aWords[i - 1] + u' ' + aWords[i]);
  return runs;
}

// The part of the smaller set that is in both.
double Shared(const QSet<QString>& aOne, const QSet<QString>& aOther) {
  if (aOther.size() < aOne.size()) return Shared(aOther, aOne);
  const auto both =
      std::count_if(aOne.begin(), aOne.end(), [&](const QString& aRun) { return aOther.contains(aRun); });
  return aOne.isEmpty() ? 1.0 : static_cast<double>(both) / static_cast<double>(aOne.size());
}

class CVelumHelpPagesTest : public ShellTest {
protected:
  CVelumHelpPagesTest() { EXPECT_TRUE(iBook.IsOpen()); }

  // The page for a control, or for a form without one. Controls that only differ by a number share one.
  [[nodiscard]] QString PageOf(const QString& aForm, const QString& aControl = {}) const {
    static const QRegularExpression number(u"\\d+$"_s);
    QString name = CVelumMsg::HelpPage(aForm, aControl);
    if (!iBook.Data(CVelumHelpBook::Url(name)).isEmpty()) return name;
    name.remove(number);
    return iBook.Data(CVelumHelpBook::Url(name)).isEmpty() ? QString() : name;
  }
  void ExpectPage(const QString& aForm, const QString& aControl = {}) const {
    EXPECT_FALSE(PageOf(aForm, aControl).isEmpty())
        << "no help page " << CVelumMsg::HelpPage(aForm, aControl).toStdString();
  }

  // Whether a widget belongs to a window that stands inside another one.
  static bool IsInOtherForm(const QWidget& aWidget, const QWidget& aForm) {
    const QWidget* above = &aWidget;
    while (above != &aForm && !above->objectName().startsWith(u"CVelum"_s)) above = above->parentWidget();
    return above != &aForm;
  }
  // What a user can work with: named widgets that take the focus, menus and menu items.
  void ExpectPages(const QString& aForm, const QWidget& aWidget) const {
    ExpectPage(aForm);
    for (const QWidget* widget : aWidget.findChildren<QWidget*>()) {
      if (IsInOtherForm(*widget, aWidget)) continue;
      const bool isControl = widget->focusPolicy() != Qt::NoFocus || qobject_cast<const QMenu*>(widget);
      if (isControl && widget->objectName().startsWith(u'f')) ExpectPage(aForm, widget->objectName());
    }
    for (const QAction* action : aWidget.findChildren<QAction*>())
      if (!action->objectName().isEmpty() && !action->objectName().startsWith(u'_'))
        ExpectPage(aForm, action->objectName());
  }

  [[nodiscard]] bool SaysItIsMissing(const QString& aPage) const {
    const QByteArray html = iBook.Data(CVelumHelpBook::Url(aPage));
    return html.contains("<p class=\"status\"><b>Not in this version.</b>");
  }

  CVelumHelpBook iBook;
};

// The form and the controls that a design file names.
void ReadDesign(const QString& aPath, QString& aForm, QStringList& aControls) {
  static const QSet<QString> passive{u"QLabel"_s, u"QWidget"_s, u"QFrame"_s, u"QGroupBox"_s, u"Line"_s};
  QFile file(aPath);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << aPath.toStdString();
  QXmlStreamReader xml(&file);
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    const QString name = xml.attributes().value(u"name"_s).toString();
    if (xml.name() == u"widget" && aForm.isEmpty())
      aForm = name;
    else if ((xml.name() == u"widget" && !passive.contains(xml.attributes().value(u"class"_s).toString())) ||
             xml.name() == u"action")
      aControls.append(name);
  }
}

} // namespace

TEST_F(CVelumHelpPagesTest, EveryMessageHasAPage) {
  int messages = 0;
  for (qint32 msg = 0; msg <= 1100; ++msg) {
    const QString name = CVelumMsg::Name(msg);
    if (name.isEmpty()) continue;
    ++messages;
    ExpectPage(u"MsgForm"_s, name);
  }
  EXPECT_GE(messages, 50);
}

TEST_F(CVelumHelpPagesTest, EveryRegisteredWindowHasAPage) {
  Start();
  for (int i = 0; i < CVelumWinMan::FormCount(); ++i)
    // A name in the table without a window.
    if (CVelumWinMan::FormName(i) != u"CVelumSortKeyEdit"_s) ExpectPage(CVelumWinMan::FormName(i));
}

TEST_F(CVelumHelpPagesTest, PagesOfWindowsThatAreNotThereSaySo) {
  Start();
  QStringList missing;
  for (int i = 0; i < CVelumWinMan::FormCount(); ++i) {
    const QString& name = CVelumWinMan::FormName(i);
    const QString page = PageOf(name);
    if (page.isEmpty()) continue;
    EXPECT_EQ(SaysItIsMissing(page), !CVelumWinMan::HasForm(name)) << page.toStdString();
    if (!CVelumWinMan::HasForm(name)) missing.append(page);
  }
  EXPECT_GE(missing.size(), 5);
  // So do the pages of their controls.
  for (const QUrl& url : iBook.Engine().files(u"orvelles"_s, QString(), {})) {
    const QString page = CVelumHelpBook::Name(url);
    const auto isPart = [&](const QString& aForm) { return page.startsWith(aForm); };
    const bool isMissing = std::any_of(missing.begin(), missing.end(), isPart);
    EXPECT_TRUE(!isMissing || SaysItIsMissing(page)) << page.toStdString();
  }
}

TEST_F(CVelumHelpPagesTest, PagesOfCommandsWhoseWindowIsNotThereSaySo) {
  Start();
  for (const TVelumCommand& command : CVelumCommandTable::Menus()) {
    const QString page = PageOf(u"CVelumFrame"_s, command.iAction.toString());
    const bool there = command.iForm.isEmpty() || CVelumWinMan::HasForm(command.iForm.toString());
    EXPECT_EQ(SaysItIsMissing(page), !there) << page.toStdString();
  }
  EXPECT_TRUE(iBook.Data(CVelumHelpBook::Url(u"Tutorial"_s)).contains("Not in this version"));
}

TEST_F(CVelumHelpPagesTest, EveryControlOfAWindowHasAPage) {
  Start(CopyStack(u"a.Orvelle"_s));
  int forms = 0;
  for (int i = 0; i < CVelumWinMan::FormCount(); ++i) {
    const QString& name = CVelumWinMan::FormName(i);
    if (!CVelumWinMan::HasForm(name)) continue;
    ++forms;
    ExpectPages(name, *CVelumWinMan::NameToForm(name)->Widget());
  }
  EXPECT_GE(forms, 2);
  ExpectPages(u"MsgForm"_s, CVelumMsgForm(gFrame));
  ExpectPages(u"CVelumSave"_s, CVelumSave(u"x"_s, gFrame));
  CVelumHelpForm::ShowPage({});
  ExpectPages(u"CVelumHelpForm"_s, *CVelumHelpForm::Instance());
  delete CVelumHelpForm::Instance();
}

TEST_F(CVelumHelpPagesTest, EveryControlOfADesignHasAPage) {
  int forms = 0;
  QDirIterator files(TestTree::Source() + u"/src"_s, {u"*.ui"_s}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QString form;
    QStringList controls;
    ReadDesign(files.next(), form, controls);
    ++forms;
    // The page of the message box itself is that of its message.
    const QString base = form == u"CVelumMsgForm"_s ? u"MsgForm"_s : form;
    ExpectPage(base);
    for (const QString& control : controls) ExpectPage(base, control);
  }
  EXPECT_GE(forms, 4);
}

TEST_F(CVelumHelpPagesTest, EveryPageSaysSomethingOfItsOwn) {
  const QList<QUrl> urls = iBook.Engine().files(u"orvelles"_s, QString(), {});
  ASSERT_GT(urls.size(), 100);
  QHash<QString, QSet<QString>> pages;
  QSet<QString> texts;
  for (const QUrl& url : urls) {
    const QString html = QString::fromUtf8(iBook.Data(url));
    const QString name = CVelumHelpBook::Name(url);
    EXPECT_GE(Words(Plain(html)).size(), EMinWords) << name.toStdString();
    const QStringList words = Words(WithoutNames(html));
    EXPECT_FALSE(texts.contains(words.join(u' '))) << name.toStdString() << " equals another page";
    texts.insert(words.join(u' '));
    pages.insert(name, Runs(words));
  }
  for (auto one = pages.cbegin(); one != pages.cend(); ++one)
    for (auto other = std::next(one); other != pages.cend(); ++other)
      EXPECT_LT(Shared(*one, *other), EMaxShared)
          << one.key().toStdString() << " is nearly " << other.key().toStdString();
}

TEST_F(CVelumHelpPagesTest, ScriptsOfTheTutorialCompile) {
  const QString html = QString::fromUtf8(iBook.Data(CVelumHelpBook::Url(u"Tutorial"_s)));
  static const QRegularExpression code(u"<pre><code>(.*?)</code></pre>"_s,
                                       QRegularExpression::DotMatchesEverythingOption);
  int scripts = 0;
  for (const QRegularExpressionMatch& match : code.globalMatch(html)) {
    const QString source =
        QTextDocumentFragment::fromHtml(u"<pre>"_s + match.captured(1) + u"</pre>"_s).toPlainText();
    const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
    CVelumCompiler compiler;
    EXPECT_NO_THROW(compiler.Compile(CVelumLib::ToCrLf(source), *handlers)) << source.toStdString();
    EXPECT_EQ(handlers->Count(), 1);
    ++scripts;
  }
  EXPECT_EQ(scripts, 1);
}
