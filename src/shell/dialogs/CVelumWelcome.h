// The box that greets at the start and tells about the program.
#pragma once

#include "toolkit/CVelumDialogForm.h"

#include <memory>

class QTimer;

namespace Ui {
class CVelumWelcome;
}

// Closes by itself after seven seconds, unless StayUntilOk was called. Keeps no place: it stands over the
// main window.
class CVelumWelcome final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumWelcome();
  ~CVelumWelcome() override;

  void Load() override;
  void Unload() override;

  // At the start: the seven seconds begin now.
  void Stay();
  // Called from the menu: it stays until the user closes it.
  void StayUntilOk();
  void DoOk();

  // The stack that comes with the program, empty when it is not installed.
  [[nodiscard]] static QString SampleFile();

protected:
  // The licences take the colours of the desktop when those change.
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;

private:
  void ShowLicences();
  void OpenSample();
  void PlaceOverFrame();

  std::unique_ptr<Ui::CVelumWelcome> iUi;
  QTimer* fWaitTimer;
};
