// A text box of several lines, for plain text to be typed and for RTF to be read.
#pragma once

#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumRtf.h"

#include <functional>

class QHelpEvent;
class QMouseEvent;
class QTextEdit;

// Says whether there is a link at a position, and where it leads to.
using TVelumLinkFinder = std::function<bool(int aPos, QString& aTarget)>;

// Positions of the selection and of clicks count UTF-16 units of the text, and two for the end of each
// paragraph. For RTF they also count the braces that the text had and that are not seen.
class CVelumBaseRichTextBox final : public CVelumBaseControl {
public:
  CVelumBaseRichTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // Each line end that was typed or set reads as CR LF.
  [[nodiscard]] QString Text() const override;
  // Another text begins with the cursor at its beginning.
  void SetText(const QString& aText) override;
  // Shows RTF, which cannot be changed, from its beginning; what is shown already stays where it is. Over a
  // link that aLinks finds the pointer is a hand and a tool tip tells the target. Until the next SetText.
  void SetRtf(const QString& aRtf, TVelumLinkFinder aLinks);
  void SetFont(const QFont& aFont) override;
  void RefreshColors() override;
  void SetMaxChar(qint16 aMax) override;
  void SetLocked(bool aLocked) override;
  void SetPlaceholder(const QString& aText) override;
  [[nodiscard]] int Cursor() const override;
  void SetCursor(int aPos) override;
  void Clear() override;

  [[nodiscard]] int SelStart() const;
  [[nodiscard]] int SelLen() const;
  void Select(int aStart, int aLen);
  // Puts a plain text before and one behind a part of the text, and the cursor at the end; one step of undo.
  // Returns false, and changes nothing, when the text would get longer than SetMaxChar allows.
  [[nodiscard]] bool Surround(int aStart, int aLen, const QString& aBefore, const QString& aBehind);
  // The character that was clicked last, or the cursor's place when the key Enter stands for a click; -1 when
  // the click was beside the text.
  [[nodiscard]] int ClickPos() const { return iClickPos; }

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
  // A selection without the focus is paler than one with it.
  void AddColors(QPalette& ioPalette, const QPalette& aNatural) const override;

private:
  void ViewportEvent(QEvent& aEvent);
  [[nodiscard]] bool KeyEvent(const QEvent& aEvent);
  void Release(const QMouseEvent& aEvent);
  void Hover(const QPoint& aPoint);
  void ShowTip(const QHelpEvent& aEvent);
  // Enter on a link stands for a click.
  void ClickByKey();
  [[nodiscard]] bool FindLink(int aPos, QString& aTarget) const;
  // Position of the character at a point of the viewport; -1 beside the text.
  [[nodiscard]] int PosAt(const QPoint& aPoint) const;
  void ShowRtf();
  void LeaveRtf();
  // Takes back what the last change brought beyond the limit; the number of characters of that.
  int HoldLimit();
  // Length of the text as it is stored.
  [[nodiscard]] int StoredLen() const;

  QTextEdit* iEdit;
  QWidget* iViewport; // of iEdit, which owns it
  int iMaxChar = EffMaxChar(ENoShort);
  int iLimit = iMaxChar; // in force: grows with a longer text that the program sets
  bool iSetting = false; // the program itself is changing the text
  bool iIsRtf = false;
  QString iRtf;
  TRtfText iShown; // what was read from iRtf
  TVelumLinkFinder iLinks;
  int iClickPos = -1;
  bool iOnLink = false; // the last click hit a link
};
