// Finding cards by a text in any of their values.
#pragma once

#include "model/CVelumStack.h"

#include <QHash>
#include <memory>
#include <vector>

// The first field of a card, in display order, whose shown value holds the sought text.
struct TVelumSearchHit {
  Ref<CVelumCard> iCard;
  Ref<CVelumControl> iControl;
  QString iText; // the value as it is shown
};

// Walks the cards of a stack in their order. A value matches when its shown text, in upper case letter by
// letter, contains the sought text in upper case; the empty text matches anything.
//
// Stored texts are searched in place. Numbers, dates and times are only turned into text when every
// character of the sought text can occur in such a text.
class CVelumSearch {
public:
  // The stack must live, and keep its cards and fields, as long as the search.
  CVelumSearch(CVelumStack& aStack, const QString& aText);
  ~CVelumSearch();
  CVelumSearch(const CVelumSearch&) = delete;
  CVelumSearch& operator=(const CVelumSearch&) = delete;

  // The next card that matches, once per card; false at the end.
  [[nodiscard]] bool Next(TVelumSearchHit& aHit);

private:
  class CMatcher;
  struct TField;
  struct TPlan;

  TPlan& PlanOf(CVelumCard& aCard);
  [[nodiscard]] bool MatchesField(CVelumCard& aCard, TField& aField, qint32& aNext);
  [[nodiscard]] bool MatchesValue(const TVelumValue& aVal, const TField& aField);
  [[nodiscard]] bool MatchesText(CVelumCard& aCard, const TField& aField) const;

  CVelumStack& iStack;
  std::unique_ptr<CMatcher> iMatcher;
  std::vector<std::unique_ptr<TPlan>> iPlans; // one per background met
  TPlan* iPlan = nullptr;                     // of the card before
  QHash<qint32, bool> iDates;                 // whether the text of a day matches
  qint32 iCursor = 0;
};
