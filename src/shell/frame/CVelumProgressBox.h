// How far long work is, with a button that gives it up.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <memory>

class QProgressDialog;
class QWidget;

// Comes up when the work takes longer than a moment, and keeps the other windows still meanwhile. Never comes
// up over a message.
class CVelumProgressBox final {
public:
  CVelumProgressBox(QWidget* aOwner, const QString& aTitle, const QString& aText);
  ~CVelumProgressBox();
  CVelumProgressBox(const CVelumProgressBox&) = delete;
  CVelumProgressBox& operator=(const CVelumProgressBox&) = delete;

  // aDone grows. aTotal 0 is work whose end is not known. False when the user gives it up.
  [[nodiscard]] bool Step(qint64 aDone, qint64 aTotal);

private:
  std::unique_ptr<QProgressDialog> iDialog;
  QElapsedTimer iClock;
};
