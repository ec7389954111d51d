#include "exchange/CVelumTextImport.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "exchange/CVelumImportLimits.h"
#include "exchange/CVelumImports.h"

#include <vector>

namespace {

constexpr int ELinesPerCard = 50;
const QString EField = u"Text"_s;

class CTextReader {
public:
  explicit CTextReader(const QString& aPath) : iFile(MakeRef<CVelumFile>(aPath, qint32{EFilSeqRead})) {
    iFile->OpenFile();
  }

  // The next lines, at most as many as a card takes. False when they end with the file.
  bool ReadChunk(QString& aChunk) {
    aChunk.clear();
    QString line;
    for (int i = 0; i < ELinesPerCard; ++i) {
      if (!iFile->ReadLine(line)) return false;
      if (i > 0) aChunk += u"\r\n"_s;
      aChunk += line;
    }
    return true;
  }

private:
  Ref<CVelumFile> iFile;
};

void CheckChunk(const QString& aChunk, qint64 aNum) {
  if (CVelumImportLimits::Fits(aChunk)) return;
  CVelumImportLimits::RaiseTooLong(
      u"The text of the lines from %1 on "_s.arg((aNum - 1) * ELinesPerCard + 1));
}

// All texts of the cards; false when aStep gave up.
bool ReadChunks(const QString& aPath, const TVelumStep& aStep, std::vector<QString>& aChunks) {
  CVelumImportLimits::CheckIsFile(aPath);
  CTextReader reader(aPath);
  for (bool more = true; more;) {
    QString chunk;
    more = reader.ReadChunk(chunk);
    aChunks.push_back(chunk);
    const auto count = static_cast<qint64>(aChunks.size());
    CheckChunk(chunk, count);
    if (aStep && !aStep(count, 0)) return false;
  }
  return true;
}

void AddCards(const std::vector<QString>& aChunks, const Ref<CVelumControlSet>& aBackground,
              qint32 aControlId, const Ref<CVelumCard>& aNext, CVelumStack& aStack) {
  qint64 number = 0;
  for (const QString& chunk : aChunks) {
    const auto card = MakeRef<CVelumCard>(QString::number(++number), aBackground);
    aStack.AddCard(card, aNext, false);
    card->SetControlVal(aControlId, TVelumValue::OfStr(chunk));
  }
}

} // namespace

bool CVelumImports::ImportTextFile(const QString& aPath, const Ref<CVelumControlSet>& aBackground,
                                   CVelumStackHost& aHost, const TVelumStep& aStep) {
  const Ref<CVelumControlSet> background = aBackground; // aBackground may be what a window holds
  const CVelumControlSet& set = CVelumChecked::Deref(background);
  Ref<CVelumControl> control;
  if (!set.GetControlByName(EField, control)) {
    CVelumMsg::Show(EMsgControlMissing, EMsgCritical, EField, set.Name());
    return false;
  }
  // Asserted again for each value, but then the old cards would be gone.
  CVelumError::Assert(CVelumValue::ConToValType(control->ConType()) == EValStr, u"type"_s);
  std::vector<QString> chunks;
  if (!ReadChunks(aPath, aStep, chunks)) return false;
  const Ref<CVelumStack> stack = aHost.Stack();
  const Ref<CVelumCard> next = FindNextCard(CVelumChecked::Deref(stack), set.Id());
  aHost.DeleteBackground(background, true);
  stack->BeginBulk(static_cast<qint32>(chunks.size()));
  try {
    AddCards(chunks, background, control->Id(), next, *stack);
  } catch (...) {
    stack->EndBulk();
    throw;
  }
  stack->EndBulk();
  return true;
}
