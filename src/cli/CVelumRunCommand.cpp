// run: sends a message to a card or a field, and prints what the scripts answer.
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"
#include "script/CVelumPlainHost.h"

namespace {

qint64 Limit(const TVelumArgs& aArgs) {
  if (!aArgs.Has(u"limit"_s)) return 0;
  bool ok = false;
  const qint64 limit = aArgs.Value(u"limit"_s).toLongLong(&ok);
  if (!ok || limit <= 0) throw TVelumUsage{u"--limit takes a number of instructions above 0."_s};
  return limit;
}

Ref<CVelumCard> TargetCard(const TVelumArgs& aArgs, CVelumPlainHost& aHost) {
  if (!aArgs.Has(u"card"_s)) return aHost.CurCard();
  const QString name = aArgs.Value(u"card"_s);
  Ref<CVelumCard> card;
  if (!aHost.Stack()->GetCard(name, card)) CVelumError::Throw(EMsgCardNotFound, u"Run"_s, name, {});
  aHost.SetCurCard(card);
  return card;
}

Ref<CVelumControl> TargetField(const TVelumArgs& aArgs, const CVelumCard& aCard) {
  Ref<CVelumControl> control;
  if (!aArgs.Has(u"field"_s)) return control;
  const QString name = aArgs.Value(u"field"_s);
  const Ref<CVelumControlSet> background = aCard.Background();
  if (!background || !background->GetControlByName(name, control))
    CVelumError::Throw(EMsgControlNotFound, u"Run"_s, name, {});
  return control;
}

// The failure in the error record, and where in which script it was.
void ShowFailure(const TRunError& aError, CVelumTerminal& aTerminal) {
  if (CVelumError::GetErrorCode() == EMsgRunError)
    CVelumMsg::Show(aError.iMsg, EMsgCritical, aError.iParam0, aError.iParam1);
  else
    CVelumMsg::ShowLastError();
  const QString place = CVelumRunError::Place(aError);
  if (!place.isEmpty()) aTerminal.Complain(place);
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const qint64 limit = Limit(aArgs);
  if (aArgs.Has(u"save"_s)) CVelumCliFiles::CheckFolder(aArgs.Value(u"save"_s));
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  const QString message = aArgs.iOperands.at(1);
  const auto interpreter = MakeRef<CVelumInterpreter>();
  CVelumPlainHost host(open.iStack, interpreter);
  const Ref<CVelumCard> card = TargetCard(aArgs, host);
  if (!card) CVelumError::Throw(EMsgCardNotFound, u"Run"_s, QString(), {});
  interpreter->SetLimit(limit);
  interpreter->SetParamVal(aArgs.Value(u"param"_s));
  Ref<CVelumScripted> owner;
  try {
    owner = host.Send(card, TargetField(aArgs, *card), message);
  } catch (...) {
    CVelumError::CatchError(u"CVelumRunCommand.Run"_s);
    ShowFailure(interpreter->GetError(), aTerminal);
    return EExitFailed;
  }
  if (!owner) {
    aTerminal.Complain(u"There is no handler '%1'."_s.arg(message));
    return EExitFailed;
  }
  if (aArgs.Has(u"save"_s)) CVelumStackFile(aArgs.Value(u"save"_s)).SaveStack(open.iStack, open.iView);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::RunMessage() {
  static const TVelumCliCommand command{
      u"run"_s,
      {u"STACK"_s, u"MESSAGE"_s},
      u"send a message, and print a line for every answer of its scripts"_s,
      u"The handler is looked for in the field, the card, its background and the\n"
      "stack."_s,
      {{u"card"_s, u"NAME"_s, u"the card to send it to (the first one)"_s},
       {u"field"_s, u"NAME"_s, u"the field or button to send it to (none)"_s},
       {u"param"_s, u"TEXT"_s, u"the parameter of the message"_s},
       {u"save"_s, u"OUT"_s, u"save the stack as OUT when all went well"_s},
       {u"limit"_s, u"N"_s, u"stop the scripts after N instructions (no limit)"_s}},
      false,
      Run,
  };
  return command;
}
