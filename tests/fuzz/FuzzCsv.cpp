// CSV files of any kind: into a new stack, and once more into its background. The first byte says with which
// options.
#include "FuzzTarget.h"

#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvProposal.h"
#include "exchange/CVelumImports.h"
#include "persist/CVelumStackCheck.h"
#include "support/ScriptedPresenter.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>

namespace {

const char* const EPieces[] = {",",        ";",     "\t",  "\"",  "\"\"",     "\n",       "\r\n",
                               "\r",       "\1",    "\0",  " ",   "a",        "Name",     "12",
                               "-1.5",     "1.234", "T",   "yes", "1/2/2003", "10:30",    "\xC3\xA9",
                               "\xFF\xFE", "NO",    "1,5", ",,",  "x\ny",     "99999999", "2003-01-02"};

TCsvOptions OptionsOf(quint8 aBits) {
  TCsvOptions options;
  options.iDelim = (aBits & 1) != 0 ? u';' : u',';
  options.iCoding = (aBits & 2) != 0 ? ECodUtf8 : ECodLatin1;
  options.iHeaderLine = (aBits & 4) != 0;
  options.iDetectTypes = (aBits & 8) == 0;
  options.iGuessKey = (aBits & 16) == 0;
  options.iTryCardName = (aBits & 32) == 0;
  return options;
}

void RequireSound(CVelumStack& aStack) {
  if (!CVelumStackCheck(aStack).Run().isEmpty()) std::abort();
}

void ImportTwice(const QString& aPath, const TCsvOptions& aOptions) {
  CVelumImportWatch watch;
  TNewStack made;
  if (CVelumImports::ImportCsv1(aPath, aOptions, watch, made) != ECsvOutcome::Done) return;
  RequireSound(*made.iStack);
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  if (!made.iStack->GetFirstBackground(set, index)) std::abort();
  const qint32 cards = made.iStack->NumCards();
  CVelumPlainStackHost host(made.iStack);
  static_cast<void>(CVelumImports::ImportCsv1(aPath, aOptions, watch, set, host));
  RequireSound(*made.iStack);
  if (made.iStack->NumCards() != cards) std::abort();
}

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  QByteArray bytes(1, static_cast<char>(aRandom()));
  return bytes += Pieces(EPieces, 120, 30, aRandom);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0) return 0;
  static const bool ready = [] {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(QStringLiteral("en_US"));
    return true;
  }();
  static_cast<void>(ready);
  ScriptedPresenter presenter;
  static const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("a.csv"));
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) std::abort();
  file.write(reinterpret_cast<const char*>(aData + 1), static_cast<qint64>(aSize - 1));
  file.close();
  try {
    static_cast<void>(CVelumImports::ProposeCsv(path));
    ImportTwice(path, OptionsOf(aData[0]));
  } catch (const CVelumException&) { // a line or a cell that is too long
  }
  return 0;
}
