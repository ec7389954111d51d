// Makes the sample stack from the facts in the folder data.
#include "SampleCharts.h"
#include "SampleData.h"
#include "SampleLayout.h"
#include "SampleScripts.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "persist/CVelumStackFile.h"

#include <QFile>
#include <cmath>
#include <cstdio>

namespace {

// All cards carry this day, so that the same facts always give the same file.
constexpr qint32 EMade = 20250101;

Ref<CVelumCard> AddCard(CVelumStack& aStack, const Ref<CVelumControlSet>& aBackground, const QString& aName) {
  auto card = MakeRef<CVelumCard>(aName, aBackground);
  aStack.AddCard(card, nullptr, false);
  return card;
}

TVelumValue DayValue(qint32 aDay) {
  return aDay == ENoInt ? TVelumValue() : TVelumValue::OfDate(CVelumValue::IntToDate(aDay));
}

// The clock of a place when it is 12:00 UTC; beyond midnight it is the next day's.
TVelumValue NoonValue(int aMinutes) {
  constexpr int EDay = 24 * 60;
  const int minutes = (EDay / 2 + aMinutes) % EDay;
  return TVelumValue::OfTime(CVelumValue::IntToTime(minutes / 60 * 10000 + minutes % 60 * 100));
}

void AddCountry(CVelumStack& aStack, const TCountryLayout& aLayout, const TCountry& aCountry) {
  const Ref<CVelumCard> card = AddCard(aStack, aLayout.iBackground, aCountry.iName);
  const auto people = static_cast<qint32>(std::lround(aCountry.iThousands * 1000));
  card->SetBackColor(SampleLayout::ContinentColor(aCountry.iContinent));
  card->SetControlVal(aLayout.iCapital, TVelumValue::OfStr(aCountry.iCapital));
  card->SetControlVal(aLayout.iContinent, TVelumValue::OfStr(aCountry.iContinent));
  card->SetControlVal(aLayout.iPeople, TVelumValue::OfInt(people));
  card->SetControlVal(aLayout.iArea, TVelumValue::OfReal(aCountry.iArea / 1000));
  card->SetControlVal(aLayout.iDensity, TVelumValue::OfReal(std::round(people / aCountry.iArea * 10) / 10));
  card->SetControlVal(aLayout.iFounded, DayValue(aCountry.iFounded));
  card->SetControlVal(aLayout.iNoon, NoonValue(aCountry.iMinutes));
  card->SetControlVal(aLayout.iLandlocked, TVelumValue::OfBoolean(aCountry.iLandlocked));
  card->SetControlVal(aLayout.iNotes,
                      TVelumValue::OfStr(aCountry.iNotes + u"\r\nPopulation of about 2023, rounded."_s));
}

void AddMountain(CVelumStack& aStack, const TMountainLayout& aLayout, const TMountain& aMountain) {
  const Ref<CVelumCard> card = AddCard(aStack, aLayout.iBackground, aMountain.iName);
  card->SetControlVal(aLayout.iHeight, TVelumValue::OfInt(aMountain.iMetres));
  card->SetControlVal(aLayout.iRange, TVelumValue::OfStr(aMountain.iRange));
  card->SetControlVal(aLayout.iCountries, TVelumValue::OfStr(aMountain.iCountries));
  card->SetControlVal(aLayout.iAscent, DayValue(aMountain.iAscent));
  card->SetControlVal(aLayout.iNotes, TVelumValue::OfStr(aMountain.iNotes));
}

void AddRiver(CVelumStack& aStack, const TRiverLayout& aLayout, const TRiver& aRiver) {
  const Ref<CVelumCard> card = AddCard(aStack, aLayout.iBackground, aRiver.iName);
  card->SetControlVal(aLayout.iLength, TVelumValue::OfInt(aRiver.iKilometres));
  card->SetControlVal(aLayout.iMouth, TVelumValue::OfStr(aRiver.iMouth));
  card->SetControlVal(aLayout.iCountries, TVelumValue::OfStr(aRiver.iCountries));
  card->SetControlVal(aLayout.iNotes, TVelumValue::OfStr(aRiver.iNotes));
}

const QString EWorkshopText =
    u"Three buttons with a script each, and a field that has one too.\r\n\r\n"
    u"Count adds one to the field. Type a number above 99 there and leave the field, and it answers. Report "
    u"walks over all countries and adds up their people. Surprise me goes to any card."_s;

QString WelcomeText(qsizetype aCountries, qsizetype aMountains, qsizetype aRivers) {
  return u"Welcome.\r\n\r\n"
         u"This stack holds %1 countries, %2 mountains and %3 rivers: a card for each, and a background for "
         u"each kind, with fields, fonts and colours of its own.\r\n\r\n"
         u"Leaf with the buttons below, or look for anything you like: a capital, a name, a year. Which "
         u"country has a lake that turns pink? Which mountain was never climbed?\r\n\r\n"
         u"Every value can be changed. Give a mountain another height, and its card moves to its new place: "
         u"mountains and rivers are kept sorted.\r\n\r\n"
         u"The charts are pictures: a click fits one into its place, a double click shows it in full. The "
         u"guide "
         u"tells more, in pages with links. In the workshop a few scripts show what a stack can do by itself."_s
             .arg(aCountries)
             .arg(aMountains)
             .arg(aRivers);
}

// The days that the cards got from the clock.
void SetDays(const CVelumStack& aStack) {
  Ref<CVelumCard> card;
  qint32 index = 0;
  const double day = CVelumValue::IntToDate(EMade);
  for (bool found = aStack.GetFirstCard(card, index); found; found = aStack.GetNextCard(card, index)) {
    card->SetCreDate(day);
    card->SetModDate(day);
    card->SetCreTime(0);
    card->SetModTime(0);
  }
}

Ref<CVelumStack> MakeStack(const QString& aFolder) {
  const QList<TCountry> countries = SampleData::Countries(aFolder);
  const QList<TMountain> mountains = SampleData::Mountains(aFolder);
  const QList<TRiver> rivers = SampleData::Rivers(aFolder);
  const QList<TPage> pages = SampleData::Guide(aFolder);
  auto stack = MakeRef<CVelumStack>(u"Countries of the World"_s);
  gStack = stack;
  stack->SetFlag(EStaBinary, true);
  stack->SetDescr(
      u"The countries of the world, with mountains and rivers. Made by the program make-sample."_s);
  stack->SetFont(MakeRef<CVelumFont>(u"DejaVu Sans"_s, ENoShort, ENoInt));

  const TStartLayout start = SampleLayout::Start(*stack);
  const TCountryLayout country = SampleLayout::Countries(*stack);
  const TMountainLayout mountain = SampleLayout::Mountains(*stack);
  const TRiverLayout river = SampleLayout::Rivers(*stack);
  const TStartLayout workshop = SampleLayout::Workshop(*stack);
  const TChartLayout chart = SampleLayout::Charts(*stack);
  SampleCharts::AddWallPaper(*stack, *chart.iBackground);
  SampleScripts::AddTo(*stack, *workshop.iBackground);
  const TStartLayout guide = SampleLayout::Guide(*stack);
  SampleScripts::AddLeap(*guide.iBackground->FindControl(guide.iText));
  SampleLayout::KeepSorted(*stack, *mountain.iBackground, u"Height"_s, mountain.iHeight);
  SampleLayout::KeepSorted(*stack, *river.iBackground, u"Length"_s, river.iLength);
  SampleLayout::AddSortKey(*stack, *country.iBackground, u"Population"_s, country.iPeople, EWayDescending);
  SampleLayout::AddSortKey(*stack, *country.iBackground, u"Area"_s, country.iArea, EWayDescending);
  SampleLayout::AddSortKey(*stack, *country.iBackground, u"Independence"_s, country.iFounded, EWayAscending);
  stack->SetControlDynFlags();

  const Ref<CVelumCard> first = AddCard(*stack, start.iBackground, u"Start"_s);
  first->SetControlVal(start.iText,
                       TVelumValue::OfStr(WelcomeText(countries.size(), mountains.size(), rivers.size())));
  const Ref<CVelumCard> second = AddCard(*stack, workshop.iBackground, u"Workshop"_s);
  second->SetControlVal(workshop.iText, TVelumValue::OfStr(EWorkshopText));
  for (const TPage& each : pages)
    AddCard(*stack, guide.iBackground, each.iName)
        ->SetControlVal(guide.iText, TVelumValue::OfStr(each.iText));
  for (const TCountry& each : countries) AddCountry(*stack, country, each);
  for (const TMountain& each : mountains) AddMountain(*stack, mountain, each);
  for (const TRiver& each : rivers) AddRiver(*stack, river, each);
  SampleCharts::AddTo(*stack, chart, countries);

  Ref<CVelumCard> card;
  qint32 index = 0;
  SampleLayout::AddLeafing(*stack, *start.iBackground, false);
  for (const auto& [name, set] : {std::pair{u"Guide"_s, guide.iBackground},
                                  {u"Countries"_s, country.iBackground},
                                  {u"Mountains"_s, mountain.iBackground},
                                  {u"Rivers"_s, river.iBackground},
                                  {u"Charts"_s, chart.iBackground}}) {
    // The first card has no room for another button, so that the workshop leads to the charts.
    CVelumControlSet& from = set == chart.iBackground ? *workshop.iBackground : *start.iBackground;
    if (stack->GetFirstCardInBackground(set->Id(), card, index))
      SampleLayout::AddGoTo(*stack, from, name, card->Id());
    SampleLayout::AddLeafing(*stack, *set);
    SampleLayout::AddGoTo(*stack, *set, u"Start"_s, first->Id());
  }
  SampleLayout::AddGoTo(*stack, *start.iBackground, u"Workshop"_s, second->Id());
  SampleLayout::AddGoTo(*stack, *workshop.iBackground, u"Start"_s, first->Id());
  SetDays(*stack);
  return stack;
}

} // namespace

int main(int aArgc, char** aArgv) {
  if (aArgc != 3) {
    std::fputs("usage: make-sample DATA-FOLDER OUT\n", stderr);
    return 2;
  }
  CVelumLocale::Init(u"en_US"_s);
  CVelumMsg::InitMessages();
  CVelumModel::Install();
  try {
    const Ref<CVelumStack> stack = MakeStack(QFile::decodeName(aArgv[1]));
    CVelumStackFile(QFile::decodeName(aArgv[2])).SaveStack(stack, MakeRef<CVelumViewState>(stack->Name()));
    gStack = nullptr;
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "make-sample: %s\n", failure.what());
    return 1;
  }
}
