// search: the cards that hold a text in one of their values.
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "model/lists/CVelumSearch.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

QString Field(const QString& aText) {
  return CVelumCliStack::OneLine(aText).replace(u'\t', u' ');
}

void PrintHit(const TVelumSearchHit& aHit, CVelumTerminal& aTerminal) {
  aTerminal.Line(Field(aHit.iCard->Name()) + u'\t' + Field(aHit.iCard->Background()->Name()) + u'\t' +
                 Field(aHit.iControl->Name()) + u'\t' + Field(aHit.iText));
}

QJsonObject HitFacts(const TVelumSearchHit& aHit) {
  return {{u"id"_s, aHit.iCard->Id()},
          {u"card"_s, aHit.iCard->Name()},
          {u"background"_s, aHit.iCard->Background()->Name()},
          {u"field"_s, aHit.iControl->Name()},
          {u"value"_s, aHit.iText}};
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  CVelumSearch search(*open.iStack, aArgs.iOperands.at(1));
  TVelumSearchHit hit;
  QJsonArray hits;
  while (search.Next(hit)) {
    if (aArgs.iJson)
      hits.append(HitFacts(hit));
    else
      PrintHit(hit, aTerminal);
  }
  if (aArgs.iJson) aTerminal.Json({{u"hits"_s, hits}});
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Search() {
  static const TVelumCliCommand command{
      u"search"_s,
      {u"STACK"_s, u"TEXT"_s},
      u"print a line per card that holds a text in one of its values"_s,
      u"A line holds the card, its background, the first field that matches and its value,\n"
      u"parted by tabs. Upper and lower case are the same, and numbers and dates are sought\n"
      u"as they are shown. An empty TEXT finds every card that has a field. A TEXT that\n"
      u"begins with a dash goes behind --."_s,
      {},
      true,
      Run,
  };
  return command;
}
