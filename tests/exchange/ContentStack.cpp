#include "exchange/ContentStack.h"

#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"

ContentStack::ContentStack() {
  CVelumLocale::Init(u"en_US"_s);
  CVelumMsg::InitMessages();
  CVelumModel::Install();
  CVelumExports::InitExports();
  iStack = MakeStack();
  iFirst = Background(*iStack, u"First Background"_s);
  iSecond = Background(*iStack, u"Second"_s);
}

Ref<CVelumControl> ContentStack::AddField(CVelumStack& aStack, const Ref<CVelumControlSet>& aSet,
                                          const QString& aName, qint32 aType) {
  auto control = MakeRef<CVelumControl>(aStack.IdGen().NextId(), aName, aType);
  aSet->AddControl(control, ENoInt);
  return control;
}

Ref<CVelumStack> ContentStack::MakeStack() {
  auto stack = MakeRef<CVelumStack>(u"Test"_s);
  const Ref<CVelumControlSet> first = Background(*stack, u"First Background"_s);
  const std::pair<QString, qint32> fields[] = {
      {u"Text"_s, EConText},    {u"Size"_s, EConInteger}, {u"Price"_s, EConReal},   {u"Since"_s, EConDate},
      {u"Open"_s, EConBoolean}, {u"Go"_s, EConCommand},   {u"Photo"_s, EConPicture}};
  for (const auto& [name, type] : fields) AddField(*stack, first, name, type);
  Ref<CVelumControl> price;
  EXPECT_TRUE(first->GetControlByName(u"Price"_s, price));
  price->SetDigits(2);
  auto second = MakeRef<CVelumControlSet>(u"Second"_s, stack->IdGen().NextId());
  stack->AddBackground(second);
  AddField(*stack, second, u"Text"_s, EConText);
  return stack;
}

Ref<CVelumControlSet> ContentStack::Background(const CVelumStack& aStack, const QString& aName) {
  Ref<CVelumControlSet> set;
  EXPECT_TRUE(aStack.GetBackgroundByName(aName, set));
  return set;
}

Ref<CVelumCard> ContentStack::AddCard(const Ref<CVelumControlSet>& aSet, const QString& aName,
                                      const QString& aText) {
  auto card = MakeRef<CVelumCard>(aName, aSet);
  iStack->AddCard(card, nullptr, false);
  if (!aText.isEmpty()) Set(card, u"Text"_s, TVelumValue::OfStr(aText));
  return card;
}

void ContentStack::Set(const Ref<CVelumCard>& aCard, const QString& aField, const TVelumValue& aVal) {
  Ref<CVelumControl> control;
  ASSERT_TRUE(aCard->Background()->GetControlByName(aField, control));
  aCard->SetControlVal(control->Id(), aVal);
}

QStringList ContentStack::Cards(const CVelumStack& aStack) {
  QStringList lines;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool more = aStack.GetFirstCard(card, index); more; more = aStack.GetNextCard(card, index)) {
    QString line = card->Background()->Name() + u'|' + card->Name();
    Ref<CVelumControl> control;
    for (qint32 i = 0; card->Background()->GetNextControl(control, i);)
      if (card->ControlValDef(control->Id()))
        line += u"|%1=%2"_s.arg(control->Name(),
                                CVelumValue::ValToIntText(card->GetControlVal(control->Id(), false)));
    lines.append(line);
  }
  return lines;
}

QString ContentStack::Val(const CVelumStack& aStack, qint32 aNum, const QString& aField) {
  Ref<CVelumCard> card;
  Ref<CVelumControl> control;
  EXPECT_TRUE(aStack.GetCardByNum(aNum, card));
  EXPECT_TRUE(card->Background()->GetControlByName(aField, control));
  if (!card->ControlValDef(control->Id())) return u"(none)"_s;
  return CVelumValue::ValToIntText(card->GetControlVal(control->Id(), false));
}
