// The commands of the menu Edit.
#pragma once

#include <QCoreApplication>

class QWidget;

// Each acts on the text entry that has the focus where it can; a text entry with changes of its own is also
// the first that undo and redo are for. Otherwise they take steps of the open stack back, or make them again.
class CVelumEditCommands {
  Q_DECLARE_TR_FUNCTIONS(CVelumEditCommands)

public:
  explicit CVelumEditCommands(QWidget& aFrame) : iFrame(aFrame) {}

  [[nodiscard]] bool CanUndo() const;
  [[nodiscard]] bool CanRedo() const;
  // What the menu shows: "&Undo Delete card 'Ann'".
  [[nodiscard]] QString UndoText() const;
  [[nodiscard]] QString RedoText() const;
  void Undo();
  void Redo();

  [[nodiscard]] bool CanCut() const;
  [[nodiscard]] bool CanCopy() const;
  [[nodiscard]] bool CanPaste() const;
  [[nodiscard]] bool CanDelete() const;
  [[nodiscard]] bool CanSelectAll() const;
  void Cut();
  void Copy();
  void Paste();
  // What is marked in the entry, or the character behind the cursor; false if no entry has the focus.
  [[nodiscard]] bool Delete();
  void SelectAll();
  // Whether the card list has the focus, where deleting means the card.
  [[nodiscard]] static bool InCardList();

private:
  void Replay(bool aAgain);
  [[nodiscard]] bool DropEntries() const;

  QWidget& iFrame;
};
