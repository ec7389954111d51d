// Tells that a script runs, and stops it.
#pragma once

#include <QProgressBar>
#include <QToolButton>
#include <QWidget>
#include <functional>

// Stands in the status bar of the main window while a script runs that takes long enough to be noticed. A
// click on it, or Escape anywhere in the program, breaks the script.
class CVelumScriptBar final : public QWidget {
  Q_OBJECT

public:
  explicit CVelumScriptBar(QWidget* aParent);
  ~CVelumScriptBar() override;

  // 0 to 99 while a script runs, 100 when it has ended.
  void ShowProgress(int aPercent);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
  void mouseReleaseEvent(QMouseEvent* aEvent) override;

private:
  QProgressBar* iProgress;
  QToolButton* iStop;
};

namespace CVelumDialogLib {

// Does aCommand, which closes, replaces or empties the stack: at once, or when the running script was broken
// and has ended.
void WhenNoScriptRuns(const std::function<void()>& aCommand);

} // namespace CVelumDialogLib
