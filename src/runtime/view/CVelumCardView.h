// The card window's logic: binds the fields of a background to the controls of the card form and moves values
// between them.
#pragma once

#include "runtime/view/CVelumCardLayout.h"

#include <QSet>
#include <QSizeF>
#include <utility>

class CVelumBasePictureBox;
class CVelumGenForm;
class QPainter;

class CVelumCardView final : public CVelumObject {
public:
  // aName is the form's name in the window manager.
  CVelumCardView(Ref<CVelumStack> aStack, QString aName);
  ~CVelumCardView() override;

  // What layouts measure texts with; null: the screen. For all card views made from now on.
  static void SetMeasure(CVelumBaseMeasure* aMeasure);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumCardView "_s + iName; }
  // The field bound to a base control; asserts "VelumControl found " and its name, and then gives nothing.
  [[nodiscard]] Ref<CVelumControl> VelumControl(const CVelumBaseControl* aBase) const;
  [[nodiscard]] bool IsVelumControl(const CVelumBaseControl* aBase) const;
  // The field bound to the form's active control, or nothing.
  [[nodiscard]] Ref<CVelumControl> FocusControl() const;
  // Gets the wallpaper of the card's background ready, or gives up the one that the form still holds.
  void DrawWallPaper(const CVelumCard& aCard);
  // Paints it on the form, tiled or in the middle. Loads nothing.
  void PaintWallPaper(QPainter& aPainter, const CVelumCard& aCard);
  // The next AssignControlSet lays out anew, even for the same background.
  void ResetCurSet() { iCurSet = nullptr; }
  // The layout for a card, or its quick renewal when aSet is laid out already. Without a card the form stays
  // blank. The field that had the focus keeps it if it is still there, else the first one gets it.
  void AssignControlSet(const Ref<CVelumCard>& aCard, const Ref<CVelumControlSet>& aSet);
  // Shows the card's values in all bound fields but in aKeep.
  void ShowValues(CVelumCard& aCard, const CVelumBaseControl* aKeep = nullptr);
  // The same after a layout that failed half-way: fills what was bound, so that no value of another card
  // stands there.
  void ShowBoundValues(CVelumCard& aCard);
  // Hides all, gives up pictures, and says that there is no card.
  void Clear();
  // Gives up the pictures before the form closes.
  void PrepareClose();
  void SetTitle(const QString& aTitle);
  // How full the bar of a running script is, 0 to 100.
  void ShowProgress(int aPercent);

  // The base control shows aVal. Asserts when it cannot: for each field once, until another background is
  // laid out, for the next card will hardly fare better.
  void SetBaseControlVal(CVelumControl& aControl, const TVelumValue& aVal, CVelumCard& aCard);
  // What the base control shows now; the empty string for a field that has none.
  [[nodiscard]] TVelumValue GetBaseControlVal(const CVelumControl& aControl) const;

  // Whether what was typed into a field is a value of it from end to end, as CVelumEntry has it.
  [[nodiscard]] bool EntryIsWhole(const CVelumControl& aControl) const;
  // Whether what stands in a field is what is shown for aVal.
  [[nodiscard]] bool EntryIsOf(const CVelumControl& aControl, const TVelumValue& aVal) const;

  // The card form; host error 91 when there is none.
  [[nodiscard]] CVelumGenForm& ViewForm() const;
  [[nodiscard]] Ref<CVelumControlSet> CurSet() const { return iCurSet; }
  [[nodiscard]] const CVelumCardLayout& Layout() const { return iLayout; }
  // Whether what is laid out is so for the size that the form has.
  [[nodiscard]] bool FitsForm() const;

private:
  void RenewCard(CVelumGenForm& aForm, const CVelumCard& aCard);
  void HideAll(CVelumGenForm& aForm);
  void Unbind();
  void AssignMenuCommands(const CVelumControlSet& aSet);
  void ShowMenuCommand(int aNum);
  void RestoreFocus(CVelumGenForm& aForm, const Ref<CVelumControl>& aBefore);
  void SetTabOrder(CVelumGenForm& aForm);
  void HoldWallPaper(CVelumBasePictureBox& aBox, qint32 aId);
  void ReleasePicture(CVelumBaseControl& aBox);
  void ShowPicture(const CVelumControl& aControl, CVelumBasePictureBox& aBox, const TVelumValue& aVal);
  void AssertShown(bool aCond, const CVelumControl& aControl, const QString& aText);
  void ShowRichText(const CVelumControl& aControl, const TVelumValue& aVal);
  void ShowCombo(CVelumControl& aControl, const TVelumValue& aVal, CVelumCard& aCard);

  Ref<CVelumStack> iStack;
  QString iName;
  CVelumCardLayout iLayout;
  std::array<Ref<CVelumControl>, CVelumCardLayout::EMaxControls> iFuncControls;
  int iNumFunc = 0;
  Ref<CVelumControlSet> iCurSet;
  Ref<CVelumControlSet> iLastSet;       // laid out last
  std::pair<QSize, QSizeF> iLaidOutFor; // the form's size inside and outside
  QSet<qint32> iAsked;                  // its fields that have failed an assertion when they were shown
  qint32 iWallPaperId = ENoInt;         // the blob whose picture the wallpaper box holds
};
