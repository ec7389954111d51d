// The help window.
#pragma once

#include <QDialog>

class QTextBrowser;

// One window for all pages. It can be read while a message box waits for its answer.
class CVelumHelpForm final : public QDialog {
  Q_OBJECT

public:
  // Opens the page of a name (without ending).
  static void ShowPage(const QString& aPage);
  // Frees the window from an owner that is about to go.
  static void Release(const QWidget* aOwner);
  // The window, when it has been opened.
  [[nodiscard]] static CVelumHelpForm* Instance();
  [[nodiscard]] const QString& Page() const { return iPage; }

private:
  CVelumHelpForm();
  void SetPage(const QString& aPage);
  void SetOwner(QWidget* aOwner);

  QTextBrowser* fPage;
  QString iPage;
};
