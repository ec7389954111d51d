// The base of all dialogs that stay open beside the card window.
#pragma once

#include "toolkit/CVelumForm.h"

#include <QDialog>

// Closing by any means (Esc, the close box, close()) unloads the form. F1 opens the help of the control that
// has the focus.
class CVelumDialogForm : public QDialog, public CVelumForm {
  Q_OBJECT

public:
  CVelumDialogForm(const QString& aName, bool aSizable, QWidget* aParent = nullptr);

  [[nodiscard]] QWidget* Widget() override { return this; }
  void Load() override;
  void done(int aResult) override;

protected:
  void closeEvent(QCloseEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
};
