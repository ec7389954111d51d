// The area of child windows in the main window.
#pragma once

#include <QHash>
#include <QMdiArea>
#include <QSet>

class QMdiSubWindow;

// Child windows stay children until they are removed; a close by the user only reaches the close event of the
// form in the child. Keys that no child takes go on to the main window. Rectangles are outer ones, in pixels
// of the area.
class CVelumMdiArea final : public QMdiArea {
  Q_OBJECT

public:
  explicit CVelumMdiArea(QWidget* aParent = nullptr);

  // aForm keeps its owner; it goes back to having no parent with RemoveChild.
  void AddChild(QWidget* aForm);
  void RemoveChild(QWidget* aForm);
  // With aRaise a minimised child opens again, and becomes the active one.
  void ShowChild(QWidget* aForm, bool aRaise);
  void HideChild(QWidget* aForm);
  // The place of a maximised or minimised child is that which it goes back to.
  [[nodiscard]] QRect ChildRect(QWidget* aForm) const;
  void SetChildRect(QWidget* aForm, const QRect& aRect);

protected:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  void FollowPalette();
  void PaintChildren();
  [[nodiscard]] QMdiSubWindow* ChildOf(const QWidget* aForm) const;

  void NoteState(const QMdiSubWindow& aChild);

  // The place of each child while it is neither maximised nor minimised.
  QHash<const QObject*, QRect> iPlaces;
  QSet<const QObject*> iHeld; // children that are maximised or minimised
};
