// What the card list window shows: the cards of the open stack, of all backgrounds or of one.
#pragma once

#include "runtime/lists/CVelumListBox.h"

#include "model/CVelumStack.h"

class CVelumCardListForm;

class CVelumCardListView final : public CVelumObject {
public:
  // Fills the combo with "(All)" and the backgrounds; the list itself stays empty until it is filled.
  CVelumCardListView(Ref<CVelumStack> aStack, CVelumCardListForm& aForm);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumCardListView"_s; }
  [[nodiscard]] CVelumListBox& CardBox() { return *iCardBox; }
  [[nodiscard]] CVelumListBox& BackgroundCombo() { return *iBackgroundCombo; }
  // The background listed; nothing for "(All)".
  [[nodiscard]] Ref<CVelumControlSet> Background() const { return iBackground; }
  // Whether cards of several backgrounds are listed, or there is no background.
  [[nodiscard]] bool Mixed() const { return iMixed; }
  // Whether a column with the card's name comes first.
  [[nodiscard]] bool WithName() const { return iWithName; }
  // Takes the background chosen in the combo and lists its cards. Unless aForce, nothing happens when that
  // one is listed already.
  void FillAndShowCardList(bool aForce);
  // A card's line is shown anew, if it is listed.
  void UpdateCard(const CVelumCard& aCard);
  // The line of aCard (may be null) is the selected one from now on, also after the list was filled anew;
  // no line where it is not listed.
  void FollowCard(const Ref<CVelumCard>& aCard);
  // The list font of the stack is used from now on.
  void ApplyListFont();
  // Fills the combo anew, without aExclude (may be null). The choice stays by its line.
  void RefillBackgrounds(const CVelumObject* aExclude);
  // Whether the selected card could be moved that way; not while the display is sorted.
  [[nodiscard]] bool CanMove(bool aDown) const;
  // Moves the selected card, with a background that is kept sorted the whole background, one card or one kept
  // group down (or up). True if something moved.
  bool MoveSelected(bool aDown);
  [[nodiscard]] Ref<CVelumCard> SelCard() const;

private:
  void FillBackgrounds(const CVelumObject* aExclude);
  void DefineColumns();
  [[nodiscard]] Ref<CVelumControlSet> ScanBackgrounds(qint32& aMaxCols);
  void SelectFollowed();
  [[nodiscard]] bool MoveTarget(const Ref<CVelumCard>& aCard, bool aDown, Ref<CVelumCard>& aBefore) const;
  [[nodiscard]] Ref<CVelumCard> EndOfGroup(const Ref<CVelumCard>& aCard, bool aLast) const;
  [[nodiscard]] bool Kept(const CVelumCard& aCard) const;

  CVelumCardListForm& iForm;
  Ref<CVelumStack> iStack;
  Ref<CVelumListBox> iCardBox;
  Ref<CVelumListBox> iBackgroundCombo;
  Ref<CVelumControlSet> iBackground;
  Ref<CVelumCard> iFollowed; // the card on show
  bool iMixed = false;
  bool iWithName = false;
};
