// The placing of a background's fields on the card form. All lengths are twips of its client area.
#pragma once

#include "model/CVelumStack.h"
#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumBaseMeasure.h"

#include <array>

class CVelumBaseButton;
class CVelumBaseLabel;
class CVelumGenForm;

// Binds each field to the next free control of the form's pool and places it: labels right-aligned in a
// column of their own, values beside them, from the top down or from the bottom up, commands in rows of
// buttons. A pool that is used up is host error 91; more than 101 fields are host error 9; the layout stays
// half built then.
class CVelumCardLayout {
public:
  static constexpr int EMaxControls = 101;

  explicit CVelumCardLayout(CVelumBaseMeasure& aMeasure) : iMeasure(aMeasure) {}

  // The colour of a card: card, background, stack, the first that states one; ENoInt when none does.
  [[nodiscard]] static qint32 BackColorOf(const CVelumCard& aCard);
  // Takes every base control away from the fields that hold one, so that no later event can reach them.
  void Unbind();
  // Lays out aSet for aCard on a form whose controls are all hidden and unbound.
  void Build(CVelumGenForm& aForm, const Ref<CVelumCard>& aCard, const Ref<CVelumControlSet>& aSet);

  // The fields bound, in the order of binding.
  [[nodiscard]] int NumControls() const { return iNumControls; }
  [[nodiscard]] Ref<CVelumControl> ControlAt(int aIndex) const;
  // The label that shows the card's name, or null.
  [[nodiscard]] CVelumBaseLabel* CardNameLabel() const { return iCardNameLabel; }

private:
  // What the steps for one field share.
  struct TPlace {
    CVelumCard& iCard;
    CVelumControlSet& iSet;
    CVelumControl& iControl;
    size_t iDir;   // 0 from the top, 1 from the bottom
    float iSign;   // share of its height by which a control lies above the next free position
    float iHeight; // of the control placed; 0 when none was
  };
  struct TFieldMetrics {
    float iLineHeight;
    float iCharWidth; // of a label: the width of its caption
  };

  void Start(const Ref<CVelumControlSet>& aSet);
  void MeasureLabels(CVelumCard& aCard, const CVelumControlSet& aSet);
  void PlaceHeader(CVelumCard& aCard);
  void PlaceControls(CVelumCard& aCard, CVelumControlSet& aSet);
  void SetTabNumber(const CVelumControl& aControl, qint16& aNumber);
  void AssignBaseControl(CVelumCard& aCard, CVelumControlSet& aSet, const Ref<CVelumControl>& aControl);
  void PlaceLabel(TPlace& aPlace);
  void PlaceValue(TPlace& aPlace);
  void PlaceText(TPlace& aPlace);
  void PlaceCombo(TPlace& aPlace);
  void PlaceRichTextBox(TPlace& aPlace);
  void PlaceTextBox(TPlace& aPlace);
  // A box of so many lines, from its font on.
  void PlaceTextLines(TPlace& aPlace, CVelumBaseControl& aBox, int aLines);
  void PlaceCheckBox(TPlace& aPlace);
  void PlaceList(TPlace& aPlace);
  void PlacePicture(TPlace& aPlace);
  void PlaceButton(TPlace& aPlace);
  void SetButtonFace(CVelumBaseButton& aButton, const CVelumControl& aControl);
  [[nodiscard]] float ButtonWidth(const CVelumBaseButton& aButton, const CVelumControl& aControl) const;
  void SpreadFreeHeight(const CVelumControlSet& aSet);

  template <class T> T& Next(EBase aKind);
  void Bind(CVelumControl& aControl, CVelumBaseControl& aBase);
  void Activate(const CVelumControl& aControl, CVelumBaseControl& aBase);
  void PutAtValue(TPlace& aPlace, CVelumBaseControl& aBase, float aWidth, float aHeight);
  TFieldMetrics Metrics(CVelumBaseControl& aBase, CVelumCard& aCard, const CVelumControl* aControl);
  [[nodiscard]] float ClampWidth(float aWidth) const;

  CVelumBaseMeasure& iMeasure;
  CVelumGenForm* iForm = nullptr; // only while Build runs
  std::array<qint16, 11> iNumBase{};
  std::array<Ref<CVelumControl>, EMaxControls> iControls;
  int iNumControls = 0;
  QList<Ref<CVelumControl>> iPartners;
  float iValueLeft = 0;
  float iValueMaxWidth = 0;
  std::array<qint32, 3> iLastConType{};
  std::array<float, 3> iLabelGap{};
  std::array<float, 3> iNextY{};
  std::array<float, 3> iRowNextX{};
  std::array<float, 3> iRowTop{};
  float iDir = 1;
  float iGap = 0;
  int iNumMaxHeight = 0;
  CVelumBaseLabel* iCardNameLabel = nullptr;
};
