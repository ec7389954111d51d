// cards: the lines of the card list.
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumValue.h"
#include "exchange/CVelumFieldNames.h"
#include "model/CVelumModelLib.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// Whether lines begin with the card's name: as the background says that is listed, else the stack's first.
bool WithName(const CVelumStack& aStack, const Ref<CVelumControlSet>& aChosen) {
  Ref<CVelumControlSet> background = aChosen;
  qint32 index = 0;
  if (!background && !aStack.GetFirstBackground(background, index)) return false;
  return background->Flag(ECseCardNameInList);
}

// The listed fields of a background, under names that an object can hold side by side.
struct TListed {
  QList<const CVelumControl*> iFields;
  QStringList iNames;
};

TListed ListedOf(const CVelumControlSet& aBackground) {
  TListed listed;
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    const CVelumControl* control = aBackground.ControlAt(i);
    if (!control->InCardList()) continue;
    listed.iFields.append(control);
    listed.iNames.append(control->Name());
  }
  listed.iNames = CVelumImports::NumberEqualNames(listed.iNames);
  return listed;
}

QJsonObject CardFacts(CVelumCard& aCard, QHash<qint32, TListed>& aListed) {
  QJsonObject values;
  const Ref<CVelumControlSet> background = aCard.Background();
  if (background && !aListed.contains(background->Id()))
    aListed.insert(background->Id(), ListedOf(*background));
  const TListed listed = background ? aListed.value(background->Id()) : TListed();
  for (qsizetype i = 0; i < listed.iFields.size(); ++i) {
    const CVelumControl* control = listed.iFields.at(i);
    const TVelumValue value = aCard.GetControlVal(control->Id(), false);
    values.insert(listed.iNames.at(i), CVelumValue::ValToExtText(value, control->FieldInfo()));
  }
  return {{u"id"_s, aCard.Id()},
          {u"name"_s, aCard.Name()},
          {u"background"_s, background ? background->Name() : QString()},
          {u"values"_s, values}};
}

QJsonArray ListFacts(const CVelumStack& aStack, const CVelumControlSet* aChosen) {
  QJsonArray cards;
  QHash<qint32, TListed> listed;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool found = aStack.GetFirstCard(card, index); found; found = aStack.GetNextCard(card, index)) {
    if (!aChosen || card->BackgroundId() == aChosen->Id()) cards.append(CardFacts(*card, listed));
  }
  return cards;
}

void ListLines(const CVelumStack& aStack, const CVelumControlSet* aChosen, bool aWithName,
               CVelumTerminal& aTerminal) {
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool found = aStack.GetFirstCard(card, index); found; found = aStack.GetNextCard(card, index)) {
    if (aChosen && card->BackgroundId() != aChosen->Id()) continue;
    aTerminal.Line(CVelumCliStack::OneLine(CVelumLib::LineOfCard(*card, aWithName)));
  }
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  Ref<CVelumControlSet> chosen;
  if (aArgs.Has(u"background"_s))
    chosen = CVelumCliStack::BackgroundByName(*open.iStack, aArgs.Value(u"background"_s));
  if (aArgs.iJson)
    aTerminal.Json({{u"cards"_s, ListFacts(*open.iStack, chosen.Get())}});
  else
    ListLines(*open.iStack, chosen.Get(), WithName(*open.iStack, chosen), aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Cards() {
  static const TVelumCliCommand command{
      u"cards"_s,
      {u"STACK"_s},
      u"print a line per card, as the card list shows it"_s,
      u"The columns are parted by tabs; line ends inside a value are printed as blanks."_s,
      {{u"background"_s, u"NAME"_s, u"only the cards of this background"_s}},
      true,
      Run,
  };
  return command;
}
