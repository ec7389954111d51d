// A note at a field that says what is the matter with what was typed or pasted into it.
#pragma once

#include <QLabel>

// Stands below its field, or above where there is more room, inside the field's window; in the way it goes by
// a click. Those who hear the screen hear it, and find it as the description of the field.
class CVelumFieldNote final : public QLabel {
public:
  // aField has a parent, and the note goes with it.
  CVelumFieldNote(QWidget& aField, const QString& aText);

protected:
  void hideEvent(QHideEvent* aEvent) override;
  void mousePressEvent(QMouseEvent* aEvent) override;

private:
  void PutAt(const QRect& aField);

  QWidget& iField;
};
