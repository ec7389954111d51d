#include "model/lists/CVelumSearch.h"

#include "core/CVelumLib.h"
#include "core/CVelumValue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

// CVelumLib::ToUpperByLetter for each code unit by itself.
const std::vector<char16_t>& UpperTable() {
  static const std::vector<char16_t> table = [] {
    constexpr int EUnits = 0x10000;
    QString all(EUnits, QChar());
    for (int i = 0; i < EUnits; ++i)
      all[i] = QChar::isSurrogate(static_cast<char32_t>(i)) ? QChar() : QChar(i);
    const QString upper = CVelumLib::ToUpperByLetter(all);
    std::vector<char16_t> units(EUnits);
    for (int i = 0; i < EUnits; ++i) {
      const QChar unit = all.at(i).isNull() ? QChar(i) : upper.at(i);
      units[static_cast<size_t>(i)] = unit.unicode();
    }
    return units;
  }();
  return table;
}

// The texts of some values of a type, in which every character occurs that can occur in any.
QString SampleText(int aType) {
  QString all;
  const auto add = [&all](const TVelumValue& aVal) {
    all += CVelumLib::ToUpperByLetter(CVelumValue::ValToExtText(aVal, TVelumFieldInfo()));
  };
  switch (aType) {
  case EValInt:
    return u"-0123456789"_s;
  case EValReal:
    for (const double real : {-1234567890.25, 9876543.5, -1.5E-300, 1.5E+300, 2E+16})
      add(TVelumValue::OfReal(real));
    break;
  case EValDate:
    // Every day of a year, in case the locale's form has names of months or days.
    for (int day = 0; day < 366; ++day) add(TVelumValue::OfDate(CVelumValue::IntToDate(20000101) + day));
    break;
  case EValTime:
    for (int hour = 0; hour < 24; ++hour)
      add(TVelumValue::OfTime(CVelumValue::IntToTime(hour * 10000 + (hour * 7 % 60) * 100 + hour * 11 % 60)));
    break;
  default:
    break;
  }
  return all;
}

// The values whose texts are made of the characters of SampleText.
bool IsUsual(const TVelumValue& aVal) {
  switch (aVal.Type()) {
  case EValInt:
    return true;
  case EValReal:
    return std::isfinite(aVal.Real());
  case EValDate: // the years 100 to 9999
    return aVal.Date() >= -657434.0 && aVal.Date() < 2958466.0;
  case EValTime:
    return aVal.Time() >= 0.0 && aVal.Time() < 1.0;
  default:
    return false;
  }
}

} // namespace

// Looks for one text in many, all folded to upper case unit by unit: Horspool's search, with jumps by the
// low byte of a unit.
class CVelumSearch::CMatcher {
public:
  explicit CMatcher(const QString& aText) : iSought(CVelumLib::ToUpperByLetter(aText)), iUpper(UpperTable()) {
    for (const QChar c : iSought) iBySurrogates |= c.isSurrogate();
    iJump.fill(iSought.size());
    for (qsizetype i = 0; i + 1 < iSought.size(); ++i)
      iJump[static_cast<size_t>(iSought.at(i).unicode() & 0xFF)] = iSought.size() - 1 - i;
    for (const int type : {EValInt, EValReal, EValDate, EValTime}) iPossible[TypeIndex(type)] = AllIn(type);
  }

  [[nodiscard]] bool In(QStringView aText) const {
    // Letters beyond 16 bits have capitals too, but only a text that holds such can depend on that.
    if (iBySurrogates) return CVelumLib::ToUpperByLetter(aText.toString()).contains(iSought);
    if (iSought.isEmpty()) return true;
    const qsizetype last = iSought.size() - 1;
    const char16_t* text = aText.utf16();
    for (qsizetype end = last; end < aText.size();) {
      const char16_t unit = iUpper[text[end]];
      if (unit == iSought.at(last).unicode() && StandsAt(text + end - last)) return true;
      end += iJump[static_cast<size_t>(unit & 0xFF)];
    }
    return false;
  }

  // Whether the sought text can occur in the text of a usual value of this type.
  [[nodiscard]] bool PossibleIn(int aType) const { return iPossible[TypeIndex(aType)]; }

private:
  static size_t TypeIndex(int aType) { return static_cast<size_t>(aType - EValInt); }

  [[nodiscard]] bool StandsAt(const char16_t* aText) const {
    for (qsizetype i = 0; i < iSought.size(); ++i) {
      if (iUpper[aText[i]] != iSought.at(i).unicode()) return false;
    }
    return true;
  }

