// The edit of one line in which nothing that is pasted stays unseen.
#pragma once

#include <QClipboard>
#include <QLineEdit>

// Takes texts of several lines as one line: however they come in, by key, menu, middle button or drop.
class CVelumLineEdit final : public QLineEdit {
  Q_OBJECT
public:
  explicit CVelumLineEdit(QWidget* aParent = nullptr);

  // aText on one line: line ends, tabs and other control characters become one blank, a row of them too; line
  // ends at the end of the text go.
  [[nodiscard]] static QString OneLine(const QString& aText);

Q_SIGNALS:
  // So many characters found no room any more.
  void NotFitting(int aNum);

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;
  void mouseReleaseEvent(QMouseEvent* aEvent) override;
  void contextMenuEvent(QContextMenuEvent* aEvent) override;
  void dropEvent(QDropEvent* aEvent) override;

private:
  void PasteFrom(QClipboard::Mode aMode);
  // Runs what brings aText in at the cursor, in place of aReplaced characters.
  template <class T> void Bring(const QString& aText, qsizetype aReplaced, T aHow);

  bool iBringing = false;
};
