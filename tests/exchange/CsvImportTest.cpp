#include "CsvImportTest.h"

#include "core/CVelumValue.h"
#include "exchange/CVelumPlainExport.h"

CsvImportTest::CsvImportTest() {
  CVelumModel::Install();
  CVelumMsg::InitMessages();
  CVelumLocale::Init(u"en_US"_s);
}

CVelumCsvExact& CsvImportTest::Run(const QByteArray& aBytes, const Ref<CVelumControlSet>& aBackground) {
  const auto source = std::make_shared<CVelumCsvSource>(iFolder.Write(u"a.csv"_s, aBytes));
  iRun = std::make_unique<CVelumCsvExact>(source, iReading, iChoice, aBackground);
  return *iRun;
}

ECsvOutcome CsvImportTest::Import(const QByteArray& aBytes) {
  iNew = {};
  return Run(aBytes).IntoNew(iWatch, iNew);
}

ECsvOutcome CsvImportTest::Fill(const QByteArray& aBytes) {
  CVelumPlainStackHost host(iNew.iStack);
  return Run(aBytes, Set()).Into(iWatch, host);
}

Ref<CVelumControlSet> CsvImportTest::Set() const {
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  EXPECT_TRUE(iNew.iStack->GetFirstBackground(set, index));
  return set;
}

QStringList CsvImportTest::Fields() const {
  QStringList fields;
  for (qint32 i = 0; i < Set()->NumControls(); ++i)
    fields.append(Field(i).Name() + u' ' + Field(i).TypeStr());
  return fields;
}

QStringList CsvImportTest::Cards() const {
  QStringList lines;
  Ref<CVelumCard> card;
  for (qint32 i = 0; iNew.iStack->GetNextCard(card, i);) {
    QString line = card->Name();
    const Ref<CVelumControlSet> set = card->Background();
    for (qint32 c = 0; c < set->NumControls(); ++c) {
      const qint32 id = set->ControlAt(c)->Id();
      const bool own = card->ControlValDef(id);
      line += u'|' + (own ? CVelumCsvForms::PlainText(card->GetControlVal(id, false)) : u"-"_s);
    }
    lines.append(line);
  }
  return lines;
}

QString CsvImportTest::Report() const {
  return CVelumCsvReports::Lines(iRun->Report()).join(u'\n');
}

QByteArray CsvImportTest::Exported() const {
  CVelumPlainExport::Write(iFolder.Path(u"out.csv"_s), *Set());
  return iFolder.Read(u"out.csv"_s);
}
