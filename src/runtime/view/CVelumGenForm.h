// The card window: a fixed pool of base controls that the card view hands out, and the road of their events.
#pragma once

#include "runtime/lists/CVelumCardSelect.h"
#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumForm.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHash>
#include <QList>
#include <QWidget>

class CVelumBasePictureBox;
class CVelumStackView;
class QKeyEvent;
class QMimeData;

// Holds no logic: all events go to its view. Pool members are named by a prefix of their kind and a number
// from 0, such as "fGenTextBox0"; besides them there are "fProgressBox" with "fProgress" inside it,
// "fWallPaperBox" (keeps the wallpaper, never seen), "fTempPicBox", and "fLinesBox" for the lines of lists.
class CVelumGenForm final : public QWidget, public CVelumForm, public CVelumBaseSink, public CVelumCardTaker {
  Q_OBJECT
public:
  CVelumGenForm();
  ~CVelumGenForm() override;
  // The prefix of the members of a kind.
  [[nodiscard]] static QString Prefix(EBase aKind);

  [[nodiscard]] QWidget* Widget() override { return this; }
  // The view whose cards it shows, from then on until it is unloaded; without one, events go nowhere.
  void SetView(const Ref<CVelumStackView>& aView);
  // Takes the place that the stack keeps for the card window.
  void Load() override;
  void Unload() override;

  // Null for a name that no control has. Exact, case-sensitive.
  [[nodiscard]] CVelumBaseControl* FindControl(const QString& aName) const { return iByName.value(aName); }
  [[nodiscard]] const QList<CVelumBaseControl*>& Controls() const { return iControls; }
  // The control that has the focus, or will have it when the window becomes active; or null.
  [[nodiscard]] CVelumBaseControl* ActiveControl() const;
  // Takes the focus from all controls.
  void DropFocus();
  // Sizes in twips; the outer width counts the frame of the window too.
  [[nodiscard]] float ClientWidth() const { return CVelumTwips::FromPixel(width()); }
  [[nodiscard]] float ClientHeight() const { return CVelumTwips::FromPixel(height()); }
  [[nodiscard]] float OuterWidth();
  // 0xBBGGRR; ENoInt is the desktop's own colour.
  [[nodiscard]] qint32 BackColor() const { return iBackColor; }
  void SetBackColor(qint32 aColor);
  void SetCaption(const QString& aCaption);
  [[nodiscard]] const QString& Caption() const { return iCaption; }

  // The box in which the lines of a list are edited; hidden until ShowLines puts it over a control.
  [[nodiscard]] CVelumBaseControl& LinesBox() { return *iLinesBox; }
  void ShowLines(const CVelumBaseControl& aOver, const QString& aText);

  // Goes to a card that was chosen in the window for it.
  void SetCard(int aTag, const Ref<CVelumCard>& aCard) override;

  // Imports what was dropped on a picture box or pasted into it.
  void TakeOffer(CVelumBasePictureBox& aBox, const QMimeData& aData);

  void BaseEvent(CVelumBaseControl& aBase, EBaseEvent aEvent, bool& ioCancel) override;

  // The card was changed by a click. Should that click become a double click, the second half is not for
  // whatever lies under the pointer now.
  void DropDblClick();

  // True while the program sets a check box: its click is not the user's then.
  bool iShowing = false;

protected:
  bool event(QEvent* aEvent) override;
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;
  void mouseReleaseEvent(QMouseEvent* aEvent) override;
  void mouseDoubleClickEvent(QMouseEvent* aEvent) override;
  void closeEvent(QCloseEvent* aEvent) override;

private:
  struct TRoad;
  // Takes the colours of the desktop anew, as far as the card leaves them.
  void FollowPalette();
  void RefreshColors();
  // Both, for a desktop that has become another.
  void FollowDesktop();
  void QueueFollow();
  // Lays out for the size that there will be in aMs milliseconds: never while the toolkit is at a resize, for
  // what would be painted meanwhile is painted for the size before.
  void QueueLayout(int aMs);
  void LayOut();
  void AddPool(EBase aKind);
  void Add(CVelumBaseControl* aBase);
  void AddOthers();
  // Where the events of the pool go.
  void OnChange(CVelumBaseControl& aBase, bool& ioCancel);
  void OnClick(CVelumBaseControl& aBase, bool& ioCancel);
  void OnCheckClick(CVelumBaseControl& aBase, bool& ioCancel);
  void OnDblClick(CVelumBaseControl& aBase, bool& ioCancel);
  void OnGotFocus(CVelumBaseControl& aBase, bool& ioCancel);
  void OnPaste(CVelumBaseControl& aBase, bool& ioCancel);
  void OnValidate(CVelumBaseControl& aBase, bool& ioCancel);
  void OnEscape(CVelumBaseControl& aBase, bool& ioCancel);
  void OnItemClick(CVelumBaseControl& aBase, bool& ioCancel);
  void OnEditLines(CVelumBaseControl& aBase, bool& ioCancel);
  bool LinesKey(const QKeyEvent& aKey);
  bool DropsMouse(const QObject* aWatched, const QEvent& aEvent);

  Ref<CVelumStackView> iView;
  QList<CVelumBaseControl*> iControls;
  QHash<QString, CVelumBaseControl*> iByName;
  CVelumBaseControl* iLinesBox = nullptr;
  qint32 iBackColor = ENoInt;
  qint64 iDesktopKey = QGuiApplication::palette().cacheKey(); // of the desktop's palette that is followed
  QString iCaption;
  QElapsedTimer iCardClick;   // runs from a click that changed the card
  bool iDropsRelease = false; // of a double click that was dropped
  bool iLayoutQueued = false;
};
