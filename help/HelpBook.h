// The pages of the help, read from Markdown.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

struct THelpPage {
  QString iName;         // of the page's file, without ending
  QString iTitle;        // its first heading
  QString iText;         // Markdown, without that heading
  QStringList iIndex;    // further words for the index
  bool iMissing = false; // what it tells of is not in this version
  int iLevel = 0;        // depth in the contents
  int iParent = -1;      // the page above it in the contents
};

// Reads a list of Markdown files, a path a line, two blanks of indentation for each level of the contents.
//
// The name of a page is that of its file. A page begins with a line "# Title"; a line "Index: word; word" may
// stand anywhere; a line "Status: not in this version" marks the page and those below it in its file. In the
// files of a folder "forms" each line "## Name: Title" begins a page of its own, one level deeper, whose name
// is that of the file with Name behind it.
class HelpBook {
public:
  // False, with a reason in Error, for a file that cannot be read, a page without a title, a name used twice,
  // or a link to a page that is not there.
  [[nodiscard]] bool Read(const QString& aContents);
  [[nodiscard]] const QString& Error() const { return iError; }
  [[nodiscard]] const QList<THelpPage>& Pages() const { return iPages; }
  [[nodiscard]] QList<int> Children(int aPage) const;

private:
  [[nodiscard]] bool ReadPage(const QString& aPath, int aLevel);
  [[nodiscard]] bool Add(THelpPage aPage);
  [[nodiscard]] bool CheckLinks();
  [[nodiscard]] bool Fail(const QString& aError);

  QList<THelpPage> iPages;
  QString iError;
};
