// A combo box that changes only by what the user does to it.
#pragma once

#include <QComboBox>
#include <QStringList>

// No completion, nothing is added to the list by typing, and the wheel turns it only while it has the focus.
class CVelumComboWidget : public QComboBox {
  Q_OBJECT

public:
  explicit CVelumComboWidget(QWidget* aParent = nullptr);
  // Makes its text one that can be typed.
  void MakeEditable();
  // Replaces the list, in silence; nothing is selected then, and a typed text is gone.
  void SetLines(const QStringList& aLines);
  void AddLine(const QString& aLine);
  void SetLine(int aIndex, const QString& aLine);
  // The selected line; -1 for none, and while another text is typed.
  [[nodiscard]] int ListIndex() const;
  // -1 empties the box.
  void SetListIndex(int aIndex);

protected:
  void wheelEvent(QWheelEvent* aEvent) override;

private:
  QStringList iLines;
};
