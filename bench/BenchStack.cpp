#include "BenchStack.h"

#include <algorithm>
#include <span>

namespace {

struct TField {
  const char16_t* iName;
  qint32 iType;
};

constexpr TField EFields[] = {
    {u"First", EConText},
    {u"Last", EConText},
    {u"Street", EConText},
    {u"City", EConText},
    {u"Remark", EConText},
    {u"Number", EConInteger},
    {u"Amount", EConInteger},
    {u"Group", EConInteger},
    {u"Weight", EConReal},
    {u"Since", EConDate},
    // Only of wide stacks.
    {u"Title", EConText},
    {u"Phone", EConText},
    {u"Code", EConInteger},
    {u"Price", EConReal},
    {u"Until", EConDate},
};
constexpr size_t ENarrow = 10;

Ref<CVelumControl> FieldOf(const CVelumControlSet& aBackground, const QString& aName) {
  Ref<CVelumControl> control;
  static_cast<void>(aBackground.GetControlByName(aName, control));
  return control;
}

} // namespace

BenchStack::BenchStack(EKind aKind) : iKind(aKind), iStack(MakeRef<CVelumStack>(u"Measured"_s)) {
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  if (iStack->GetFirstBackground(first, index)) iStack->DeleteBackground(first, false);
  iBackgrounds.append(NewBackground(u"People"_s));
  if (aKind == ELists || aKind == EWide) iBackgrounds.append(NewBackground(u"Things"_s));
  if (aKind == EKeptSorted || aKind == ELists) KeepSorted(iBackgrounds.first(), u"Last"_s);
  if (aKind != ELists) return;
  KeepSorted(iBackgrounds.last(), u"Number"_s);
  AddListBackground();
}

QString BenchStack::KindName(EKind aKind) {
  switch (aKind) {
  case EPlain:
    return u"plain"_s;
  case EKeptSorted:
    return u"kept sorted"_s;
  case ELists:
    return u"lists"_s;
  case EWide:
    return u"wide"_s;
  }
  return {};
}

Ref<CVelumControlSet> BenchStack::NewBackground(const QString& aName) {
  const auto background = MakeRef<CVelumControlSet>(aName, iStack->IdGen().NextId());
  const auto fields = std::span(EFields).first(iKind == EWide ? std::size(EFields) : ENarrow);
  for (const TField& field : fields) {
    const QString name = QString::fromUtf16(field.iName);
    const auto control = MakeRef<CVelumControl>(iStack->IdGen().NextId(), name, field.iType);
    control->SetFlags(EConInCardView | EConInCardList);
    background->AddControl(control, ENoInt);
  }
  iStack->AddBackground(background);
  return background;
}

void BenchStack::KeepSorted(const Ref<CVelumControlSet>& aBackground, const QString& aField) {
  const auto key = MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), aField, aBackground->Id());
  const Ref<CVelumControl> field = FieldOf(*aBackground, aField);
  key->AddKeyPart(field->ConType(), field->Id(), EWayAscending, field->ConType() == EConText ? 12 : 11);
  iStack->AddSortKey(key);
  aBackground->SetFlag(ECseKeepCardsSorted, true);
  iStack->NewIndexForSortKey(key);
  iStack->SetControlDynFlags();
}

void BenchStack::AddListBackground() {
  const Ref<CVelumControlSet> background = NewBackground(u"Groups"_s);
  const auto list = MakeRef<CVelumControl>(iStack->IdGen().NextId(), u"Members"_s, EConList);
  list->SetFlags(EConInCardView | EConCardList);
  list->SetSelBackgroundId(iBackgrounds.first()->Id());
  list->SetSelControlId(FieldOf(*iBackgrounds.first(), u"Group"_s)->Id());
  list->SetRefControlId(FieldOf(*background, u"Group"_s)->Id());
  background->AddControl(list, ENoInt);
  const auto card = MakeRef<CVelumCard>(u"Group 7"_s, background);
  iStack->AddCard(card, nullptr, false);
  card->SetControlVal(list->RefControlId(), TVelumValue::OfInt(7));
  iStack->SetControlDynFlags();
}

const Ref<CVelumControlSet>& BenchStack::BackgroundFor(qint32 aNum) const {
  return iBackgrounds.at(aNum % iBackgrounds.size());
}

qint32 BenchStack::Below(qint32 aLimit) {
  return static_cast<qint32>(iRandom() % static_cast<quint32>(aLimit));
}

TVelumValue BenchStack::ValFor(const CVelumControl& aControl) {
  constexpr int textLen = 12;
  switch (aControl.ConType()) {
  case EConText: {
    QString text(textLen, Qt::Uninitialized);
    for (QChar& c : text) c = QChar(u'a' + Below(26));
    text[0] = text.at(0).toUpper();
    return TVelumValue::OfStr(text);
  }
  case EConInteger:
    return TVelumValue::OfInt(Below(1000000));
  case EConReal:
    return TVelumValue::OfReal(Below(1000000) / 100.0);
  default:
    return TVelumValue::OfDate(30000 + Below(15000));
  }
}

Ref<CVelumCard> BenchStack::NewCard(const QString& aName, qint32 aNum) {
  const Ref<CVelumControlSet>& background = BackgroundFor(aNum);
  auto card = MakeRef<CVelumCard>(aName, background);
  for (qint32 i = 0; i < background->NumControls(); ++i) {
    const CVelumControl& control = *background->ControlAt(i);
    TVelumElem elem;
    elem.iIntKey = control.Id();
    elem.iVal = ValFor(control);
    card->NewValues().CreateIntKey(elem);
  }
  return card;
}

QList<QString> BenchStack::Names(qint32 aCount) {
  QList<QString> names;
  names.reserve(aCount);
  for (qint32 i = 0; i < aCount; ++i) names.append(u"Card %1"_s.arg(i, 7, 10, QChar(u'0')));
  std::shuffle(names.begin(), names.end(), iRandom);
  return names;
}

void BenchStack::AddCards(const QList<QString>& aNames) {
  qint32 num = 0;
  for (const QString& name : aNames) iStack->AddCard(NewCard(name, num++), nullptr, false);
}

void BenchStack::AddBulk(const QList<QString>& aNames) {
  iStack->BeginBulk(static_cast<qint32>(aNames.size()));
  AddCards(aNames);
  iStack->EndBulk();
}
