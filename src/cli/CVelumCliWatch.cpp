#include "cli/CVelumCliWatch.h"

#include "cli/CVelumTerminal.h"

CVelumCliWatch::~CVelumCliWatch() {
  iTerminal.ClearProgress();
  if (iTooManyItems == 0) return;
  iTerminal.Complain(u"%1: %2 (lines: %3) %4"_s.arg(CVelumMsg::Name(EMsgTooManyItems),
                                                    CVelumMsg::Text(EMsgTooManyItems, CVelumMsg::EUndefParam),
                                                    QString::number(iTooManyItems), iFirstPlace));
}

void CVelumCliWatch::Message(qint32 aMsg, const QString& aP0) {
  if (aMsg != EMsgTooManyItems) return CVelumImportWatch::Message(aMsg, aP0);
  if (iTooManyItems == 0) iFirstPlace = aP0;
  ++iTooManyItems;
}

void CVelumCliWatch::Unclosed(qint32 aLineNum) {
  iTerminal.Complain(
      u"a quoted cell in line %1 is never closed; that line and what follows is left out"_s.arg(aLineNum));
}

bool CVelumCliWatch::Progress(int aDone) {
  iTerminal.WorkProgress(aDone);
  return true;
}
