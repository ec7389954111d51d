#include "exchange/CVelumExports.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumXmlWriter.h"
#include "exchange/CVelumExportFile.h"

#include <vector>

const QString gQuote = u"\""_s;
const QString gQuoteQuote = u"\"\""_s;

namespace {

constexpr qint64 EStepCards = 500; // cards from one question to aStep to the next
const QString EByteOrderMark(QChar(0xFEFF));

// Calls aVisit with each control of a background, in their order.
template <class TVisit> void ForControls(const CVelumControlSet& aBackground, const TVisit& aVisit) {
  Ref<CVelumControl> control;
  qint32 index = 0;
  for (bool more = aBackground.GetFirstControl(control, index); more;
       more = aBackground.GetNextControl(control, index))
    aVisit(*control);
}

// What of aStr stands from aPos on until something has to be replaced.
QStringView PlainRun(QStringView aStr, qsizetype aPos) {
  qsizetype end = aPos;
  while (end < aStr.size() && aStr[end] != u'"' && aStr[end] != u'\r') ++end;
  return aStr.mid(aPos, end - aPos);
}

// Adds the text of a cell to a line.
void AppendCell(const QString& aStr, QString& aLine) {
  aLine += gQuote;
  for (qsizetype pos = 0; pos < aStr.size();) {
    const QStringView run = PlainRun(aStr, pos);
    aLine += run;
    pos += run.size();
    if (pos == aStr.size()) break;
    const bool eol = QStringView(aStr).mid(pos).startsWith(u"\r\n");
    if (eol)
      aLine += u"&eol;"_s;
    else if (aStr[pos] == u'"')
      aLine += gQuoteQuote;
    else
      aLine += aStr[pos];
    pos += eol ? 2 : 1;
  }
  aLine += gQuote;
}

// A control as a column of the table.
struct TExportColumn {
  qint32 iId;
  TVelumFieldInfo iField;
  bool iComputed; // a list of cards, which may have to be brought up to date first
};

std::vector<TExportColumn> ColumnsOf(const CVelumControlSet& aBackground) {
  std::vector<TExportColumn> columns;
  ForControls(aBackground, [&](const CVelumControl& aControl) {
    columns.push_back({aControl.Id(), aControl.FieldInfo(), aControl.Flag(EConCardList)});
  });
  return columns;
}

void AppendValue(const TVelumValue& aVal, const TVelumFieldInfo& aField, QString& aLine) {
  if (aVal.Type() == EValStr) return AppendCell(aVal.Str(), aLine);
  AppendCell(CVelumValue::ValToExtText(aVal, aField), aLine);
}

// The value of the column at aPlace. The fields of most cards have values in the order of the columns, so
// that none needs to be looked for or copied.
void AppendValueOf(CVelumCard& aCard, const TExportColumn& aColumn, size_t aPlace, QString& aLine) {
  const CVelumArray& vals = aCard.Value();
  const auto place = static_cast<qint32>(aPlace);
  if (!aColumn.iComputed && place < vals.Count() && vals.IntKeyAt(place) == aColumn.iId)
    return AppendValue(vals.ValRef(place), aColumn.iField, aLine);
  AppendValue(aCard.GetControlVal(aColumn.iId, false), aColumn.iField, aLine);
}

QString HeaderLine(const CVelumControlSet& aBackground, const QString& aDelimiter) {
  QString line;
  ForControls(aBackground, [&](const CVelumControl& aControl) {
    if (!line.isEmpty()) line += aDelimiter;
    AppendCell(aControl.Name(), line);
  });
  return line;
}

// Calls aVisit with each line of the CSV file; false when aStep ended it.
template <class TVisit>
bool ForLines(const CVelumControlSet& aBackground, const QString& aDelimiter, const TVelumStep& aStep,
              const TVisit& aVisit) {
  const CVelumStack& stack = CVelumChecked::Deref(aBackground.Stack());
  aVisit(HeaderLine(aBackground, aDelimiter));
  const std::vector<TExportColumn> columns = ColumnsOf(aBackground);
  const qint64 total = aBackground.NumCards();
  qint64 count = 0;
  QString line;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool more = stack.GetFirstCardInBackground(aBackground.Id(), card, index); more;
       more = stack.GetNextCardInBackground(aBackground.Id(), card, index)) {
    line.resize(0); // keeps the memory
    for (size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) line += aDelimiter;
      AppendValueOf(*card, columns[i], i, line);
    }
    aVisit(line);
    if (aStep && ++count % EStepCards == 0 && !aStep(count, total)) return false;
  }
  return true;
}

