// Asks and tells with windows.
#pragma once

#include "core/CVelumSeams.h"

// Install it with CVelumSeams::SetPresenter. The boxes stand over the main window.
class CVelumShellPresenter final : public CVelumPresenter {
public:
  bool Message(qint32 aMsg, EMsgClass aClass, const QString& aName, const QString& aText) override;
  void Tell(const QString& aText) override;
  int Choose(const QString& aText, const QStringList& aChoices) override;
  bool Answer(const QString& aText) override;
  void HelpPage(const QString& aPage) override;
  void ScriptProgress(int aSteps) override;
};
