#include "SampleLayout.h"

#include "model/CVelumModelLib.h"

#include <array>

namespace {

constexpr qint32 Rgb(qint32 aRed, qint32 aGreen, qint32 aBlue) {
  return aRed | aGreen << 8 | aBlue << 16;
}

// Looks of a field beyond its type; numbers count characters and lines.
struct TLooks {
  qint16 iVisChar = 24;
  qint16 iListVisChar = ENoShort;
  bool iInList = false;
};

Ref<CVelumControl> AddField(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName,
                            ECon aType, const TLooks& aLooks) {
  auto field = MakeRef<CVelumControl>(aStack.IdGen().NextId(), aName, aType);
  field->SetLabel(aName);
  field->SetVisChar(aLooks.iVisChar);
  field->SetListVisChar(aLooks.iListVisChar);
  field->SetFlag(EConInCardList, aLooks.iInList);
  aBackground.AddControl(field, ENoInt);
  return field;
}

// The text of several lines that takes all the height that is left.
Ref<CVelumControl> AddNotes(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName) {
  const Ref<CVelumControl> notes = AddField(aStack, aBackground, aName, EConText, {60, 60, false});
  notes->SetVisLines(5);
  notes->SetFlag(EConMaxHeight, true);
  notes->SetBackColor(Rgb(255, 252, 240));
  notes->SetFont(MakeRef<CVelumFont>(u"DejaVu Serif"_s, ENoShort, Rgb(48, 40, 32)));
  return notes;
}

Ref<CVelumFont> BoldFont(qint32 aColor) {
  auto font = MakeRef<CVelumFont>(QString(), ENoShort, aColor);
  font->SetFlags(EFntBold);
  return font;
}

Ref<CVelumControlSet> NewBackground(CVelumStack& aStack, const QString& aName, const QString& aDescr,
                                    qint32 aColor) {
  auto background = MakeRef<CVelumControlSet>(aName, aStack.IdGen().NextId());
  background->SetDescr(aDescr);
  background->SetFlag(ECseDenseLayout, true);
  background->SetBackColor(aColor);
  aStack.AddBackground(background);
  return background;
}

Ref<CVelumControl> AddButton(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName,
                             EStdCmd aCmd) {
  auto button = MakeRef<CVelumControl>(aStack.IdGen().NextId(), aName, EConCommand);
  button->SetLabel(aName);
  button->SetStdCmd(aCmd);
  for (const EConFlag flag : {EConAsButton, EConStdCmd, EConFromBottom, EConInMenu})
    button->SetFlag(flag, true);
  aBackground.AddControl(button, ENoInt);
  return button;
}

} // namespace

qint32 SampleLayout::ContinentColor(const QString& aContinent) {
  static const std::array<std::pair<QString, qint32>, 6> colors{{
      {u"Africa"_s, Rgb(252, 233, 205)},
      {u"Asia"_s, Rgb(252, 222, 219)},
      {u"Europe"_s, Rgb(218, 230, 250)},
      {u"North America"_s, Rgb(230, 220, 246)},
      {u"South America"_s, Rgb(218, 242, 219)},
      {u"Oceania"_s, Rgb(211, 241, 243)},
  }};
  for (const auto& [name, color] : colors) {
    if (name == aContinent) return color;
  }
  return ENoInt;
}

TStartLayout SampleLayout::Start(CVelumStack& aStack) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (!aStack.GetFirstBackground(background, index)) return {};
  background->SetName(u"Start"_s);
  background->SetDescr(u"The card that the stack opens with."_s);
  background->SetFlag(ECseShowCardName, false);
  background->SetBackColor(Rgb(226, 238, 246));
  const Ref<CVelumControl> text = AddNotes(aStack, *background, u"Welcome"_s);
  text->SetLabel(QString());
  text->SetVisChar(90);
  text->SetFlag(EConReadOnly, true);
  return {background, text->Id()};
}

TStartLayout SampleLayout::Workshop(CVelumStack& aStack) {
  const Ref<CVelumControlSet> background =
      NewBackground(aStack, u"Workshop"_s, u"What scripts can do."_s, Rgb(244, 240, 226));
  const Ref<CVelumControl> text = AddNotes(aStack, *background, u"What is here"_s);
  text->SetLabel(QString());
  text->SetFlag(EConReadOnly, true);
  return {background, text->Id()};
}

TStartLayout SampleLayout::Guide(CVelumStack& aStack) {
  const Ref<CVelumControlSet> background =
      NewBackground(aStack, u"Guide"_s, u"Pages with links, in wiki text."_s, Rgb(234, 242, 232));
  background->SetFlag(ECseShowCardName, true);
  const Ref<CVelumControl> page = AddNotes(aStack, *background, u"Page"_s);
  page->SetLabel(QString());
  page->SetVisChar(90);
  page->SetFlag(EConWikiText, true);
  return {background, page->Id()};
}

