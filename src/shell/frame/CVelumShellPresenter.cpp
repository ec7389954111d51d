#include "shell/frame/CVelumShellPresenter.h"

#include "shell/dialogs/CVelumMsgForm.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumSilence.h"
#include "shell/help/CVelumHelpForm.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>

namespace {

QWidget* FrameWidget() {
  CVelumForm* frame = CVelumWinMan::Frame();
  return frame ? frame->Widget() : nullptr;
}

// A box belongs to the window that is waiting, so that it lies above it.
QWidget* Owner() {
  for (QWidget* waiting : {QApplication::activeModalWidget(), QApplication::activeWindow()})
    if (waiting && waiting->isVisible()) return waiting;
  return FrameWidget();
}

// A box with nothing but a text, and with a button to stop the script that it comes from; true when that was
// pressed.
bool ShowPlain(const QString& aText, bool aMayStop) {
  // It goes when its owner goes.
  const QPointer<CVelumMsgForm> form = new CVelumMsgForm(Owner());
  form->SetPlain();
  if (aMayStop) form->OfferStop();
  form->SetText(aText);
  form->Ask(FrameWidget());
  if (!form) return false;
  const bool stopped = form->Stopped();
  CVelumHelpForm::Release(form);
  delete form;
  return stopped;
}

} // namespace

bool CVelumShellPresenter::Message(qint32, EMsgClass aClass, const QString& aName, const QString& aText) {
  // It goes when its owner goes.
  const QPointer<CVelumMsgForm> form = new CVelumMsgForm(Owner());
  form->SetMsgName(aName);
  form->SetClass(aClass);
  form->SetText(aText);
  CVelumSilence* silence = CVelumSilence::Current();
  if (silence) form->OfferSilence();
  const bool answer = form->Ask(FrameWidget());
  if (!form) return answer;
  if (silence && form->Silenced()) silence->SetChosen();
  CVelumHelpForm::Release(form);
  delete form;
  return answer;
}

void CVelumShellPresenter::Tell(const QString& aText) {
  ShowPlain(aText, false);
}

bool CVelumShellPresenter::Answer(const QString& aText) {
  return ShowPlain(aText, true);
}

// A button bears the name of a file without its folder; the text has the whole.
int CVelumShellPresenter::Choose(const QString& aText, const QStringList& aChoices) {
  QMessageBox box(QMessageBox::Question, u"Orvelles"_s, {}, QMessageBox::Cancel, Owner());
  box.setTextFormat(Qt::PlainText);
  box.setText(aText);
  box.setInformativeText(
      QCoreApplication::translate("CVelumShellPresenter", "Which one do you want to open?"));
  QList<QAbstractButton*> buttons;
  for (const QString& choice : aChoices)
    buttons.append(box.addButton(choice.section(u'/', -1), QMessageBox::AcceptRole));
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  return static_cast<int>(buttons.indexOf(box.clickedButton()));
}

void CVelumShellPresenter::HelpPage(const QString& aPage) {
  CVelumHelpForm::ShowPage(aPage);
}

void CVelumShellPresenter::ScriptProgress(int aSteps) {
  if (gFrame) gFrame->ScriptBar()->ShowProgress(aSteps);
}
