#include "shell/dialogs/CVelumCsvWork.h"

#include "core/CVelumMsg.h"

#include <QElapsedTimer>

namespace {

// Milliseconds of work between two looks at what else is to be done. Most files are known after the first.
constexpr qint64 ESlice = 20;

QString FailureText() {
  CVelumError::CatchError(u"CVelumCsvWork"_s);
  const TVelumError error = CVelumError::GetErrorRecord();
  if (error.iSysNum != ENoInt) return error.iSysDescr;
  return CVelumMsg::Text(error.iMsgId, error.iP0, error.iP1);
}

} // namespace

CVelumCsvWork::CVelumCsvWork() {
  iTimer.setInterval(0);
  connect(&iTimer, &QTimer::timeout, this, &CVelumCsvWork::Slice);
}

CVelumCsvWork::~CVelumCsvWork() = default;

void CVelumCsvWork::Begin(const QString& aFilename) {
  Clear();
  iFilename = aFilename;
  ReadBegin();
  Restart(true);
}

void CVelumCsvWork::ReadBegin() {
  iBegin = CVelumCsvSamples::Begin(iFilename, iEncoding);
  TakeSample();
}

void CVelumCsvWork::Clear() {
  iTimer.stop();
  iRun.reset();
  iBegin.reset();
  iWhole.reset();
  iSample = {};
  iEncoding.reset();
  iReading = {};
  iChoice = {};
  iBackground = nullptr;
  iFailure.clear();
  iKnown = false;
}

void CVelumCsvWork::TakeSample() {
  iLayout = {iReading.iDelim.value_or(CVelumCsvSamples::ProposeDelim(iBegin->Text(), iReading.iSkipLines)),
             iReading.iHeaderLine, iReading.iSkipLines};
  iSample = CVelumCsvSamples::Take(iBegin->Text(), iLayout, iBegin->HasZero());
}

void CVelumCsvWork::Restart(bool aReadAnew) {
  iFailure.clear();
  iKnown = false;
  try {
    if (aReadAnew || !iWhole) {
      iRun.reset();
      iWhole = std::make_shared<CVelumCsvSource>(iFilename, iEncoding);
    }
    TCsvReading reading = iReading;
    reading.iDelim = iLayout.iDelim;
    iRun = std::make_unique<CVelumCsvExact>(iWhole, reading, iChoice, iBackground);
    Work();
  } catch (const std::exception&) {
    Fail();
  }
}

// The file has to be read anew before anything can be made of it.
void CVelumCsvWork::Fail() {
  iFailure = FailureText();
  iTimer.stop();
  iRun.reset();
  iWhole.reset();
}

void CVelumCsvWork::SetEncoding(std::optional<ECsvEncoding> aEncoding) {
  if (aEncoding == iEncoding || !IsOpen()) return;
  iEncoding = aEncoding;
  try {
    ReadBegin();
  } catch (const std::exception&) {
    return Fail();
  }
  Restart(true);
}

void CVelumCsvWork::SetReading(const TCsvReading& aReading) {
  iReading = aReading;
  if (!IsOpen()) return;
  TakeSample();
  Restart(false);
}

void CVelumCsvWork::SetChoice(const TCsvChoice& aChoice, const Ref<CVelumControlSet>& aBackground) {
  iChoice = aChoice;
  iBackground = aBackground;
  if (!iRun) return;
  iKnown = false;
  iRun->Choose(iChoice, iBackground);
  Work();
}

// The beginning of a file may be ASCII where its rest is not.
ECsvEncoding CVelumCsvWork::Encoding() const {
  return IsKnown() ? iWhole->Encoding() : iBegin->Encoding();
}

void CVelumCsvWork::Work() {
  QElapsedTimer clock;
  clock.start();
  try {
    while (iRun && !iKnown && clock.elapsed() < ESlice) iKnown = !iRun->Step();
  } catch (const std::exception&) {
    Fail();
  }
  if (iRun && !iKnown)
    iTimer.start();
  else
    iTimer.stop();
}

void CVelumCsvWork::Slice() {
  Work();
  if (iRun && !iKnown) {
    Q_EMIT Progressed();
    return;
  }
  Q_EMIT Known();
}

TCsvForm CVelumCsvWork::FormOf(int aColumn) const {
  if (IsKnown()) return iRun->Plan()[static_cast<size_t>(aColumn)].iForm;
  if (iBackground) return {};
  const CVelumCsvColumn& column = iSample.iColumns[static_cast<size_t>(aColumn)];
  if (iChoice.iTypes.contains(aColumn)) return column.FormFor(iChoice.iTypes.value(aColumn));
  return iChoice.iDetectTypes ? column.Found() : TCsvForm();
}

const CVelumCsvColumn& CVelumCsvWork::Column(int aColumn) const {
  return IsKnown() ? iRun->Scan().Column(aColumn) : iSample.iColumns[static_cast<size_t>(aColumn)];
}