int Lacking(const QString& aText) {
  int lacking = 0;
  static_cast<void>(CVelumLib::ToCodePage(aText, &lacking));
  return lacking;
}

void WriteCard(CVelumXmlWriter& aWriter, CVelumCard& aCard) {
  const Ref<CVelumControlSet> held = aCard.Background();
  const CVelumControlSet& background = CVelumChecked::Deref(held);
  aWriter.BeginElem(u"card"_s);
  aWriter.AddAttr(u"name"_s, aCard.Name());
  aWriter.AddAttr(u"background"_s, background.Name());
  aWriter.BeginStruct();
  ForControls(background, [&](const CVelumControl& aControl) {
    if (aControl.ConType() == EConCommand) return;
    aWriter.BeginElem(u"control"_s);
    aWriter.AddAttr(u"name"_s, aControl.Name());
    const TVelumValue val = aCard.GetControlVal(aControl.Id(), false);
    aWriter.AddElemText(CVelumValue::ValToExtText(val, aControl.FieldInfo()));
    aWriter.EndElem(u"control"_s);
  });
  aWriter.EndElem(u"card"_s);
}

bool WriteContent(const QString& aPath, const CVelumStack& aStack, const TVelumStep& aStep) {
  CVelumXmlWriter writer(aPath);
  writer.OpenFile();
  writer.BeginElem(u"orvelle"_s);
  writer.AddAttr(u"version"_s, u"1.0"_s);
  writer.BeginStruct();
  Ref<CVelumCard> card;
  qint32 index = 0;
  qint64 count = 0;
  for (bool more = aStack.GetFirstCard(card, index); more; more = aStack.GetNextCard(card, index)) {
    WriteCard(writer, *card);
    if (aStep && ++count % EStepCards == 0 && !aStep(count, aStack.NumCards())) return false;
  }
  writer.EndElem(u"orvelle"_s);
  writer.CloseFile();
  return true;
}

} // namespace

void CVelumExports::InitExports() {}

QString CVelumExports::CsvQuote(const QString& aStr) {
  QString cell;
  AppendCell(aStr, cell);
  return cell;
}

QString CVelumExports::CsvValue(const TVelumValue& aVal, const CVelumControl& aControl) {
  return CsvQuote(CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
}

bool CVelumExports::ExportCsv(const QString& aPath, const CVelumControlSet& aBackground,
                              const TVelumCsvForm& aForm, const TVelumStep& aStep, qint64* aLacking) {
  const bool utf8 = aForm.iCoding == ECodUtf8;
  const bool count = aLacking && !utf8;
  qint64 lacking = 0;
  const auto write = [&](const QString& aNew) {
    CVelumFile file(aNew, EFilSeqWrite);
    file.SetCoding(aForm.iCoding);
    file.OpenFile();
    QString mark = utf8 ? EByteOrderMark : QString();
    const bool whole = ForLines(aBackground, aForm.iDelimiter, aStep, [&](const QString& aLine) {
      if (count) lacking += Lacking(aLine);
      file.WriteLine(mark.isEmpty() ? aLine : std::exchange(mark, {}) + aLine);
    });
    file.CloseFile();
    return whole;
  };
  const bool whole = CVelumExportFile::WriteBeside(aPath, CVelumChecked::Deref(aBackground.Stack()), write);
  if (aLacking) *aLacking = lacking;
  return whole;
}

qint64 CVelumExports::CountLacking(const CVelumControlSet& aBackground, const TVelumStep& aStep) {
  qint64 sum = 0;
  static_cast<void>(ForLines(aBackground, {}, aStep, [&](const QString& aLine) { sum += Lacking(aLine); }));
  return sum;
}

bool CVelumExports::ExportXml(CVelumStack& aStack, const QString& aPath, const TVelumStep& aStep) {
  return CVelumExportFile::WriteBeside(
      aPath, aStack, [&](const QString& aNew) { return WriteContent(aNew, aStack, aStep); });
}
