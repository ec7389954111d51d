// A text box of several lines.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class QTextEdit;

class CVelumBaseRichTextBox final : public CVelumBaseControl {
public:
  CVelumBaseRichTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // Each line end that was typed or set reads as CR LF.
  [[nodiscard]] QString Text() const override;
  // Another text begins with the cursor at its beginning.
  void SetText(const QString& aText) override;
  void SetFont(const QFont& aFont) override;
  void SetMaxChar(qint16 aMax) override;
  void SetLocked(bool aLocked) override;
  void SetPlaceholder(const QString& aText) override;
  [[nodiscard]] int Cursor() const override;
  void SetCursor(int aPos) override;
  void Clear() override;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  // Takes back what the last change brought beyond the limit.
  void HoldLimit();
  // Length of the text as it is stored.
  [[nodiscard]] int StoredLen() const;

  QTextEdit* iEdit;
  int iMaxChar = EffMaxChar(ENoShort);
  int iLimit = iMaxChar; // in force: grows with a longer text that the program sets
  bool iSetting = false; // the program itself is changing the text
};
