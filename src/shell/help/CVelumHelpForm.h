// The help window.
#pragma once

#include "shell/help/CVelumHelpBook.h"

#include <QDialog>

class QHelpContentWidget;
class QHelpIndexWidget;
class QHelpSearchResult;
class CVelumHelpSearch;

namespace Ui {
class CVelumHelpForm;
}

// One window for all pages, with contents that follow the page, an index and a search. It can be read while a
// message box waits for its answer.
class CVelumHelpForm final : public QDialog {
  Q_OBJECT

public:
  ~CVelumHelpForm() override;

  // Opens the page of a name (without ending).
  static void ShowPage(const QString& aPage);
  // Frees the window from an owner that is about to go.
  static void Release(const QWidget* aOwner);
  // The window, when it has been opened.
  [[nodiscard]] static CVelumHelpForm* Instance();
  // The name that the page was asked by.
  [[nodiscard]] const QString& Page() const { return iPage; }

private:
  CVelumHelpForm();
  void ConnectButtons();
  // Whoever opens a tab can type at once.
  void ConnectTabs();
  void FocusTab();
  // Puts contents, index and search on their tabs.
  void AddBook();
  void AddContents(QHelpContentWidget* aContents);
  void AddIndex(QHelpIndexWidget* aIndex);
  void SetPage(const QString& aPage);
  void SetOwner(QWidget* aOwner);
  // Lets the contents show where a page stands.
  void FollowPage(const QUrl& aPage);
  void ShowResults(const QList<QHelpSearchResult>& aPages);

  std::unique_ptr<Ui::CVelumHelpForm> iUi;
  CVelumHelpBook iBook;
  std::unique_ptr<CVelumHelpSearch> iSearch; // goes before the book
  QHelpContentWidget* iContents = nullptr;
  QString iPage;
};
