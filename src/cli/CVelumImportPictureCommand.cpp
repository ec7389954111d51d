// import-picture: brings a picture with its sample into a field of a card.
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumMsg.h"
#include "exchange/CVelumExchangeLib.h"
#include "persist/CVelumStackFile.h"

#include <QJsonObject>

namespace {

Ref<CVelumCard> TargetCard(const CVelumStack& aStack, const QString& aName) {
  Ref<CVelumCard> card;
  if (!aStack.GetCard(aName, card)) CVelumError::Throw(EMsgCardNotFound, u"ImportPicture"_s, aName, {});
  return card;
}

Ref<CVelumControl> TargetField(const CVelumCard& aCard, const QString& aName) {
  const Ref<CVelumControlSet> background = aCard.Background();
  Ref<CVelumControl> control;
  if (!background || !background->GetControlByName(aName, control))
    CVelumError::Throw(EMsgControlNotFound, u"ImportPicture"_s, aName, {});
  if (control->ConType() != EConPicture)
    CVelumError::RaiseHost(EHostTypeMismatch, u"the field '%1' holds no pictures"_s.arg(aName));
  return control;
}

void Print(const TVelumArgs& aArgs, const CVelumBlob& aBlob, CVelumTerminal& aTerminal) {
  const QString out = aArgs.Value(u"out"_s, aArgs.Operand(1));
  const QString card = aArgs.Value(u"card"_s);
  const QString field = aArgs.Value(u"field"_s);
  QJsonObject facts{{u"file"_s, aArgs.Operand(0)},
                    {u"stack"_s, out},
                    {u"card"_s, card},
                    {u"field"_s, field},
                    {u"picture"_s, aBlob.Id()}};
  if (aBlob.SampleId() != ENoInt) facts.insert(u"sample"_s, aBlob.SampleId());
  if (aArgs.iJson) return aTerminal.Json(facts);
  const QString sample = aBlob.SampleId() == ENoInt ? QString() : u", shown by a sample"_s;
  aTerminal.Line(CVelumCliStack::OneLine(
      u"%1: %2 in field '%3' of card '%4'%5"_s.arg(out, aArgs.Operand(0), field, card, sample)));
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  for (const QString& needed : {u"card"_s, u"field"_s})
    if (!aArgs.Has(needed)) throw TVelumUsage{u"--%1 is missing."_s.arg(needed)};
  const QString path = aArgs.Operand(1);
  if (aArgs.Has(u"out"_s)) CVelumCliFiles::CheckNewStack(aArgs.Value(u"out"_s), aArgs.Operand(0));
  const TVelumOpenStack open = CVelumCliStack::Open(path);
  const Ref<CVelumCard> card = TargetCard(*open.iStack, aArgs.Value(u"card"_s));
  const Ref<CVelumControl> field = TargetField(*card, aArgs.Value(u"field"_s));
  Ref<CVelumBlob> blob;
  if (!CVelumLib::HandleImportPic(*open.iStack, aArgs.iOperands.at(0), blob)) return EExitFailed;
  card->SetControlVal(field->Id(), TVelumValue::OfBlobId(CVelumLib::FieldBlobId(*blob)));
  CVelumStackFile(aArgs.Value(u"out"_s, path)).SaveStack(open.iStack, open.iView);
  Print(aArgs, *blob, aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::ImportPicture() {
  static const TVelumCliCommand command{
      u"import-picture"_s,
      {u"FILE"_s, u"STACK"_s},
      u"bring a picture file into a field of a card"_s,
      u"The picture is kept as it is. One of more than 200 pixels to a side gets a\n"
      "reduced sample, which the card then shows. GIF, JPEG, PNG and BMP are told by\n"
      "content; for another format there is a question (see --yes). What was done is\n"
      "printed."_s,
      {{u"card"_s, u"NAME"_s, u"the card (needed)"_s},
       {u"field"_s, u"NAME"_s, u"the picture field of the card (needed)"_s},
       {u"out"_s, u"OUT"_s, u"save as OUT instead of into STACK"_s}},
      true,
      Run,
  };
  return command;
}
