// The page of the help window.
#pragma once

#include "core/CVelumObject.h"

#include <QTextBrowser>

class CVelumHelpBook;

// Shows pages of the help file in the colours and font of the desktop; web addresses go to the browser.
class CVelumHelpPage final : public QTextBrowser {
  Q_OBJECT

public:
  explicit CVelumHelpPage(QWidget* aParent = nullptr);

  // The book must live as long as the page; none: there is nothing to show.
  void SetBook(const CVelumHelpBook* aBook) { iBook = aBook; }
  [[nodiscard]] QVariant loadResource(int aType, const QUrl& aUrl) override;

protected:
  void doSetSource(const QUrl& aUrl, QTextDocument::ResourceType aType) override;
  void changeEvent(QEvent* aEvent) override;

private:
  const CVelumHelpBook* iBook = nullptr;
};
