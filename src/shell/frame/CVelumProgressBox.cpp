#include "shell/frame/CVelumProgressBox.h"

#include "core/CVelumObject.h"

#include <QProgressDialog>

#include <algorithm>
#include <limits>

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
  // It comes up at a step alone: while a message waits for its answer there are none, and it stays away.
  iDialog->setMinimumDuration(std::numeric_limits<int>::max());
  iDialog->setAutoReset(false);
  iDialog->setRange(0, EAll);
  iDialog->setValue(0);
  iClock.start();
}

CVelumProgressBox::~CVelumProgressBox() = default;

bool CVelumProgressBox::Step(qint64 aDone, qint64 aTotal) {
  if (aTotal <= 0 && iDialog->maximum() > 0) iDialog->setRange(0, 0);
  const qint64 value = aTotal > 0 ? aDone * EAll / aTotal : aDone;
  if (value > 0 && iClock.elapsed() >= EPatience) iDialog->setMinimumDuration(0);
  constexpr qint64 most = std::numeric_limits<int>::max();
  // Lets the toolkit paint, and takes clicks on the Cancel button alone. A value that stays the same would be
  // passed over, and the button with it.
  iDialog->setValue(static_cast<int>(std::min(value, most)));
  return !iDialog->wasCanceled();
}
