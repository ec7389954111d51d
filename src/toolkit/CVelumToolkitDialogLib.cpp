#include "toolkit/CVelumToolkitDialogLib.h"

#include "core/CVelumObject.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

// An entry has the palette of its kind, or the colour of windows where it cannot be changed.
void ShowLocked(QWidget& aCtl, bool aLocked) {
  QPalette palette = QApplication::palette(&aCtl);
  if (aLocked) palette.setColor(QPalette::Base, palette.color(QPalette::Window));
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
  QPalette palette = QApplication::palette(label);
  palette.setColor(QPalette::Window, palette.color(aEnabled ? QPalette::Base : QPalette::Window));
  label->setAutoFillBackground(true);
  label->setPalette(palette);
  if (aClear) label->clear();
  return true;
}

} // namespace

void CVelumDialogLib::SetEnabled(QWidget& aCtl, bool aEnabled, bool aClear) {
  if (SetText<QLineEdit>(aCtl, aEnabled, aClear) || SetText<QTextEdit>(aCtl, aEnabled, aClear) ||
      SetText<QPlainTextEdit>(aCtl, aEnabled, aClear) || SetColorSample(aCtl, aEnabled, aClear))
    return;
  aCtl.setEnabled(aEnabled);
  if (qobject_cast<QComboBox*>(&aCtl)) ShowLocked(aCtl, !aEnabled);
}
