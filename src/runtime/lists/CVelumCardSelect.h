// The window in which another window lets a card be chosen.
#pragma once

#include "runtime/lists/CVelumListBox.h"

#include "model/CVelumStack.h"
#include "toolkit/CVelumDialogForm.h"

namespace Ui {
class CVelumCardSelect;
}

// What a window that wants a card is besides its widget.
class CVelumCardTaker {
public:
  virtual ~CVelumCardTaker() = default;
  // aTag is what the window gave to SelectCard.
  virtual void SetCard(int aTag, const Ref<CVelumCard>& aCard) = 0;
};

// Stays open beside the others. The choice goes to the owner once; without an owner it goes nowhere.
class CVelumCardSelect final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumCardSelect();
  ~CVelumCardSelect() override;

  void Load() override;
  void Unload() override;
  // Unloads itself when the stack is about to close; lets go of a background that is deleted.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  // Shows the window for aOwner, which is a CVelumCardTaker; it may go before a card is chosen. With a
  // background only its cards can be chosen.
  void SelectCard(QWidget* aOwner, const Ref<CVelumControlSet>& aBackground, int aTag);
  // The card chosen by now, or nothing.
  [[nodiscard]] Ref<CVelumCard> Card() const { return iCard; }

private:
  void LetGo(const CVelumObject* aBackground);
  void FillCards();
  void TakeCard();
  void Select();

  std::unique_ptr<Ui::CVelumCardSelect> iUi;
  Ref<CVelumListBox> iBackgroundBox;
  Ref<CVelumListBox> iCardBox;
  Ref<CVelumCard> iCard;
  bool iLoading = false; // the program itself chooses
  QPointer<QWidget> iOwner;
  int iTag = 0;
};
