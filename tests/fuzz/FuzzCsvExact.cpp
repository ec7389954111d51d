// CSV files of any kind, read exactly: into a new stack, out of it and back into its background, and added to
// it. The first two bytes say how.
#include "FuzzTarget.h"

#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvExact.h"
#include "exchange/CVelumCsvSample.h"
#include "exchange/CVelumPlainExport.h"
#include "persist/CVelumStackCheck.h"
#include "support/ScriptedPresenter.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>

namespace {

const char* const EPieces[] = {",",     ";",        "\t",         "|",          "\"",     "\"\"",
                               "\"a\"", "\n",       "\r\n",       "\r",         "\0",     " ",
                               "a",     "007",      "-1.5",       "1,234",      "1.234",  "12",
                               "true",  "yes",      "9:30",       "16/07/2010", "1/2/03", "\xC3\xA9",
                               "\xE9",  "\xFF\xFE", "2003-01-02", "x\ny",       "1e999",  "12345678901"};

void Require(bool aTrue) {
  if (!aTrue) std::abort();
}

struct TFuzzed {
  QString iPath;
  std::optional<ECsvEncoding> iEncoding;
  TCsvReading iReading;
  TCsvChoice iChoice;
};

void TakeBits(quint8 aOne, quint8 aTwo, TFuzzed& aFuzzed) {
  static constexpr std::optional<ECsvEncoding> encodings[] = {
      std::nullopt, ECsvEncoding::Utf8, ECsvEncoding::Utf16Le, ECsvEncoding::Windows1252};
  aFuzzed.iEncoding = encodings[aOne & 3];
  aFuzzed.iReading.iHeaderLine = (aOne & 4) == 0;
  aFuzzed.iReading.iSkipLines = (aOne & 8) != 0 ? 1 : 0;
  if ((aOne & 16) != 0) aFuzzed.iReading.iDelim = u',';
  aFuzzed.iChoice.iDetectTypes = (aTwo & 1) == 0;
  aFuzzed.iChoice.iNaming = static_cast<ECsvNaming>((aTwo >> 1) % 3);
  if ((aTwo & 8) != 0) aFuzzed.iChoice.iTypes.insert(0, (aTwo >> 4) % 6);
  if ((aTwo & 16) != 0) aFuzzed.iChoice.iTypes.insert(1, (aTwo >> 5) % 6);
}

CVelumCsvExact RunOf(const QString& aPath, const TFuzzed& aFuzzed,
                     const Ref<CVelumControlSet>& aBackground = {}) {
  return {std::make_shared<CVelumCsvSource>(aPath, aFuzzed.iEncoding), aFuzzed.iReading, aFuzzed.iChoice,
          aBackground};
}

void RequireSound(CVelumStack& aStack, qint64 aCards) {
  Require(CVelumStackCheck(aStack).Run().isEmpty());
  Require(aStack.NumCards() == aCards);
}

Ref<CVelumControlSet> BackgroundOf(const CVelumStack& aStack) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  Require(aStack.GetFirstBackground(background, index));
  return background;
}

// What was written for other programs comes back without a loss.
void ImportBack(const QString& aPath, const Ref<CVelumStack>& aStack, qint64 aCards) {
  const Ref<CVelumControlSet> background = BackgroundOf(*aStack);
  if (background->NumControls() == 0) return;
  Require(CVelumPlainExport::Write(aPath, *background));
  TFuzzed plain;
  plain.iReading.iDelim = u',';
  CVelumImportWatch watch;
  CVelumPlainStackHost host(aStack);
  CVelumCsvExact replace = RunOf(aPath, plain, background);
  Require(replace.Into(watch, host) == ECsvOutcome::Done);
  Require(replace.Report().iChanged == 0);
  RequireSound(*aStack, aCards);
  plain.iChoice.iAdd = true;
  Require(RunOf(aPath, plain, background).Into(watch, host) == ECsvOutcome::Done);
  RequireSound(*aStack, 2 * aCards);
}

void ImportAll(const TFuzzed& aFuzzed, const QString& aOther) {
  const auto begin = CVelumCsvSamples::Begin(aFuzzed.iPath, aFuzzed.iEncoding);
  const QChar delim = aFuzzed.iReading.iDelim.value_or(
      CVelumCsvSamples::ProposeDelim(begin->Text(), aFuzzed.iReading.iSkipLines));
  static_cast<void>(CVelumCsvSamples::Take(
      begin->Text(), {delim, aFuzzed.iReading.iHeaderLine, aFuzzed.iReading.iSkipLines}, begin->HasZero()));
  CVelumCsvExact run = RunOf(aFuzzed.iPath, aFuzzed);
  CVelumImportWatch watch;
  TNewStack made;
  ECsvOutcome outcome = run.IntoNew(watch, made);
  if (outcome == ECsvOutcome::Faulty) {
    Require(!made.iStack && !run.Faults().IsEmpty());
    TCsvChoice choice = aFuzzed.iChoice;
    choice.iDrop = true;
    run.Decide(choice);
    outcome = run.IntoNew(watch, made);
  }
  Require(static_cast<bool>(made.iStack) == (outcome == ECsvOutcome::Done));
  if (!made.iStack) return Require(outcome == ECsvOutcome::Empty);
  RequireSound(*made.iStack, run.Scan().NumRecords());
  ImportBack(aOther, made.iStack, run.Scan().NumRecords());
}

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  QByteArray bytes;
  for (int i = 0; i < 2; ++i) bytes += static_cast<char>(aRandom());
  for (auto left = aRandom() % 120; left > 0; --left) {
    if (aRandom() % 30 == 0)
      bytes += static_cast<char>(aRandom());
    else
      bytes += EPieces[aRandom() % std::size(EPieces)];
  }
  return bytes;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize < 2) return 0;
  static const bool ready = [] {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(QStringLiteral("en_US"));
    return true;
  }();
  static_cast<void>(ready);
  ScriptedPresenter presenter;
  static const QTemporaryDir folder;
  TFuzzed fuzzed;
  fuzzed.iPath = folder.filePath(QStringLiteral("a.csv"));
  TakeBits(aData[0], aData[1], fuzzed);
  QFile file(fuzzed.iPath);
  Require(file.open(QIODevice::WriteOnly));
  file.write(reinterpret_cast<const char*>(aData + 2), static_cast<qint64>(aSize - 2));
  file.close();
  ImportAll(fuzzed, folder.filePath(QStringLiteral("b.csv")));
  return 0;
}
