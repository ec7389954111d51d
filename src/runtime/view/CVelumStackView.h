// The run-time companion of the open stack: current card, history, focus, and what the events of the card
// window do.
#pragma once

#include "model/CVelumStackHost.h"
#include "model/change/CVelumUndo.h"
#include "persist/CVelumViewState.h"
#include "runtime/lists/CVelumCardListView.h"
#include "runtime/view/CVelumCardView.h"
#include "runtime/view/CVelumHistory.h"

#include <QCoreApplication>
#include <QPointer>
#include <QRectF>

class CVelumBaseRichTextBox;
class CVelumScriptRunner;

// One for each open stack. Events of the card window end up here and become changes of values and messages
// to scripts. Pending window events run at fixed points, also in the middle of a change of cards.
class CVelumStackView final : public CVelumObject, public CVelumStackHost {
  Q_DECLARE_TR_FUNCTIONS(CVelumStackView)

public:
  // A view of a new stack: both windows are to be open, at the default places.
  CVelumStackView(const QString& aName, Ref<CVelumStack> aStack);
  // A view of a stack that was read together with aState.
  CVelumStackView(Ref<CVelumViewState> aState, Ref<CVelumStack> aStack);
  ~CVelumStackView() override;

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumStackView name="_s + Name(); }
  [[nodiscard]] const QString& Name() const { return iState->iName; }
  [[nodiscard]] Ref<CVelumStack> Stack() const override { return iStack; }
  // What the stack file holds of the view; its rectangles and flags are kept up to date by UpdateRect.
  [[nodiscard]] Ref<CVelumViewState> State() const { return iState; }
  [[nodiscard]] Ref<CVelumRect> CardViewRect() const { return iState->iCardViewRect; }
  [[nodiscard]] Ref<CVelumRect> CardListRect() const { return iState->iCardListRect; }
  // The same, for the window manager.
  [[nodiscard]] QRectF CardViewPlace() const;
  [[nodiscard]] QRectF CardListPlace() const;
  // Null before the card window was opened first.
  [[nodiscard]] CVelumCardView* CardView() const { return iCardView.get(); }
  // Null before the list was opened first.
  [[nodiscard]] CVelumCardListView* CardListView() const { return iCardListView.get(); }
  [[nodiscard]] Ref<CVelumCard> CurCard() const { return iCurCard; }
  [[nodiscard]] CVelumBaseControl* CurObj() const { return iCurObj; }
  // Whether the user has changed it since it got the focus.
  [[nodiscard]] bool CurObjChanged() const { return iCurObjChanged; }
  [[nodiscard]] const CVelumHistory& History() const { return iHistory; }
  [[nodiscard]] bool CardViewIsOpen() const { return iCardViewOpen; }
  [[nodiscard]] bool CardListIsOpen() const { return iCardListOpen; }
  // The sort key text of the current card when a field of a kept-sorted background got the focus.
  [[nodiscard]] const QString& OldKey() const { return iOldKey; }
  // Whether a value of the current card was set since it was shown.
  [[nodiscard]] bool CardChanged() const { return iCardChanged; }

  // Whether a card is one of the stack's.
  [[nodiscard]] bool Holds(const Ref<CVelumCard>& aCard) const;

  // Cards are taken by value where the current card, or an entry of the history, may be handed in: both
  // change on the way.

