#include "exchange/CVelumCsvPool.h"

QList<qint32> CVelumCsvPool::TakeOut(const CVelumControlSet& aBackground) {
  QList<qint32> outside;
  int labels = ELabels - (aBackground.Flag(ECseShowCardName) ? 1 : 0);
  int texts = ETextBoxes;
  int longTexts = ELongTextBoxes;
  int checks = ECheckBoxes;
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    CVelumControl* control = aBackground.ControlAt(i);
    if (!control || !control->InCardView()) continue;
    int& places = control->ConType() == EConBoolean ? checks : control->VisLines() > 1 ? longTexts : texts;
    if (labels > 0 && places > 0) {
      --labels;
      --places;
      continue;
    }
    control->SetFlag(EConInCardView, false);
    outside.append(control->Id());
  }
  return outside;
}
