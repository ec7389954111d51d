#include "HelpBook.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

bool ReadText(const QString& aPath, QString& aText) {
  QFile file(aPath);
  if (!file.open(QIODevice::ReadOnly)) return false;
  aText = QString::fromUtf8(file.readAll());
  return true;
}

// Takes the lines "Index: ..." out.
QStringList TakeIndex(QString& aText) {
  static const QRegularExpression line(u"^Index: (.*)\\n?"_s, QRegularExpression::MultilineOption);
  QStringList words;
  for (const QRegularExpressionMatch& match : line.globalMatch(aText))
    for (const QString& word : match.captured(1).split(u';', Qt::SkipEmptyParts))
      words.append(word.trimmed());
  aText.remove(line);
  return words;
}

// Takes the line "Status: not in this version" out; whether it was there.
bool TakeMissing(QString& aText) {
  static const QRegularExpression line(u"^Status: not in this version\\n?"_s,
                                       QRegularExpression::MultilineOption);
  const bool missing = aText.contains(line);
  aText.remove(line);
  return missing;
}

// Takes the first line "# Title" out.
QString TakeTitle(QString& aText) {
  static const QRegularExpression line(u"\\A# (.*)\\n"_s);
  const QString title = line.match(aText).captured(1).trimmed();
  aText.remove(line);
  return title;
}

} // namespace

bool HelpBook::Read(const QString& aContents) {
  QString text;
  if (!ReadText(aContents, text)) return Fail(u"cannot read "_s + aContents);
  const QString folder = QFileInfo(aContents).path();
  for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts)) {
    const QString path = line.trimmed();
    const auto indent = line.indexOf(path);
    if (!ReadPage(folder + u'/' + path, static_cast<int>(indent) / 2)) return false;
  }
  return CheckLinks();
}

bool HelpBook::ReadPage(const QString& aPath, int aLevel) {
  THelpPage page;
  if (!ReadText(aPath, page.iText)) return Fail(u"cannot read "_s + aPath);
  page.iName = QFileInfo(aPath).completeBaseName();
  page.iLevel = aLevel;
  QStringList sections;
  if (QFileInfo(aPath).dir().dirName() == u"forms"_s) {
    static const QRegularExpression heading(u"^## "_s, QRegularExpression::MultilineOption);
    sections = page.iText.split(heading);
    page.iText = sections.takeFirst();
  }
  page.iIndex = TakeIndex(page.iText);
  page.iMissing = TakeMissing(page.iText);
  page.iTitle = TakeTitle(page.iText);
  const QString form = page.iName;
  const bool missing = page.iMissing;
  if (!Add(page)) return false;
  for (const QString& section : sections) {
    const QString heading = section.section(u'\n', 0, 0);
    THelpPage part;
    part.iName = form + heading.section(u": "_s, 0, 0);
    part.iTitle = heading.section(u": "_s, 1);
    part.iText = section.section(u'\n', 1);
    part.iIndex = TakeIndex(part.iText);
    part.iMissing = TakeMissing(part.iText) || missing;
    part.iLevel = aLevel + 1;
    if (!Add(part)) return false;
  }
  return true;
}

bool HelpBook::Add(THelpPage aPage) {
  if (aPage.iTitle.isEmpty()) return Fail(u"no title: "_s + aPage.iName);
  for (const THelpPage& page : iPages)
    if (page.iName == aPage.iName) return Fail(u"two pages of one name: "_s + aPage.iName);
  for (auto i = iPages.size() - 1; i >= 0 && aPage.iParent < 0; --i)
    if (iPages[i].iLevel < aPage.iLevel) aPage.iParent = static_cast<int>(i);
  iPages.append(std::move(aPage));
  return true;
}

QList<int> HelpBook::Children(int aPage) const {
  QList<int> children;
  for (int i = aPage + 1; i < iPages.size(); ++i)
    if (iPages[i].iParent == aPage) children.append(i);
  return children;
}

bool HelpBook::CheckLinks() {
  QSet<QString> names;
  for (const THelpPage& page : iPages) names.insert(page.iName);
  static const QRegularExpression link(u"\\]\\(([^)#]*)\\.htm"_s);
  for (const THelpPage& page : iPages)
    for (const QRegularExpressionMatch& match : link.globalMatch(page.iText))
      if (!names.contains(match.captured(1)))
        return Fail(page.iName + u": link to a page that is not there: "_s + match.captured(1));
  return true;
}

bool HelpBook::Fail(const QString& aError) {
  iError = aError;
  return false;
}