  // Opens what the stored state says: the list if it was open, and the card window.
  void OpenViews();
  void OpenCardView();
  // With aRemember the pictures of the window are given up.
  void CloseCardView(bool aRemember);
  // Opens the list, or fills the open one anew where it stands.
  void OpenCardList();
  // Opens the list if it is not open, and brings it to the front.
  void ShowCardList();
  void CloseCardList();
  // Closes all and unloads the forms.
  void Release();
  // Takes what stands in the field that has the focus. The focus stays, and what is typed next is taken too.
  // False when the entry was refused, as RefuseEntry has it.
  bool ValidateCurControl();
  // Takes what stands in the field that has the focus, if it can be taken.
  void LeaveCurCard();
  // Takes the places of the open windows into the state.
  void UpdateRect();
  void RefreshViews(bool aCardView, bool aCardList);
  // Lays out the card window anew when its size is another; what is being typed is taken first. While the
  // view is in the middle of a change nothing is done: then ResizePending, and it is to be called again.
  void BaseFormResize();
  [[nodiscard]] bool ResizePending() const { return iResizePending; }
  // Goes to the card that is selected in the list.
  void GoToSelectedCard();
  // Fits the list to its window.
  void ResizeCardList();
  void EmptyStack();
  // Nothing happens while RefuseEntry refuses.
  void GoToCard(Ref<CVelumCard> aCard);
  void SetFocusToCardView();
  [[nodiscard]] bool GetCurCard(Ref<CVelumCard>& aCard) const;
  bool HistoryPrev(Ref<CVelumCard>& aCard);
  bool HistoryNext(Ref<CVelumCard>& aCard);
  bool OrderFirst(Ref<CVelumCard>& aCard);
  bool OrderLast(Ref<CVelumCard>& aCard);
  bool OrderNext(Ref<CVelumCard>& aCard);
  bool OrderPrev(Ref<CVelumCard>& aCard);
  // Whether OrderFirst or OrderPrev, OrderLast or OrderNext, HistoryPrev, HistoryNext would show another
  // card.
  [[nodiscard]] bool CanGoUp() const;
  [[nodiscard]] bool CanGoDown() const;
  [[nodiscard]] bool CanGoBack() const { return iHistory.HasPrev(iCurCard); }
  [[nodiscard]] bool CanGoForw() const { return iHistory.HasNext(iCurCard); }
  // Adds a card with its default values in front of aBefore (nothing: at the end); the current card stays.
  void AddCard(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBefore);
  // When the current card goes, another one is shown, if possible not of aExclude (or nothing).
  void DeleteCard(Ref<CVelumCard> aCard, const Ref<CVelumControlSet>& aExclude);
  void DeleteBackground(const Ref<CVelumControlSet>& aBackground, bool aOnlyCards) override;
  void DeleteOldCards(const Ref<CVelumControlSet>& aBackground, qint32 aEnd) override;
  void UpdateAfterControlChange();
  // Sets a value for a script or a dialog, and shows it.
  void SetCardValue(Ref<CVelumCard> aCard, qint32 aControlId, const TVelumValue& aValue);

  // Undo and redo of all that changed the stack since its views were opened. Both show what came back, run no
  // script, and are off while one runs.
  [[nodiscard]] bool CanUndo() const;
  [[nodiscard]] bool CanRedo() const;
  // What the next step is called; empty without one.
  [[nodiscard]] QString UndoName() const;
  [[nodiscard]] QString RedoName() const;
  // What was taken back, or made again, by its name; empty when nothing was.
  QString Undo();
  QString Redo();
  // What can be taken back; null before the views are opened.
  [[nodiscard]] CVelumUndo* Steps() const { return iUndo.get(); }
  // Whether the cards of a background, or all cards for null, may be deleted: asks first where undo could not
  // hold them.
  [[nodiscard]] bool MayDelete(const CVelumControlSet* aBackground) const;
  // Whether the stack differs from what its file holds; steps that were taken back do not count.
  [[nodiscard]] bool HasUnsavedChanges() const;
  // The stack has been saved as it is.
  void NoteSaved();