  [[nodiscard]] bool AllIn(int aType) const {
    const QString sample = SampleText(aType);
    return std::all_of(iSought.begin(), iSought.end(), [&](QChar c) { return sample.contains(c); });
  }

  QString iSought;
  const std::vector<char16_t>& iUpper;
  std::array<qsizetype, 256> iJump{};
  std::array<bool, 4> iPossible{};
  bool iBySurrogates = false;
};

// What is known of a field before the walk.
struct CVelumSearch::TField {
  CVelumControl* iControl;
  qint32 iId;
  bool iComputed; // a card list, whose text may have to be made anew for each card
  // Whether the value that cards without an own one show matches; found out at the first of them.
  enum { EUnknown, ENo, EYes } iDefault = EUnknown;
};

struct CVelumSearch::TPlan {
  qint32 iBackgroundId;
  std::vector<TField> iFields;
};

CVelumSearch::CVelumSearch(CVelumStack& aStack, const QString& aText)
    : iStack(aStack), iMatcher(std::make_unique<CMatcher>(aText)) {}

CVelumSearch::~CVelumSearch() = default;

CVelumSearch::TPlan& CVelumSearch::PlanOf(CVelumCard& aCard) {
  const qint32 id = aCard.BackgroundId();
  if (iPlan && iPlan->iBackgroundId == id) return *iPlan;
  for (const auto& plan : iPlans) {
    if (plan->iBackgroundId == id) return *(iPlan = plan.get());
  }
  auto plan = std::make_unique<TPlan>();
  plan->iBackgroundId = id;
  const Ref<CVelumControlSet> background = aCard.Background();
  for (qint32 i = 0; background && i < background->NumControls(); ++i) {
    CVelumControl* control = background->ControlAt(i);
    if (control) plan->iFields.push_back({control, control->Id(), control->Flag(EConCardList)});
  }
  iPlans.push_back(std::move(plan));
  return *(iPlan = iPlans.back().get());
}

bool CVelumSearch::MatchesText(CVelumCard& aCard, const TField& aField) const {
  const TVelumValue val = aCard.GetControlVal(aField.iId, false);
  return iMatcher->In(CVelumValue::ValToExtText(val, aField.iControl->FieldInfo()));
}

bool CVelumSearch::MatchesValue(const TVelumValue& aVal, const TField& aField) {
  if (aVal.Type() == EValStr) return iMatcher->In(aVal.Str());
  if (IsUsual(aVal) && !iMatcher->PossibleIn(aVal.Type())) return false;
  if (aVal.Type() == EValInt) {
    char digits[std::numeric_limits<qint32>::digits10 + 3];
    const std::to_chars_result made = std::to_chars(std::begin(digits), std::end(digits), aVal.Int());
    char16_t text[sizeof(digits)];
    std::copy(digits, made.ptr, text);
    return iMatcher->In(QStringView(text, made.ptr - digits));
  }
  const auto matches = [&] {
    return iMatcher->In(CVelumValue::ValToExtText(aVal, aField.iControl->FieldInfo()));
  };
  if (aVal.Type() != EValDate || !IsUsual(aVal)) return matches();
  // Making a date's text costs more than finding it, and most stacks hold few different days.
  const auto day = static_cast<qint32>(std::floor(aVal.Date()));
  const auto known = iDates.constFind(day);
  return known != iDates.constEnd() ? *known : *iDates.insert(day, matches());
}

bool CVelumSearch::MatchesField(CVelumCard& aCard, TField& aField, qint32& aNext) {
  if (aField.iComputed) return MatchesText(aCard, aField);
  // Own values stand by field id, which is mostly the order of the fields: the next place is tried first.
  const CVelumArray& own = aCard.Value();
  const bool isNext = aNext < own.Count() && own.IntKeyAt(aNext) == aField.iId;
  const qint32 at = isNext ? aNext : own.FindIntKey(aField.iId);
  if (at >= 0) {
    aNext = at + 1;
    return MatchesValue(own.ValRef(at), aField);
  }
  if (aField.iDefault == TField::EUnknown)
    aField.iDefault = MatchesText(aCard, aField) ? TField::EYes : TField::ENo;
  return aField.iDefault == TField::EYes;
}

bool CVelumSearch::Next(TVelumSearchHit& aHit) {
  Ref<CVelumCard> card;
  while (iStack.GetNextCard(card, iCursor)) {
    qint32 next = 0;
    for (TField& field : PlanOf(*card).iFields) {
      if (!MatchesField(*card, field, next)) continue;
      const TVelumValue val = card->GetControlVal(field.iId, false);
      aHit = {card, field.iControl, CVelumValue::ValToExtText(val, field.iControl->FieldInfo())};
      return true;
    }
  }
  return false;
}
