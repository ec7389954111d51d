// A combo box whose text can be typed.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class CVelumComboWidget;

// DblClick comes for a double click on the text, and for F2.
class CVelumBaseComboBox final : public CVelumBaseControl {
public:
  CVelumBaseComboBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // Height that the box wants in its font, in twips.
  [[nodiscard]] float NaturalHeight() const;
  [[nodiscard]] int ListCount() const;
  [[nodiscard]] QString Text() const override;
  void SetText(const QString& aText) override;
  void SetMaxChar(qint16 aMax) override;
  [[nodiscard]] int Cursor() const override;
  void SetCursor(int aPos) override;
  void Clear() override;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
  void OnLeft() override;

private:
  CVelumComboWidget* iCombo;
  int iMaxChar = EffMaxChar(ENoShort);
};
