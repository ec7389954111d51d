#include "toolkit/CVelumComboWidget.h"

#include "toolkit/CVelumLineEdit.h"

#include <QSignalBlocker>
#include <QWheelEvent>

CVelumComboWidget::CVelumComboWidget(QWidget* aParent) : QComboBox(aParent) {
  setInsertPolicy(NoInsert);
  setFocusPolicy(Qt::StrongFocus);
}

void CVelumComboWidget::MakeEditable() {
  setLineEdit(new CVelumLineEdit(this));
  setInsertPolicy(NoInsert);
  // A completion would put in what nobody typed.
  setCompleter(nullptr);
}

void CVelumComboWidget::SetLines(const QStringList& aLines) {
  const QSignalBlocker silence(this);
  if (aLines != iLines) {
    clear();
    addItems(aLines);
    iLines = aLines;
  }
  SetListIndex(-1);
}

void CVelumComboWidget::AddLine(const QString& aLine) {
  const QSignalBlocker silence(this);
  const QString text = currentText();
  const bool first = count() == 0;
  addItem(aLine);
  iLines.append(aLine);
  // The first line would select itself.
  if (!first) return;
  setCurrentIndex(-1);
  if (isEditable()) setEditText(text);
}

void CVelumComboWidget::SetLine(int aIndex, const QString& aLine) {
  const QSignalBlocker silence(this);
  setItemText(aIndex, aLine);
  iLines[aIndex] = aLine;
}

int CVelumComboWidget::ListIndex() const {
  const int index = currentIndex();
  return isEditable() && index >= 0 && itemText(index) != currentText() ? -1 : index;
}

void CVelumComboWidget::SetListIndex(int aIndex) {
  setCurrentIndex(aIndex);
  if (aIndex < 0 && isEditable()) clearEditText();
}

void CVelumComboWidget::wheelEvent(QWheelEvent* aEvent) {
  if (hasFocus())
    QComboBox::wheelEvent(aEvent);
  else
    aEvent->ignore();
}
