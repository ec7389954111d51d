// An import as its window follows it.
#pragma once

#include "exchange/CVelumImportWatch.h"

#include <QSet>
#include <memory>

class QProgressDialog;
class QWidget;

// A box with the progress and a Cancel button, which comes up when the import takes longer than a moment, and
// keeps the other windows still meanwhile. Messages that come once a line can be silenced.
class CVelumImportProgress final : public CVelumImportWatch {
public:
  CVelumImportProgress(QWidget* aOwner, const QString& aFilename);
  ~CVelumImportProgress() override;

  void Message(qint32 aMsg, const QString& aP0) override;
  void Unclosed(qint32 aLineNum) override;
  [[nodiscard]] bool Progress(int aDone) override;
  // The same for work that is counted in other units; aTotal 0 is one whose end is not known.
  [[nodiscard]] bool Step(qint64 aDone, qint64 aTotal);

private:
  std::unique_ptr<QProgressDialog> iDialog;
  QSet<qint32> iSilenced;
};
