// How screen readers know combo boxes.
#pragma once

#include <QAccessibleWidget>

class QComboBox;

// Their name is the one that they were given, or that of their label; the text that they show is their value
// and, where nothing else was said, their description, which is told when it changes. (By itself the toolkit
// takes the text for the name on Linux.) A box with neither name nor label is called as the toolkit does.
class CVelumComboAccess final : public QAccessibleWidget {
public:
  explicit CVelumComboAccess(QComboBox& aCombo);
  // Combo boxes that are asked for from now on are known so. Safe to call again.
  static void Install();

  [[nodiscard]] QString text(QAccessible::Text aText) const override;
  [[nodiscard]] QAccessible::State state() const override;
  // The list, and the entry of a box in which can be typed.
  [[nodiscard]] int childCount() const override;
  [[nodiscard]] QAccessibleInterface* child(int aIndex) const override;
  [[nodiscard]] QAccessibleInterface* childAt(int aX, int aY) const override;
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* aChild) const override;
  // Opening and closing the list.
  [[nodiscard]] QStringList actionNames() const override;
  void doAction(const QString& aName) override;
  [[nodiscard]] QStringList keyBindingsForAction(const QString& aName) const override;

private:
  [[nodiscard]] QComboBox& Combo() const;
};
