// An import as its window follows it.
#pragma once

#include "exchange/CVelumImportWatch.h"
#include "shell/frame/CVelumProgressBox.h"

#include <QCoreApplication>
#include <QSet>

// Shows the progress, with a button that cancels. Messages that come once a line can be silenced.
class CVelumImportProgress final : public CVelumImportWatch {
  Q_DECLARE_TR_FUNCTIONS(CVelumImportProgress)

public:
  CVelumImportProgress(QWidget* aOwner, const QString& aFilename);

  void Message(qint32 aMsg, const QString& aP0) override;
  void Unclosed(qint32 aLineNum) override;
  [[nodiscard]] bool Progress(int aDone) override { return Step(aDone, EAll); }
  // The same for work that is counted in other units; aTotal 0 is one whose end is not known.
  [[nodiscard]] bool Step(qint64 aDone, qint64 aTotal) { return iBox.Step(aDone, aTotal); }

private:
  CVelumProgressBox iBox;
  QSet<qint32> iSilenced;
};