  // Events of the card window.
  void BaseObjChange(CVelumBaseControl* aObj);
  // A base control, or the menu item of a command.
  void BaseObjClick(QObject* aObj);
  void BaseObjDblClick(CVelumBaseControl* aObj);
  // A click on a line: in a list of cards it goes to the card.
  void BaseObjItemClick(CVelumBaseControl* aObj);
  // Opens the lines of a list that is not computed, or of a combo's list, in a text box over it.
  void EditLines(CVelumBaseControl* aObj);
  // Stores what stands in that box, and closes it. Nothing happens when it is closed.
  void TakeLines();
  // Closes it and leaves the list as it was.
  void DropLines();
  // A click on a link of a wiki field: "select:" and a text sends "select" with that text as ParamVal; any
  // other target is the name of a card to go to.
  void BaseObjLink(CVelumBaseControl* aObj, const QString& aTarget);
  void BaseObjGotFocus(CVelumBaseControl* aObj);
  // Makes the clipboard's text the value of a field that may be changed, and shows it. Without a text in the
  // clipboard nothing happens.
  void BaseObjPaste(CVelumBaseControl* aObj);
  // Cancelled when the entry is refused.
  void BaseObjValidate(CVelumBaseControl* aObj, bool& ioCancel);
  // Whether what was typed into the field that has the focus is no value of that field from end to end. Then
  // a note at the field says so, and it gets the focus back: nothing that leaves the field, the card or the
  // stack may go on until the entry is mended or taken back.
  [[nodiscard]] bool RefuseEntry();
  // Brings back the value that was there before such an entry; false when there is none.
  bool TakeBackEntry();
  // Nothing is to be done: the focus goes next, and validates its field by an event of its own. This one
  // comes while the toolkit walks over the widgets of the window, where no other events may be let in.
  void BaseFormLostFocus() {}
  // Sends a message to a control or a card; nothing stands for the current card. Failures are shown.
  void ExecScript(const Ref<CVelumObject>& aObj, const QString& aMsg);
  // A standard command of EStdCmd; asserts "ExecStdCmd" for any other number.
  void ExecStdCmd(qint16 aCmd, const CVelumControl& aControl);

private:
  [[nodiscard]] QString ValueStepName(const CVelumCard& aCard, qint32 aControlId) const;
  [[nodiscard]] static QString ScriptStepName(const CVelumObject* aObj);
  void StartUndo();
  [[nodiscard]] bool MayTakeBack() const;
  QString Replay(bool aAgain);
  void LetGo(const TGoing& aGoing);
  void ShowReplayed(const TReplayed& aReplayed);
  void FocusField(qint32 aControlId);
  void SetDefaultRects();
  void SetCurCard(Ref<CVelumCard> aCard);
  void ShowCurCard();
  void ShowCurCardFailed(const Ref<CVelumCard>& aCard);
  void ShowTitle();
  void Relayout();
  void FocusCurrent();
  [[nodiscard]] Ref<CVelumControl> UnreadControl() const;
  struct TKept;
  [[nodiscard]] TKept KeepEntry() const;
  void RestoreEntry(const TKept& aKept);
  void ForgetFocus();
  [[nodiscard]] bool FindOtherCard(const Ref<CVelumControlSet>& aExclude, Ref<CVelumCard>& aCard) const;
  void LeaveBackground(const Ref<CVelumControlSet>& aBackground);
  void LeaveDeletedCard(Ref<CVelumCard> aCard, const Ref<CVelumControlSet>& aExclude);
  [[nodiscard]] bool Bound(const CVelumBaseControl* aObj) const;
  void Touch(CVelumBaseControl* aObj);
  [[nodiscard]] Ref<CVelumControl> LinesControl(CVelumBaseControl* aObj) const;
  void CloseLines();
  [[nodiscard]] qint32 KeptPosition(const CVelumCard& aCard) const;
  void ShowMovedCard();
  [[nodiscard]] bool TakeValue(CVelumControl& aControl);
  void ShowStored(CVelumControl& aControl);
  // Computes the current card's lists of other cards and shows its values.
  void RenewCardLists();
  void GoToByClick(const Ref<CVelumCard>& aCard);
  void ClickCheckBox(CVelumBaseControl& aObj);
  void ClickText(CVelumBaseRichTextBox& aObj);
  void EditWikiText(const CVelumBaseControl& aObj);
  void ClickCommand(const QObject* aObj);
  void UpdateCardInList();
  void UpdateLine(const CVelumCard& aCard);
  void FollowCard();
  void TellCardShown() const;
  void RaiseCardList();
  void RunMessage(CVelumScriptRunner& aRunner, const Ref<CVelumObject>& aObj, const QString& aMsg);

  Ref<CVelumViewState> iState;
  Ref<CVelumStack> iStack;
  std::unique_ptr<CVelumUndo> iUndo; // from the first opening of the views on
  bool iReplaying = false;
  std::unique_ptr<CVelumCardView> iCardView;
  std::unique_ptr<CVelumCardListView> iCardListView;
  bool iCardViewOpen = false;
  bool iCardListOpen = false;
  bool iKeepListPos = false; // the list is filled anew and not to be brought up
  bool iNoChange = false;    // the program itself writes into controls
  bool iCardChanged = false;
  bool iResizePending = false; // the window's size changed while it was laid out
  QString iOldKey;
  CVelumHistory iHistory;
  Ref<CVelumCard> iCurCard;
  QPointer<CVelumBaseControl> iCurObj;
  bool iCurObjChanged = false;
  bool iValidating = false;
  Ref<CVelumControl> iLinesOf;      // whose lines are being edited
  Ref<CVelumControlSet> iFailedSet; // the background whose layout failed last: told once
};

// The view of the open stack; nothing when none is open.
extern Ref<CVelumStackView> gStackView;
