#include "cli/CVelumCliStack.h"

#include "cli/CVelumTerminal.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"

TVelumOpenStack CVelumCliStack::Open(const QString& aPath) {
  CVelumLib::CheckFile(aPath, u"HandleLoadStack"_s);
  TVelumOpenStack open;
  CVelumStackFile(aPath).LoadStack(open.iStack, open.iView);
  gStack = open.iStack;
  const qint32 corrections = open.iStack->OrderCorrections();
  if (corrections > 0) CVelumMsg::Show(EMsgOrderCorrections, EMsgExclamation, QString::number(corrections));
  return open;
}

Ref<CVelumControlSet> CVelumCliStack::BackgroundByName(const CVelumStack& aStack, const QString& aName) {
  Ref<CVelumControlSet> background;
  if (!aStack.GetBackgroundByName(aName, background))
    CVelumError::Throw(EMsgBackgroundNotFound, u"CVelumCliStack.BackgroundByName"_s, aName, {});
  return background;
}

Ref<CVelumControlSet> CVelumCliStack::ChosenBackground(const CVelumStack& aStack, const TVelumArgs& aArgs) {
  if (aArgs.Has(u"background"_s)) return BackgroundByName(aStack, aArgs.Value(u"background"_s));
  Ref<CVelumControlSet> only;
  Ref<CVelumControlSet> background;
  QStringList names;
  qint32 index = 0;
  for (bool found = aStack.GetFirstBackground(background, index); found;
       found = aStack.GetNextBackground(background, index)) {
    only = background;
    names.append(u'\'' + OneLine(background->Name()) + u'\'');
  }
  if (names.size() != 1)
    throw TVelumUsage{u"--background is missing; the stack has "_s + names.join(u", "_s) + u'.'};
  return only;
}

QString CVelumCliStack::OneLine(QString aText) {
  aText.replace(u"\r\n"_s, u" "_s);
  aText.replace(u'\r', u' ');
  aText.replace(u'\n', u' ');
  return aText;
}

CVelumCliStack::CProgress::~CProgress() {
  iTerminal.ScriptProgress(0);
}

TVelumStep CVelumCliStack::CProgress::Step() const {
  return [this](qint64 aDone, qint64) {
    iTerminal.ScriptProgress(static_cast<int>(aDone));
    return true;
  };
}
