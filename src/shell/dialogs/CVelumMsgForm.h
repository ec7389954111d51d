// The message box.
#pragma once

#include "core/CVelumSeams.h"

#include <QDialog>
#include <memory>

namespace Ui {
class CVelumMsgForm;
}

// Lives for one message. Questions have fYes, fNo (the default) and fHelp0, the other classes fOk (the
// default) and fHelp1. A plain text has nothing but fOk. Esc and the close box answer no.
class CVelumMsgForm final : public QDialog {
  Q_OBJECT

public:
  explicit CVelumMsgForm(QWidget* aOwner);
  ~CVelumMsgForm() override;

  // Picture and buttons of a class.
  void SetClass(EMsgClass aClass);
  // No picture and no help.
  void SetPlain();
  // A long text scrolls; one of more than EMaxText characters is cut, with a note.
  void SetText(const QString& aText);
  static constexpr qsizetype EMaxText = 100000;
  // The name of the message's constant, for its help page.
  void SetMsgName(const QString& aName) { iMsgName = aName; }
  // Lets the user choose not to see the message again; Silenced is what was chosen.
  void OfferSilence();
  [[nodiscard]] bool Silenced() const;
  // Adds fStop, which closes the form; Stopped is whether it was that.
  void OfferStop();
  [[nodiscard]] bool Stopped() const { return iStopped; }
  // Shows the form over aFrame (or the screen); returns true for fYes. The form may be gone then, with its
  // owner.
  bool Ask(const QWidget* aFrame);

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  void Help();
  void FitText();

  std::unique_ptr<Ui::CVelumMsgForm> iUi;
  QString iMsgName;
  bool iResult = false;
  bool iStopped = false;
};
