#include "toolkit/CVelumToolkitDialogLib.h"

#include "core/CVelumChecked.h"
#include "core/CVelumConst.h"
#include "core/CVelumValue.h"
#include "toolkit/CVelumBaseColor.h"

#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <cmath>

namespace {

// How an entry looks that cannot be changed.
QColor LockedColor() {
  const QPalette desktop;
  const bool dark = desktop.color(QPalette::Base).lightness() < desktop.color(QPalette::Text).lightness();
  return dark ? desktop.color(QPalette::Window) : QColor(212, 208, 200);
}

// Only what differs from the desktop is set, so that the entry follows it when it changes.
void ShowLocked(QWidget& aCtl, bool aLocked) {
  QPalette palette;
  palette.setResolveMask(0);
  if (aLocked) palette.setColor(QPalette::Base, LockedColor());
  aCtl.setPalette(palette);
}

template <class T> bool SetText(QWidget& aCtl, bool aEnabled, bool aClear) {
  auto* box = qobject_cast<T*>(&aCtl);
  if (!box) return false;
  box->setReadOnly(!aEnabled);
  ShowLocked(aCtl, !aEnabled);
  if (!aEnabled && aClear) box->clear();
  return true;
}

bool SetColorSample(QWidget& aCtl, bool aEnabled, bool aClear) {
  auto* label = qobject_cast<QLabel*>(&aCtl);
  if (!label || !label->objectName().contains(u"Color"_s)) return false;
  QPalette palette;
  palette.setColor(QPalette::Window, aEnabled ? palette.color(QPalette::Base) : LockedColor());
  label->setAutoFillBackground(true);
  label->setPalette(palette);
  if (aClear) label->clear();
  return true;
}

} // namespace

namespace CVelumDialogLib {

void SetEnabled(QWidget& aCtl, bool aEnabled, bool aClear) {
  if (SetText<QLineEdit>(aCtl, aEnabled, aClear) || SetText<QTextEdit>(aCtl, aEnabled, aClear) ||
      SetText<QPlainTextEdit>(aCtl, aEnabled, aClear) || SetColorSample(aCtl, aEnabled, aClear))
    return;
  aCtl.setEnabled(aEnabled);
  if (qobject_cast<QComboBox*>(&aCtl)) ShowLocked(aCtl, !aEnabled);
}

qint16 TextBoxToI2(const QLineEdit& aBox) {
  if (aBox.text().isEmpty()) return ENoShort;
  const double num = std::nearbyint(CVelumValue::LenientNum(aBox.text()));
  if (std::abs(num) > std::numeric_limits<qint32>::max()) CVelumError::RaiseHost(EHostOverflow);
  return CVelumChecked::Narrow<qint16>(static_cast<qint64>(num));
}

void I2ToTextBox(QLineEdit& aBox, qint16 aValue) {
  aBox.setText(aValue == ENoShort ? QString() : QString::number(aValue));
}

void ShowColor(QLabel& aBox, qint32 aColor) {
  const bool set = aColor != ENoInt;
  const QColor color = CVelumBaseColor::ToColor(aColor);
  QPalette palette;
  palette.setResolveMask(0);
  if (set) palette.setColor(QPalette::Window, color);
  aBox.setPalette(palette);
  aBox.setAutoFillBackground(set);
  aBox.clear();
  // What the eye sees, for those who cannot.
  aBox.setAccessibleDescription(set ? color.name() : QLabel::tr("No color"));
}

bool SelectColor(QWidget* aOwner, QLabel& aBox, qint32& aColor) {
  QColorDialog dialog(aOwner);
  if (aColor != ENoInt) dialog.setCurrentColor(CVelumBaseColor::ToColor(aColor));
  if (dialog.exec() != QDialog::Accepted) return false;
  aColor = CVelumBaseColor::FromColor(dialog.selectedColor());
  ShowColor(aBox, aColor);
  return true;
}

} // namespace CVelumDialogLib
