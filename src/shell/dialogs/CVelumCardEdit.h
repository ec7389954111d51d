// The window for the cards of a stack as objects: their names, fonts, colours, scripts, and their places.
#pragma once

#include "runtime/lists/CVelumCardSelect.h"
#include "runtime/lists/CVelumListBox.h"
#include "shell/dialogs/CVelumFontTaker.h"
#include "shell/frame/CVelumEditors.h"
#include "toolkit/CVelumDialogForm.h"

#include <memory>

namespace Ui {
class CVelumCardEdit;
}

// Values of a card are listed only; they are changed in the card window. Stays open beside it.
class CVelumCardEdit final : public CVelumDialogForm,
                             public CVelumCardEditor,
                             public CVelumCardTaker,
                             public CVelumFontTaker {
  Q_OBJECT

public:
  CVelumCardEdit();
  ~CVelumCardEdit() override;

  // Shows a card of the open stack.
  void SetAndShowCard(const Ref<CVelumCard>& aCard) override;
  // Begins a new card of a background.
  void NewCard(const Ref<CVelumControlSet>& aSet) override;
  // The card before which the new one will stand; asserts "SetCard aCase" for any case but 0.
  void SetCard(int aCase, const Ref<CVelumCard>& aCard) override;
  // The font being edited; asserts "SetFont aCase" for any case but 0.
  void SetFont(int aCase, const Ref<CVelumFont>& aFont) override;

  void Load() override;
  void Unload() override;
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;
  [[nodiscard]] bool HasEntries() const override { return iEdited; }
  void DropEntries() override;

private:
  enum EMode : int { ENone = 0, EEdit = 1, ENew = 2 };

  void ConnectLists();
  void ConnectButtons();
  // Asserts "SetMode aMode " and the number for any other mode.
  void SetMode(int aMode);
  void ClearEntries();
  void SetEntries(bool aEdit, bool aNew);
  [[nodiscard]] QString ModeText() const;
  void FillBackgrounds();
  // All cards of the background on show but aGoing (or null), which is about to be deleted.
  void FillCards(const CVelumObject* aGoing);
  void TakeBackground();
  void TakeCard();
  void SelectBackground(const Ref<CVelumControlSet>& aSet);
  void ShowCard();
  // What can be edited, and what is told only.
  void ShowEntries();
  void ShowFacts();
  void ShowBackColor(qint32 aColor);
  void Refresh(const CVelumObject* aGoing);
  void ForgetInsertPos();
  [[nodiscard]] bool CheckName();
  [[nodiscard]] Ref<CVelumCard> InsertPos();
  void CreateCard();
  void ModifyCard();
  void DeleteCard();
  void EditControl();
  void WriteCard(const Ref<CVelumCard>& aCard);
  // The card on show; nothing when it has left its stack meanwhile.
  [[nodiscard]] Ref<CVelumCard> CurCard() const;

  std::unique_ptr<Ui::CVelumCardEdit> iUi;
  Ref<CVelumListBox> iBackgroundBox;
  Ref<CVelumListBox> iCardBox;
  Ref<CVelumListBox> iControlBox;
  Ref<CVelumControlSet> iCurSet;
  Ref<CVelumCard> iCurCard;
  int iMode = ENone;
  Ref<CVelumFont> iFont;
  qint32 iBackColor = ENoInt;
  qint32 iBeforeId = ENoInt; // id of the card named as insert position
  bool iEdited = false;      // an entry was changed and is not taken yet
  bool iShowing = false;     // the program itself selects
};
