#include "exchange/CVelumExports.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/CVelumXmlWriter.h"
#include "persist/CVelumNewFile.h"

QString gQuote;
QString gQuoteQuote;

namespace {

constexpr qint64 EStepCards = 500; // cards from one question to aStep to the next
const QString EByteOrderMark(QChar(0xFEFF));

// Writes a file beside aPath by aWrite, which is given its name and tells whether to put it in place.
template <class TWrite>
bool WriteBeside(const QString& aPath, const CVelumStack& aStack, const TWrite& aWrite) {
  const QString path = CVelumOs::RealPath(aPath);
  const TVelumFileId there = CVelumOs::IdOf(path);
  const QString own = aStack.Filename();
  if (there.Exists() && !own.isEmpty() && there.SameFile(CVelumOs::IdOf(CVelumOs::RealPath(own))))
    CVelumError::RaiseHost(EHostPermissionDenied, aPath + u" is the stack itself."_s);
  CVelumNewFile target(path);
  if (!aWrite(target.Path())) return false;
  target.TakePlace();
  return true;
}

// Calls aVisit with each control of a background, in their order.
template <class TVisit> void ForControls(const CVelumControlSet& aBackground, const TVisit& aVisit) {
  Ref<CVelumControl> control;
  qint32 index = 0;
  for (bool more = aBackground.GetFirstControl(control, index); more;
       more = aBackground.GetNextControl(control, index))
    aVisit(*control);
}

// Calls aVisit with each line of the CSV file; false when aVisit or aStep ended it.
template <class TVisit>
bool ForLines(const CVelumControlSet& aBackground, const QString& aDelimiter, const TVelumStep& aStep,
              const TVisit& aVisit) {
  const CVelumStack& stack = CVelumChecked::Deref(aBackground.Stack());
  QString line;
  const auto add = [&](const QString& aCell) {
    if (!line.isEmpty()) line += aDelimiter;
    line += aCell;
  };
  ForControls(aBackground,
              [&](const CVelumControl& aControl) { add(CVelumExports::CsvQuote(aControl.Name())); });
  aVisit(line);
  Ref<CVelumCard> card;
  qint32 index = 0;
  qint64 count = 0;
  const qint64 total = aBackground.NumCards();
  for (bool more = stack.GetFirstCardInBackground(aBackground.Id(), card, index); more;
       more = stack.GetNextCardInBackground(aBackground.Id(), card, index)) {
    line.clear();
    ForControls(aBackground, [&](const CVelumControl& aControl) {
      add(CVelumExports::CsvValue(card->GetControlVal(aControl.Id(), false), aControl));
    });
    aVisit(line);
    if (aStep && ++count % EStepCards == 0 && !aStep(count, total)) return false;
  }
  return true;
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

void CVelumExports::InitExports() {
  gQuote = u"\""_s;
  gQuoteQuote = u"\"\""_s;
}

QString CVelumExports::CsvQuote(const QString& aStr) {
  QString cell = aStr;
  cell.replace(gQuote, gQuoteQuote);
  cell.replace(u"\r\n"_s, u"&eol;"_s);
  return gQuote + cell + gQuote;
}

QString CVelumExports::CsvValue(const TVelumValue& aVal, const CVelumControl& aControl) {
  return CsvQuote(CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
}

bool CVelumExports::ExportCsv(const QString& aPath, const CVelumControlSet& aBackground,
                              const QString& aDelimiter, qint32 aCoding, const TVelumStep& aStep) {
  const auto write = [&](const QString& aNew) {
    CVelumFile file(aNew, EFilSeqWrite);
    file.SetCoding(aCoding);
    file.OpenFile();
    QString mark = aCoding == ECodUtf8 ? EByteOrderMark : QString();
    const bool whole = ForLines(aBackground, aDelimiter, aStep, [&](const QString& aLine) {
      file.WriteLine(std::exchange(mark, {}) + aLine);
    });
    file.CloseFile();
    return whole;
  };
  return WriteBeside(aPath, CVelumChecked::Deref(aBackground.Stack()), write);
}

qint64 CVelumExports::CountLacking(const CVelumControlSet& aBackground) {
  qint64 sum = 0;
  static_cast<void>(ForLines(aBackground, {}, {}, [&](const QString& aLine) {
    int lacking = 0;
    static_cast<void>(CVelumLib::ToCodePage(aLine, &lacking));
    sum += lacking;
  }));
  return sum;
}

bool CVelumExports::ExportXml(CVelumStack& aStack, const QString& aPath, const TVelumStep& aStep) {
  return WriteBeside(aPath, aStack, [&](const QString& aNew) { return WriteContent(aNew, aStack, aStep); });
}
