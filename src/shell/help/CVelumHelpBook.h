// The help file: its pages, contents, index and search.
#pragma once

#include "core/CVelumObject.h"

#include <QTemporaryDir>
#include <QUrl>
#include <memory>

class QHelpEngine;

// Lies beside the program, or where an installation puts it. What the search needs is made on first use, and
// kept in the user's cache folder for this very file; where that cannot be written to, in a temporary folder.
class CVelumHelpBook {
public:
  // Opens the help file; IsOpen says whether that went well.
  CVelumHelpBook();
  ~CVelumHelpBook();

  // The path of the help file, empty when there is none.
  [[nodiscard]] static QString FileName();
  [[nodiscard]] bool IsOpen() const { return iEngine != nullptr; }
  // Only when it is open.
  [[nodiscard]] QHelpEngine& Engine() const { return *iEngine; }

  // The page for a name that the program gives. Controls that differ by their number share a page
  // ("GenTextBox3" has that of "GenTextBox"); without one it is the page of the form, and at last the start
  // page.
  [[nodiscard]] QUrl Find(const QString& aPage) const;
  // The content of a page, empty when there is none.
  [[nodiscard]] QByteArray Data(const QUrl& aPage) const;
  // The name of a page, without ending.
  [[nodiscard]] static QString Name(const QUrl& aPage);
  [[nodiscard]] static QUrl Url(const QString& aPage);

private:
  // Opens the file with its collection in a folder; false when that cannot be used.
  [[nodiscard]] bool Open(const QString& aFile, const QString& aFolder);

  std::unique_ptr<QTemporaryDir> iTemporary;
  std::unique_ptr<QHelpEngine> iEngine;
};
