// The window with the list of the cards.
#pragma once

#include "toolkit/CVelumForm.h"

#include <QWidget>
#include <memory>

namespace Ui {
class CVelumCardListForm;
}
class CVelumComboWidget;
class CVelumListWidget;
class CVelumStackView;

// Stands in the main window beside the card window. Its logic is in CVelumCardListView and in its view.
class CVelumCardListForm final : public QWidget, public CVelumForm {
  Q_OBJECT

public:
  CVelumCardListForm();
  ~CVelumCardListForm() override;

  [[nodiscard]] QWidget* Widget() override { return this; }
  // The view whose cards it lists, from then on until it is unloaded; without one, it does nothing.
  void SetView(const Ref<CVelumStackView>& aView);
  // Takes the place that the stack keeps for the list.
  void Load() override;
  void Unload() override;
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  [[nodiscard]] CVelumListWidget* CardBox() const;
  [[nodiscard]] CVelumComboWidget* BackgroundCombo() const;

  // True while the program itself chooses a background.
  bool iShowing = false;

protected:
  bool event(QEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  void closeEvent(QCloseEvent* aEvent) override;
  // The right button chooses a line as the left one does.
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;

private:
  void OnItemClick();
  void OnItemDblClick();
  void Move(bool aDown);
  void ShowMovable();
  [[nodiscard]] QString MoveTip(bool aDown) const;
  void ShowListFont();

  std::unique_ptr<Ui::CVelumCardListForm> iUi;
  Ref<CVelumStackView> iView;
  bool iLoading = false; // the window takes its place
};
