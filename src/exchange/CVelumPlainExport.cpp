#include "exchange/CVelumPlainExport.h"

#include "core/CVelumChecked.h"
#include "core/file/CVelumOs.h"
#include "exchange/CVelumCsvForm.h"
#include "exchange/CVelumCsvPlan.h"
#include "exchange/CVelumExportFile.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qint64 EStepCards = 500; // from one question to aStep to the next
constexpr size_t EBlock = 1 << 18; // bytes that are written at once

// A new file, written in blocks.
class CBlocks {
public:
  explicit CBlocks(const QString& aPath) : iPath(aPath), iFd(CVelumOs::Open(aPath, O_WRONLY | O_TRUNC)) {
    if (iFd < 0) CVelumOs::Raise(errno, aPath);
    iText.reserve(2 * EBlock);
  }
  ~CBlocks() { CVelumOs::Close(iFd); }
  CBlocks(const CBlocks&) = delete;
  CBlocks& operator=(const CBlocks&) = delete;

  [[nodiscard]] std::string& Text() { return iText; }
  void WriteFull() {
    if (iText.size() >= EBlock) Flush();
  }
  void Flush() {
    CVelumOs::Write(iFd, iPath, iText.data(), static_cast<qint64>(iText.size()));
    iText.clear();
  }

private:
  QString iPath;
  int iFd;
  std::string iText;
};

// A field as a column.
struct TPlainColumn {
  qint32 iId;
  bool iWithDefault; // an empty text differs from no value
};

class CWriter {
public:
  CWriter(const CVelumControlSet& aBackground, QChar aDelim, QStringList& aLeftOut);

  void Header(std::string& aTo);
  void Card(const CVelumCard& aCard, std::string& aTo);

private:
  void EndCell(size_t aStart, bool aLast, bool aQuoted, std::string& aTo);
  void AppendValue(const TVelumValue& aValue, const TPlainColumn& aColumn, bool aLast, std::string& aTo);
  [[nodiscard]] bool NeedsQuotes(std::string_view aText, bool aFirstOfFile) const;
  static void Quote(size_t aStart, std::string& aTo);

  std::vector<TPlainColumn> iColumns;
  QStringList iNames;
  std::string iDelim;
  bool iSpecial[256] = {};     // bytes for which a cell needs quotes
  bool iDelimInValues = false; // the delimiter may be part of a number or a date
};

CWriter::CWriter(const CVelumControlSet& aBackground, QChar aDelim, QStringList& aLeftOut)
    : iDelim(QString(aDelim).toStdString()) {
  for (const char c : "\"\r\n" + iDelim) iSpecial[static_cast<unsigned char>(c)] = true;
  iDelimInValues = aDelim.isLetterOrNumber() || QStringView(u".-:+").contains(aDelim);
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    const CVelumControl* control = aBackground.ControlAt(i);
    if (!control || control->ConType() == EConCommand) continue;
    if (!CVelumCsvPlans::IsUsable(*control)) {
      aLeftOut.append(control->Name());
      continue;
    }
    iColumns.push_back({control->Id(), !control->DefaultVal().isEmpty()});
    iNames.append(control->Name());
  }
}

// A mark at the very beginning would be taken for that of the file.
bool CWriter::NeedsQuotes(std::string_view aText, bool aFirstOfFile) const {
  for (const char c : aText)
    if (iSpecial[static_cast<unsigned char>(c)]) return true;
  return aFirstOfFile && aText.starts_with("\xEF\xBB\xBF");
}

void CWriter::Quote(size_t aStart, std::string& aTo) {
  const std::string plain = aTo.substr(aStart);
  aTo.resize(aStart);
  aTo += '"';
  for (const char c : plain) {
    if (c == '"') aTo += '"';
    aTo += c;
  }
  aTo += '"';
}

// What stands in aTo from aStart on is a cell. Alone on its line an empty one would be a line with nothing on
// it.
void CWriter::EndCell(size_t aStart, bool aLast, bool aQuoted, std::string& aTo) {
  const std::string_view text = std::string_view(aTo).substr(aStart);
  const bool alone = text.empty() && iColumns.size() == 1;
  if (aQuoted || alone || NeedsQuotes(text, aStart == 0)) Quote(aStart, aTo);
  aTo += aLast ? std::string_view("\r\n") : std::string_view(iDelim);
}

void CWriter::Header(std::string& aTo) {
  for (qsizetype i = 0; i < iNames.size(); ++i) {
    const size_t start = aTo.size();
    CVelumCsvForms::AppendPlain(TVelumValue::OfStr(iNames.at(i)), aTo);
    EndCell(start, i + 1 == iNames.size(), false, aTo);
  }
}

void CWriter::AppendValue(const TVelumValue& aValue, const TPlainColumn& aColumn, bool aLast,
                          std::string& aTo) {
  const size_t start = aTo.size();
  CVelumCsvForms::AppendPlain(aValue, aTo);
  if (aValue.Type() != EValStr && iColumns.size() > 1 && !iDelimInValues)
    aTo += aLast ? std::string_view("\r\n") : std::string_view(iDelim);
  else
    EndCell(start, aLast, aColumn.iWithDefault && aValue.Type() == EValStr && aValue.Str().isEmpty(), aTo);
}

// The values of most cards stand in the order of the columns.
void CWriter::Card(const CVelumCard& aCard, std::string& aTo) {
  static const TVelumValue none;
  const CVelumArray& values = aCard.Value();
  qint32 next = 0;
  for (size_t i = 0; i < iColumns.size(); ++i) {
    const TPlainColumn& column = iColumns[i];
    const bool inOrder = next < values.Count() && values.IntKeyAt(next) == column.iId;
    const qint32 at = inOrder ? next : values.FindIntKey(column.iId);
    if (at >= 0) next = at + 1;
    AppendValue(at >= 0 ? values.ValRef(at) : none, column, i + 1 == iColumns.size(), aTo);
  }
}

bool WriteAll(const QString& aPath, const CVelumControlSet& aBackground, CWriter& aWriter,
              const TVelumStep& aStep) {
  const CVelumStack& stack = CVelumChecked::Deref(aBackground.Stack());
  CBlocks blocks(aPath);
  aWriter.Header(blocks.Text());
  const qint64 total = aBackground.NumCards();
  qint64 count = 0;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool more = stack.GetFirstCardInBackground(aBackground.Id(), card, index); more;
       more = stack.GetNextCardInBackground(aBackground.Id(), card, index)) {
    aWriter.Card(*card, blocks.Text());
    blocks.WriteFull();
    if (aStep && ++count % EStepCards == 0 && !aStep(count, total)) return false;
  }
  blocks.Flush();
  return true;
}

} // namespace

bool CVelumPlainExport::Write(const QString& aPath, const CVelumControlSet& aBackground, QChar aDelim,
                              const TVelumStep& aStep, QStringList* aLeftOut) {
  QStringList leftOut;
  CWriter writer(aBackground, aDelim, leftOut);
  const bool whole = CVelumExportFile::WriteBeside(
      aPath, CVelumChecked::Deref(aBackground.Stack()),
      [&](const QString& aNew) { return WriteAll(aNew, aBackground, writer, aStep); });
  if (aLeftOut) *aLeftOut = leftOut;
  return whole;
}
