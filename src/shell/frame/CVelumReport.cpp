#include "shell/frame/CVelumReport.h"

#include "shell/frame/CVelumFrame.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>

namespace {

constexpr qsizetype EMaxNamed = 8;

struct TTexts {
  Q_DECLARE_TR_FUNCTIONS(CVelumReport)
};

} // namespace

void CVelumReport::Done(const QString& aText) {
  if (gFrame) gFrame->Report(aText);
}

void CVelumReport::Imported(const QString& aPath, qint64 aNumCards) {
  Done(TTexts::tr("Imported %1 from %2").arg(Cards(aNumCards), QFileInfo(aPath).fileName()));
}

QString CVelumReport::Cards(qint64 aNum) {
  return aNum == 1 ? TTexts::tr("1 card") : TTexts::tr("%1 cards").arg(QLocale().toString(aNum));
}

QString CVelumReport::CardsOf(const CVelumStack& aStack) {
  QStringList parts;
  Ref<CVelumControlSet> set;
  QString only;
  for (qint32 i = 0; aStack.GetNextBackground(set, i);) {
    if (set->NumCards() == 0) continue;
    only = set->Name();
    parts.append(TTexts::tr("%1 of “%2”").arg(QLocale().toString(set->NumCards()), only));
  }
  const QString all = Cards(aStack.NumCards());
  if (parts.isEmpty()) return all;
  if (parts.size() == 1) return TTexts::tr("%1 of “%2”").arg(all, only);
  if (parts.size() > EMaxNamed) parts = parts.first(EMaxNamed) + QStringList{u"…"_s};
  return all + u": "_s + parts.join(u", "_s);
}
