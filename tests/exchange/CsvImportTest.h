// What tests of the exact import of CSV files share.
#pragma once

#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvExact.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

class CsvImportTest : public testing::Test {
protected:
  CsvImportTest();
  ~CsvImportTest() override { CVelumLocale::Init(u"en_US"_s); }

  // A run over a file of these bytes, with iReading and iChoice.
  CVelumCsvExact& Run(const QByteArray& aBytes, const Ref<CVelumControlSet>& aBackground = {});
  // Imports into a new stack, which is then iNew.
  ECsvOutcome Import(const QByteArray& aBytes);
  // Imports into the background of iNew.
  ECsvOutcome Fill(const QByteArray& aBytes);
  [[nodiscard]] Ref<CVelumControlSet> Set() const;
  [[nodiscard]] CVelumControl& Field(qint32 aIndex) const { return *Set()->ControlAt(aIndex); }
  // Names and types of the fields: "a Text".
  [[nodiscard]] QStringList Fields() const;
  // A line a card in order: its name, and its values for other programs; "-" for none.
  [[nodiscard]] QStringList Cards() const;
  // Text of the lines of the report.
  [[nodiscard]] QString Report() const;
  // What stood in the way, a line a fault.
  [[nodiscard]] QStringList Faults() const { return CVelumCsvReports::FaultLines(iRun->Faults()); }
  // The file as it is written for other programs.
  [[nodiscard]] QByteArray Exported() const;

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  TCsvReading iReading;
  TCsvChoice iChoice;
  CVelumImportWatch iWatch;
  TNewStack iNew;
  std::unique_ptr<CVelumCsvExact> iRun;
};
