#include "shell/dialogs/CVelumNotBuilt.h"

#include "core/CVelumObject.h"
#include "runtime/CVelumIcons.h"
#include "toolkit/CVelumForm.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumNotBuilt.h"

#include <QPointer>

namespace {
QPointer<CVelumNotBuilt> gInstance;
}

CVelumNotBuilt::CVelumNotBuilt(QWidget* aOwner) : QDialog(aOwner), iUi(new Ui::CVelumNotBuilt) {
  iUi->setupUi(this);
  connect(iUi->fOkBut, &QPushButton::clicked, this, &QDialog::accept);
}

CVelumNotBuilt::~CVelumNotBuilt() = default;

void CVelumNotBuilt::Tell(const QString& aCommand, QWidget* aOwner) {
  if (!gInstance) gInstance = new CVelumNotBuilt(aOwner);
  const bool isNew = !gInstance->isVisible();
  gInstance->iUi->fPicture->setPixmap(
      CVelumIcons::Icon(u"Info"_s).pixmap(QSize(48, 48), gInstance->devicePixelRatio()));
  gInstance->iUi->fText->setText(
      tr("\u201c%1\u201d is not built yet. A later version of the program will have it.").arg(aCommand));
  gInstance->setAccessibleDescription(gInstance->iUi->fText->text());
  gInstance->adjustSize();
  if (isNew) CVelumLib::CentreOver(*gInstance, aOwner);
  CVelumLib::BringUp(*gInstance);
}

CVelumForm* CVelumNotBuilt::OpenForm(const QString& aName, const QString& aCommand, QWidget* aOwner) {
  CVelumForm* form = CVelumWinMan::HasForm(aName) ? CVelumWinMan::NameToForm(aName) : nullptr;
  if (form)
    CVelumWinMan::ShowDialog(*form);
  else
    Tell(aCommand, aOwner);
  return form;
}

CVelumNotBuilt* CVelumNotBuilt::Instance() {
  return gInstance;
}
