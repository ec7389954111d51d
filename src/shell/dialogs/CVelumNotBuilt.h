// Says that a command has no window yet.
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class CVelumNotBuilt;
}
class CVelumForm;

// One small window for all such commands. It stays open beside the others, takes no part in their
// notifications, and keeps no place.
class CVelumNotBuilt final : public QDialog {
  Q_OBJECT

public:
  explicit CVelumNotBuilt(QWidget* aOwner);
  ~CVelumNotBuilt() override;

  // Shows the window for a command, named as the user reads it. aOwner: the main window.
  static void Tell(const QString& aCommand, QWidget* aOwner);
  // Shows another window of the program by its name; for one that is not written yet tells the user, and
  // gives nothing.
  static CVelumForm* OpenForm(const QString& aName, const QString& aCommand, QWidget* aOwner);
  // The window while it exists, otherwise null.
  [[nodiscard]] static CVelumNotBuilt* Instance();

private:
  std::unique_ptr<Ui::CVelumNotBuilt> iUi;
};
