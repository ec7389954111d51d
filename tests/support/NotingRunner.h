// Notes the messages that scripts would get. For the rooms from runtime up.
#pragma once

#include "runtime/script/CVelumScriptRunner.h"

#include <QStringList>
#include <algorithm>
#include <functional>

// Installs itself, and takes itself away again.
class NotingRunner final : public CVelumScriptRunner {
public:
  NotingRunner() { Install(this); }
  ~NotingRunner() override { Install(nullptr); }

  void LocateAndExecScript(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl,
                           const QString& aMsg) override {
    QString sent = aMsg + u' ' + (aCard ? aCard->Name() : u"-"_s);
    if (aControl) sent += u'.' + aControl->Name();
    iSent.append(sent);
    if (iOnMessage) iOnMessage(sent);
  }
  [[nodiscard]] bool Running() const override { return iRunning; }
  void SetParamVal(const QString& aVal) override { iParamVal = aVal; }
  void Break() override { ++iBreaks; }
  void Reset() override { ++iResets; }
  // How often aMsg was sent, to whatever it was.
  [[nodiscard]] qsizetype CountOf(const QString& aMsg) const {
    return std::count_if(iSent.begin(), iSent.end(),
                         [&](const QString& aSent) { return aSent.startsWith(aMsg + u' '); });
  }

  QStringList iSent; // "message card" or "message card.field"
  QString iParamVal = u"unset"_s;
  std::function<void(const QString& aSent)> iOnMessage;
  bool iRunning = false;
  int iBreaks = 0;
  int iResets = 0;
};
