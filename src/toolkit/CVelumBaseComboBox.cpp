#include "toolkit/CVelumBaseComboBox.h"

#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumLineEdit.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

CVelumBaseComboBox::CVelumBaseComboBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseComboBox, aName, new CVelumComboWidget(aParent), aSink),
      iCombo(static_cast<CVelumComboWidget*>(Widget())) {
  iCombo->MakeEditable();
  connect(static_cast<CVelumLineEdit*>(iCombo->lineEdit()), &CVelumLineEdit::NotFitting, this,
          [this](int aNum) { TellNotFitting(aNum, iCombo->lineEdit()->maxLength()); });
  iCombo->lineEdit()->setMaxLength(iMaxChar);
  iCombo->lineEdit()->installEventFilter(this);
  connect(iCombo, &QComboBox::editTextChanged, this, [this] { Notify(EBaseChange); });
  connect(iCombo, &QComboBox::activated, this, [this](int aIndex) {
    // The text would be cut to what can be typed.
    SetText(iCombo->itemText(aIndex));
    Notify(EBaseClick);
  });
}

float CVelumBaseComboBox::NaturalHeight() const {
  return CVelumTwips::FromPixel(iCombo->sizeHint().height());
}

int CVelumBaseComboBox::ListCount() const {
  return iCombo->count();
}

QString CVelumBaseComboBox::Text() const {
  return iCombo->lineEdit()->text();
}

void CVelumBaseComboBox::SetText(const QString& aText) {
  if (aText == Text()) return;
  iCombo->lineEdit()->setMaxLength(std::max(iMaxChar, static_cast<int>(aText.size())));
  iCombo->setEditText(aText);
  iCombo->lineEdit()->home(false);
}

void CVelumBaseComboBox::SetMaxChar(qint16 aMax) {
  iMaxChar = EffMaxChar(aMax);
  iCombo->lineEdit()->setMaxLength(std::max(iMaxChar, static_cast<int>(Text().size())));
}

int CVelumBaseComboBox::Cursor() const {
  return iCombo->lineEdit()->cursorPosition();
}

void CVelumBaseComboBox::SetCursor(int aPos) {
  iCombo->lineEdit()->setCursorPosition(aPos);
}

void CVelumBaseComboBox::OnLeft() {
  iCombo->lineEdit()->home(false);
}

void CVelumBaseComboBox::Clear() {
  iCombo->SetLines({});
}

bool CVelumBaseComboBox::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched == iCombo->lineEdit() && aEvent->type() == QEvent::MouseButtonDblClick) {
    Notify(EBaseDblClick);
    return true;
  }
  if (aEvent->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(aEvent)->key() == Qt::Key_F2) {
    Notify(EBaseDblClick);
    return true;
  }
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}
