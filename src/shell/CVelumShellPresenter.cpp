#include "shell/CVelumShellPresenter.h"

#include "shell/CVelumFrame.h"
#include "shell/CVelumHelpForm.h"
#include "shell/CVelumMsgForm.h"
#include "shell/CVelumSilence.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>
#include <QMessageBox>

namespace {

QWidget* FrameWidget() {
  CVelumForm* frame = CVelumWinMan::Frame();
  return frame ? frame->Widget() : nullptr;
}

// A box belongs to the window that is waiting, so that it lies above it.
QWidget* Owner() {
  QWidget* modal = QApplication::activeModalWidget();
  return modal ? modal : FrameWidget();
}

} // namespace

bool CVelumShellPresenter::Message(qint32, EMsgClass aClass, const QString& aName, const QString& aText) {
  CVelumMsgForm form(Owner());
  form.SetMsgName(aName);
  form.SetClass(aClass);
  form.SetText(aText);
  CVelumSilence* silence = CVelumSilence::Current();
  if (silence) form.OfferSilence();
  const bool answer = form.Ask(FrameWidget());
  if (silence && form.Silenced()) silence->SetChosen();
  CVelumHelpForm::Release(&form);
  return answer;
}

void CVelumShellPresenter::Tell(const QString& aText) {
  QMessageBox box(QMessageBox::NoIcon, u"Orvelles"_s, {}, QMessageBox::Ok, Owner());
  box.setTextFormat(Qt::PlainText);
  box.setText(aText);
  box.exec();
}

void CVelumShellPresenter::HelpPage(const QString& aPage) {
  CVelumHelpForm::ShowPage(aPage);
}

void CVelumShellPresenter::ScriptProgress(int aSteps) {
  if (gFrame) gFrame->ScriptBar()->ShowProgress(aSteps);
}
