// An exact import of a CSV file in the making, beside which the window stays alive.
#pragma once

#include "exchange/CVelumCsvExact.h"
#include "exchange/CVelumCsvSample.h"

#include <QObject>
#include <QTimer>

// The first records are there at once. The whole file is looked through in slices from then on, whenever
// nothing else is to be done; a change of the settings begins anew what it touches.
class CVelumCsvWork final : public QObject {
  Q_OBJECT

public:
  CVelumCsvWork();
  ~CVelumCsvWork() override;

  // Takes up a file as it proposes itself; raises as CVelumCsvSource does.
  void Begin(const QString& aFilename);
  // Gives up all that is known, and its memory.
  void Clear();
  [[nodiscard]] bool IsOpen() const { return static_cast<bool>(iBegin); }

  // Nothing: as the file has it.
  void SetEncoding(std::optional<ECsvEncoding> aEncoding);
  void SetReading(const TCsvReading& aReading);
  void SetChoice(const TCsvChoice& aChoice, const Ref<CVelumControlSet>& aBackground);

  [[nodiscard]] const TCsvSample& Sample() const { return iSample; }
  [[nodiscard]] const TCsvLayout& Layout() const { return iLayout; }
  // As far as it is known.
  [[nodiscard]] ECsvEncoding Encoding() const;
  // Whether the whole file has been looked through.
  [[nodiscard]] bool IsKnown() const { return iRun && iKnown; }
  // How far that is, of 100.
  [[nodiscard]] int Percent() const { return iRun ? iRun->Progress(100) : 0; }
  // Why it failed; empty when it did not.
  [[nodiscard]] const QString& Failure() const { return iFailure; }
  // Only when the file is known.
  [[nodiscard]] CVelumCsvExact& Run() const { return *iRun; }
  // How a column is read, by the whole file if that is known, else by the first records.
  [[nodiscard]] TCsvForm FormOf(int aColumn) const;
  // What the cells of a column have shown, likewise.
  [[nodiscard]] const CVelumCsvColumn& Column(int aColumn) const;

Q_SIGNALS:
  // The whole file has become known, or a failure.
  void Known();
  void Progressed();

private:
  void ReadBegin();
  void TakeSample();
  void Restart(bool aReadAnew);
  void Fail();
  // Works for a while.
  void Work();
  void Slice();

  QString iFilename;
  std::optional<ECsvEncoding> iEncoding;
  TCsvReading iReading;
  TCsvChoice iChoice;
  Ref<CVelumControlSet> iBackground;
  std::shared_ptr<CVelumCsvSource> iBegin; // of the beginning
  std::shared_ptr<CVelumCsvSource> iWhole;
  TCsvLayout iLayout;
  TCsvSample iSample;
  std::unique_ptr<CVelumCsvExact> iRun;
  bool iKnown = false;
  QString iFailure;
  QTimer iTimer;
};
