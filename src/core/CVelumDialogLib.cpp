#include "core/CVelumDialogLib.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumLimits.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumScanner.h"

namespace {

qint16 gWaitCount = 0;

// A text longer than a line of the scanner is no number either.
bool IsShortNumber(const QString& aText) {
  return aText.size() <= EMaxScanLine && CVelumScanner().IsShortNumberStr(aText);
}

} // namespace

void CVelumDialogLib::BeginWait() {
  CVelumSeams::EventPump().SetWaitCursor(true);
  gWaitCount = CVelumChecked::Add<qint16>(gWaitCount, 1);
}

void CVelumDialogLib::EndWait() {
  if (gWaitCount > 0) --gWaitCount;
  if (gWaitCount == 0) CVelumSeams::EventPump().SetWaitCursor(false);
}

int CVelumDialogLib::WaitCount() {
  return gWaitCount;
}

void CVelumDialogLib::CheckNotEmpty(const QString& aFieldName, const QString& aText, bool& aBad) {
  if (!CVelumLib::TrimBlanks(aText).isEmpty()) return;
  CVelumMsg::Show(EMsgEmptyField, EMsgCritical, aFieldName);
  aBad = true;
}

void CVelumDialogLib::CheckInt(const QString& aFieldName, const QString& aText, bool aEmptyOk, bool& aBad,
                               qint16 aMin, qint16 aMax) {
  const QString text = CVelumLib::TrimBlanks(aText).toString();
  if (text.isEmpty()) {
    if (!aEmptyOk) CheckNotEmpty(aFieldName, text, aBad);
    return;
  }
  const auto refuse = [&](qint32 aMsg, const QString& aLimit) {
    CVelumMsg::Show(aMsg, EMsgCritical, text, aFieldName, aLimit);
    aBad = true;
  };
  if (!IsShortNumber(text)) return refuse(EMsgNotNum, CVelumMsg::EUndefParam);
  const double num = CVelumValue::LenientNum(text);
  if (aMin != ENoShort && num < aMin) return refuse(EMsgNumTooLow, QString::number(aMin));
  if (aMax != ENoShort && num > aMax) return refuse(EMsgNumTooHigh, QString::number(aMax));
}
