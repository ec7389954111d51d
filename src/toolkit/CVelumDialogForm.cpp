#include "toolkit/CVelumDialogForm.h"

#include "core/CVelumMsg.h"
#include "toolkit/CVelumWinMan.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLayout>

CVelumDialogForm::CVelumDialogForm(const QString& aName, bool aSizable, QWidget* aParent)
    : QDialog(aParent), CVelumForm(aName, aSizable) {
  setObjectName(aName);
}

void CVelumDialogForm::Load() {
  if (!Sizable() && layout()) layout()->setSizeConstraint(QLayout::SetFixedSize);
  CVelumForm::Load();
}

void CVelumDialogForm::done(int aResult) {
  CVelumWinMan::UnloadForm(*this);
  QDialog::done(aResult);
}

void CVelumDialogForm::closeEvent(QCloseEvent* aEvent) {
  CVelumWinMan::UnloadForm(*this);
  aEvent->accept();
}

void CVelumDialogForm::keyPressEvent(QKeyEvent* aEvent) {
  if (aEvent->key() != Qt::Key_F1) {
    QDialog::keyPressEvent(aEvent);
    return;
  }
  const QWidget* control = focusWidget();
  CVelumMsg::ShowHelp(Name(), control && control != this ? control->objectName() : QString());
}
