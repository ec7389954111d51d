// The question on leaving a changed stack.
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class CVelumSave;
}

enum EVelumSaveRes : int { ESaveResSave = 0, ESaveResDiscard = 1, ESaveResBack = 2 };

// The answer given last.
extern int iDialogRes;

// Stores its answer in iDialogRes. Esc and the close box go back.
class CVelumSave final : public QDialog {
  Q_OBJECT

public:
  // aStackName is what the question calls the stack.
  CVelumSave(const QString& aStackName, QWidget* aFrame);
  ~CVelumSave() override;

private:
  std::unique_ptr<Ui::CVelumSave> iUi;
};
