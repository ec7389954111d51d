#include "shell/CVelumProgressBox.h"

#include "core/CVelumObject.h"

#include <QProgressDialog>

namespace {

constexpr int EPatience = 500; // milliseconds until the box comes up
constexpr int EAll = 1000;     // what it counts up to

} // namespace

CVelumProgressBox::CVelumProgressBox(QWidget* aOwner, const QString& aTitle, const QString& aText)
    : iDialog(std::make_unique<QProgressDialog>(aOwner)) {
  iDialog->setObjectName(u"CVelumProgressBox"_s);
  iDialog->setWindowTitle(aTitle);
  iDialog->setLabelText(aText);
  iDialog->setCancelButtonText(QProgressDialog::tr("Cancel"));
  iDialog->setWindowModality(Qt::ApplicationModal);
  iDialog->setMinimumDuration(EPatience);
  iDialog->setAutoReset(false);
  iDialog->setRange(0, EAll);
  iDialog->setValue(0);
}

CVelumProgressBox::~CVelumProgressBox() = default;

bool CVelumProgressBox::Step(qint64 aDone, qint64 aTotal) {
  if (aTotal <= 0) iDialog->setRange(0, 0);
  // Lets the toolkit paint, and takes clicks on the Cancel button alone.
  iDialog->setValue(aTotal > 0 ? static_cast<int>(aDone * EAll / aTotal) : 0);
  return !iDialog->wasCanceled();
}
