// The controls that a card form is made of: Qt widgets with names, twips, tags, and the events Change, Click,
// GotFocus and Validate.
#pragma once

#include "core/CVelumConst.h"
#include "core/CVelumObject.h"

#include <QFont>
#include <QObject>
#include <QPointer>

class CVelumFieldNote;
class QFocusEvent;
class QPalette;
class QWidget;

// Twips are the unit of all places and sizes.
inline constexpr float ETwipsPerPixel = 15.0F;

// Kinds of base controls.
enum EBase : qint16 {
  EBaseTextBox = 0,
  EBaseRichTextBox = 1,
  EBaseComboBox = 2,
  EBaseCheckBox = 3,
  EBaseButton = 4,
  EBaseListView = 5,
  EBaseLabel = 6,
  EBasePictureBox = 7,
  EBaseLine = 8,
};

enum EBaseEvent {
  EBaseChange,    // the text changed, by the user or the program
  EBaseClick,     // a click, or a check box that got another value
  EBaseDblClick,  //
  EBaseGotFocus,  //
  EBasePaste,     // Ctrl+U in a rich text box that shows RTF
  EBaseValidate,  // the focus is being left; may be cancelled
  EBaseItemClick, // a line of a list view
  EBaseEscape,    // the key; may be cancelled
};

class CVelumBaseControl;

// Receives the events of all base controls of a form.
class CVelumBaseSink {
public:
  virtual ~CVelumBaseSink() = default;
  // ioCancel counts for EBaseValidate, where true puts the focus back, and for EBaseEscape, where true means
  // that the key was used.
  virtual void BaseEvent(CVelumBaseControl& aBase, EBaseEvent aEvent, bool& ioCancel) = 0;
};

namespace CVelumTwips {
// The nearest pixel edge, within what a window can have.
[[nodiscard]] int ToPixel(float aTwips);
[[nodiscard]] float FromPixel(int aPixel);
} // namespace CVelumTwips

// Binds a widget: places are kept exactly, as they were set, and the widget's edges are rounded each by
// itself, so that neighbours neither overlap nor part. Lives as long as its widget. Starts hidden.
//
// Validate comes whenever the focus leaves the widget: to another control, to a menu, to another window. The
// widget's own menus and lists don't count.
class CVelumBaseControl : public QObject {
  Q_OBJECT
public:
  // aWidget has a parent. aSink may be null and outlives the control.
  CVelumBaseControl(EBase aKind, const QString& aName, QWidget* aWidget, CVelumBaseSink* aSink);

  // The base control that a widget, or one around it, belongs to; or null.
  [[nodiscard]] static CVelumBaseControl* OfWidget(const QWidget* aWidget);

  [[nodiscard]] EBase Kind() const { return iKind; }
  [[nodiscard]] QString Name() const { return objectName(); }
  [[nodiscard]] QWidget* Widget() const { return iWidget; }

  [[nodiscard]] float Left() const { return iLeft; }
  [[nodiscard]] float Top() const { return iTop; }
  [[nodiscard]] float Width() const { return iWidth; }
  [[nodiscard]] float Height() const { return iHeight; }
  void SetPlace(float aLeft, float aTop);
  void SetSize(float aWidth, float aHeight);
  // Draws the control so much lower than its place says, as a label beside a field whose text has a padding.
  void SetNudge(float aTwips);
  void SetTop(float aTop) { SetPlace(iLeft, aTop); }
  void SetHeight(float aHeight) { SetSize(iWidth, aHeight); }
  // Whether it is to be seen as far as it goes itself.
  [[nodiscard]] bool Visible() const;
  void SetVisible(bool aVisible);
  [[nodiscard]] bool Enabled() const;
  void SetEnabled(bool aEnabled);
  [[nodiscard]] QFont Font() const;
  virtual void SetFont(const QFont& aFont);
  // 0xBBGGRR; ENoInt is the desktop's own colour.
  [[nodiscard]] qint32 ForeColor() const { return iForeColor; }
  void SetForeColor(qint32 aColor);
  [[nodiscard]] qint32 BackColor() const { return iBackColor; }
  void SetBackColor(qint32 aColor);
  // To be called when the desktop's palette or the form's colour changed.
  virtual void RefreshColors();
  // A text that the program keeps with the control.
  [[nodiscard]] const QString& Tag() const { return iTag; }
  void SetTag(const QString& aTag) { iTag = aTag; }
  [[nodiscard]] qint16 TabIndex() const { return iTabIndex; }
  void SetTabIndex(qint16 aIndex) { iTabIndex = aIndex; }
  [[nodiscard]] bool HasFocus() const;
  void SetFocus();

  // Text or caption. Texts of several lines have CR LF at each line's end; else the text is as it was typed,
  // no-break blanks included. SetText of what the program has set already leaves cursor and selection alone.
  [[nodiscard]] virtual QString Text() const { return {}; }
  virtual void SetText(const QString& aText) { Q_UNUSED(aText); }
  // Most UTF-16 units that typing and pasting may bring a text to; a longer one that the program sets may
  // only get shorter. ENoShort: as much as a document can hold.
  virtual void SetMaxChar(qint16 aMax) { Q_UNUSED(aMax); }
  // Against typing.
  virtual void SetLocked(bool aLocked) { Q_UNUSED(aLocked); }
  // A grey text in an empty control.
  virtual void SetPlaceholder(const QString& aText) { Q_UNUSED(aText); }
  // Place of the cursor in the text, in characters; 0 without one. Too large a place is the end.
  [[nodiscard]] virtual int Cursor() const { return 0; }
  virtual void SetCursor(int aPos) { Q_UNUSED(aPos); }
  // A note at the control; a new one takes the place of the old one. It goes when the text changes, the focus
  // is left for good, or the control is hidden.
  void ShowNote(const QString& aText);
  void HideNote();
  // The text of the note that is to be seen; empty without one.
  [[nodiscard]] QString Note() const;
  // Notes that so many characters of a text found no room, where aLimit have.
  void TellNotFitting(int aNum, int aLimit);
  // Drops what is shown and typed, without keeping any for undo.
  virtual void Clear() {}

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
  // Adds to the colours that the control gets of its own; aNatural is the palette that it would have with
  // them.
  virtual void AddColors(QPalette& ioPalette, const QPalette& aNatural) const;
  // The focus is left for good, and what stands in the control was taken.
  virtual void OnLeft() {}
  // Sends an event; returns whether it was cancelled.
  bool Notify(EBaseEvent aEvent);
  // The limit in force for a number as SetMaxChar gets it.
  [[nodiscard]] static int EffMaxChar(qint16 aMax);

private:
  void ApplyPlace();
  void LeaveFocus(const QFocusEvent& aEvent);
  [[nodiscard]] bool PopupIsOwn() const;

  QWidget* iWidget;
  QPointer<CVelumFieldNote> iNote;
  CVelumBaseSink* iSink;
  EBase iKind;
  qint16 iTabIndex = 0;
  float iLeft = 0;
  float iTop = 0;
  float iWidth = 0;
  float iHeight = 0;
  float iNudge = 0;
  qint32 iForeColor = ENoInt;
  qint32 iBackColor = ENoInt;
  QString iTag;
};
