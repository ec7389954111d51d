#include "support/ScriptedPresenter.h"

#include <algorithm>

void ScriptedPresenter::Clear() {
  iAnswers.clear();
  iShown.clear();
  iTold.clear();
  iHelpPages.clear();
  iProgress.clear();
}

qsizetype ScriptedPresenter::CountOf(qint32 aMsg) const {
  return std::count_if(iShown.begin(), iShown.end(),
                       [aMsg](const TShown& aShown) { return aShown.iMsg == aMsg; });
}

bool ScriptedPresenter::Message(qint32 aMsg, EMsgClass aClass, const QString& aName, const QString& aText) {
  iShown.append({aMsg, aClass, aName, aText});
  if (aClass != EMsgQuestion) return false;
  return iAnswers.isEmpty() ? iDefault : iAnswers.takeFirst();
}