TCountryLayout SampleLayout::Countries(CVelumStack& aStack) {
  TCountryLayout layout;
  layout.iBackground =
      NewBackground(aStack, u"Country"_s,
                    u"Members and observer states of the United Nations. A colour per continent."_s, ENoInt);
  CVelumControlSet& set = *layout.iBackground;
  const Ref<CVelumControl> capital = AddField(aStack, set, u"Capital"_s, EConText, {30, 18, true});
  capital->SetFont(BoldFont(Rgb(24, 60, 120)));
  layout.iCapital = capital->Id();
  layout.iContinent = AddField(aStack, set, u"Continent"_s, EConText, {20, 14, true})->Id();
  layout.iPeople = AddField(aStack, set, u"Population"_s, EConInteger, {14, 14, true})->Id();
  layout.iArea = AddField(aStack, set, u"Area, 1,000 km²"_s, EConReal, {14, 14, false})->Id();
  const Ref<CVelumControl> density = AddField(aStack, set, u"People per km²"_s, EConReal, {14, 12, true});
  density->SetDigits(1);
  layout.iDensity = density->Id();
  layout.iFounded = AddField(aStack, set, u"Independent"_s, EConDate, {14, 12, true})->Id();
  layout.iNoon = AddField(aStack, set, u"Noon UTC is"_s, EConTime, {14, 14, false})->Id();
  layout.iLandlocked = AddField(aStack, set, u"Landlocked"_s, EConBoolean, {4, 4, false})->Id();
  layout.iNotes = AddNotes(aStack, set, u"Notes"_s)->Id();
  return layout;
}

TMountainLayout SampleLayout::Mountains(CVelumStack& aStack) {
  TMountainLayout layout;
  layout.iBackground =
      NewBackground(aStack, u"Mountain"_s, u"Mountains, kept sorted by their height."_s, Rgb(232, 234, 238));
  CVelumControlSet& set = *layout.iBackground;
  const Ref<CVelumControl> height = AddField(aStack, set, u"Metres"_s, EConInteger, {10, 10, true});
  height->SetFont(BoldFont(Rgb(150, 40, 30)));
  layout.iHeight = height->Id();
  layout.iRange = AddField(aStack, set, u"Range"_s, EConText, {30, 24, true})->Id();
  layout.iCountries = AddField(aStack, set, u"Countries"_s, EConText, {30, 24, true})->Id();
  layout.iAscent = AddField(aStack, set, u"First climbed"_s, EConDate, {14, 12, true})->Id();
  layout.iNotes = AddNotes(aStack, set, u"Notes"_s)->Id();
  return layout;
}

TRiverLayout SampleLayout::Rivers(CVelumStack& aStack) {
  TRiverLayout layout;
  layout.iBackground =
      NewBackground(aStack, u"River"_s, u"Rivers, kept sorted by their length."_s, Rgb(214, 234, 248));
  CVelumControlSet& set = *layout.iBackground;
  const Ref<CVelumControl> length = AddField(aStack, set, u"Kilometres"_s, EConInteger, {10, 10, true});
  length->SetFont(BoldFont(Rgb(20, 80, 150)));
  layout.iLength = length->Id();
  layout.iMouth = AddField(aStack, set, u"Flows into"_s, EConText, {30, 24, true})->Id();
  const Ref<CVelumControl> countries = AddField(aStack, set, u"Countries"_s, EConText, {60, 40, true});
  countries->SetVisLines(2);
  layout.iCountries = countries->Id();
  layout.iNotes = AddNotes(aStack, set, u"Notes"_s)->Id();
  return layout;
}

TChartLayout SampleLayout::Charts(CVelumStack& aStack) {
  TChartLayout layout;
  layout.iBackground =
      NewBackground(aStack, u"Chart"_s, u"Pictures: a click shows all of one, a double click opens it."_s,
                    Rgb(240, 238, 230));
  CVelumControlSet& set = *layout.iBackground;
  const Ref<CVelumControl> chart = AddField(aStack, set, u"Chart"_s, EConPicture, {40, ENoShort, false});
  chart->SetVisLines(12);
  layout.iChart = chart->Id();
  layout.iLegend = AddNotes(aStack, set, u"Legend"_s)->Id();
  return layout;
}

void SampleLayout::AddGoTo(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName,
                           qint32 aCardId) {
  const Ref<CVelumControl> button = AddButton(aStack, aBackground, aName, EStdGoToCard);
  button->SetDestCardId(aCardId);
  button->SetVisChar(ENoShort); // as wide as its caption
}

void SampleLayout::AddLeafing(CVelumStack& aStack, CVelumControlSet& aBackground, bool aWithFirst) {
  const std::array<std::pair<QString, EStdCmd>, 7> buttons{{{u"First card"_s, EStdFirstCard},
                                                            {u"Previous card"_s, EStdPrevCard},
                                                            {u"Next card"_s, EStdNextCard},
                                                            {u"Last card"_s, EStdLastCard},
                                                            {u"Back"_s, EStdBackInHistory},
                                                            {u"Forward"_s, EStdForwInHistory},
                                                            {u"List of cards"_s, EStdShowCardList}}};
  for (const auto& [name, cmd] : buttons) {
    if ((cmd == EStdFirstCard || cmd == EStdPrevCard) && !aWithFirst) continue;
    const Ref<CVelumControl> button = AddButton(aStack, aBackground, name, cmd);
    button->SetFlag(EConPictButton, true);
    button->SetVisChar(2);
  }
}

void SampleLayout::AddSortKey(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName,
                              qint32 aControlId, EWay aWay) {
  const CVelumControl* control = aBackground.FindControl(aControlId);
  auto key = MakeRef<CVelumSortKey>(aStack.IdGen().NextId(), aName, aBackground.Id());
  key->AddKeyPart(control->ConType(), aControlId, aWay, CVelumLib::SortKeyLen(*control));
  aStack.AddSortKey(key);
}

void SampleLayout::KeepSorted(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName,
                              qint32 aControlId) {
  AddSortKey(aStack, aBackground, aName, aControlId, EWayDescending);
  Ref<CVelumSortKey> key;
  if (!aStack.GetSortKeyByName(aName, key)) return;
  aBackground.SetFlag(ECseKeepCardsSorted, true);
  aStack.NewIndexForSortKey(key);
}
