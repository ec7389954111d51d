#include "shell/frame/CVelumFormCommands.h"

#include "runtime/lists/CVelumCardSelect.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/dialogs/CVelumWelcome.h"
#include "shell/frame/CVelumEditors.h"
#include "toolkit/CVelumWinMan.h"

namespace {

// What a command is about; taken before its window opens, which moves the focus.
struct TSubject {
  Ref<CVelumCard> iCard;
  Ref<CVelumControlSet> iBackground; // that of the card, and of the field
  Ref<CVelumControl> iField;
};

TSubject CurSubject() {
  TSubject subject;
  subject.iCard = gStackView ? gStackView->CurCard() : nullptr;
  if (subject.iCard) subject.iBackground = subject.iCard->Background();
  subject.iField = CVelumCommandTable::FocusedControl();
  return subject;
}

bool IsThere(EVelumShows aShows, const TSubject& aSubject) {
  switch (aShows) {
  case EVelumShows::Background:
  case EVelumShows::Card:
    return aSubject.iCard && aSubject.iBackground;
  case EVelumShows::Field:
    return aSubject.iField && aSubject.iBackground;
  default:
    return true;
  }
}

// The card that is chosen is gone to.
void ChooseCard(CVelumForm& aForm) {
  auto* select = dynamic_cast<CVelumCardSelect*>(&aForm);
  if (select && gStackView && gStackView->CardView())
    select->SelectCard(&gStackView->CardView()->ViewForm(), nullptr, 0);
}

void TellCardEditor(CVelumCardEditor& aEditor, EVelumShows aShows, const TSubject& aSubject) {
  if (aShows == EVelumShows::Card) aEditor.SetAndShowCard(aSubject.iCard);
  if (aShows == EVelumShows::NewCard && aSubject.iBackground) aEditor.NewCard(aSubject.iBackground);
}

void TellControlEditor(CVelumControlEditor& aEditor, EVelumShows aShows, const TSubject& aSubject) {
  if (aShows == EVelumShows::Background) aEditor.SetAndShowBackground(aSubject.iBackground);
  if (aShows == EVelumShows::Field) aEditor.SetAndShowControl(aSubject.iBackground, aSubject.iField);
}

void Tell(CVelumForm& aForm, EVelumShows aShows, const TSubject& aSubject) {
  if (aShows == EVelumShows::CardChoice) ChooseCard(aForm);
  auto* about = dynamic_cast<CVelumWelcome*>(&aForm);
  if (about && aShows == EVelumShows::About) about->StayUntilOk();
  if (auto* cards = dynamic_cast<CVelumCardEditor*>(&aForm)) TellCardEditor(*cards, aShows, aSubject);
  if (auto* controls = dynamic_cast<CVelumControlEditor*>(&aForm))
    TellControlEditor(*controls, aShows, aSubject);
  auto* backgrounds = dynamic_cast<CVelumBackgroundEditor*>(&aForm);
  if (backgrounds && aShows == EVelumShows::Background)
    backgrounds->SetAndShowBackground(aSubject.iBackground);
}

} // namespace

void CVelumFormCommands::Show(const TVelumCommand& aCommand, const QString& aCaption, QWidget* aFrame) {
  const TSubject subject = CurSubject();
  if (!IsThere(aCommand.iShows, subject)) return;
  CVelumForm* form = CVelumNotBuilt::OpenForm(aCommand.iForm.toString(), aCaption, aFrame);
  if (form) Tell(*form, aCommand.iShows, subject);
}
