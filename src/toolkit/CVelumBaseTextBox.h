// A text box of one line.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class CVelumLineEdit;

class CVelumBaseTextBox final : public CVelumBaseControl {
public:
  CVelumBaseTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  [[nodiscard]] QString Text() const override;
  void SetText(const QString& aText) override;
  void SetMaxChar(qint16 aMax) override;
  void SetLocked(bool aLocked) override;
  void SetPlaceholder(const QString& aText) override;
  [[nodiscard]] int Cursor() const override;
  void SetCursor(int aPos) override;
  void Clear() override;

protected:
  void OnLeft() override;

private:
  CVelumLineEdit* iEdit;
  int iMaxChar = EffMaxChar(ENoShort);
};
