// Writes the pages of the help as HTML, and the project from which the help file is made.
#pragma once

#include "HelpBook.h"

// Pages hold no colours or sizes of their own, so that they take those of the desktop.
class HelpWriter {
public:
  HelpWriter(const HelpBook& aBook, const QString& aFolder) : iBook(aBook), iFolder(aFolder) {}
  // Empties the folder and writes everything into it; false when a file cannot be written.
  [[nodiscard]] bool Write() const;

private:
  [[nodiscard]] bool WriteFile(const QString& aName, const QByteArray& aContent) const;
  [[nodiscard]] QString Html(int aPage) const;
  // The pages above a page, as links.
  [[nodiscard]] QString Way(int aPage) const;
  // The pages below a page, as a list of links.
  [[nodiscard]] QString Parts(int aPage) const;
  [[nodiscard]] QByteArray Project() const;

  const HelpBook& iBook;
  QString iFolder;
};
