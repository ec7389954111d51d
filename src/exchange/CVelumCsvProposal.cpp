#include "exchange/CVelumCsvProposal.h"

#include "core/CVelumLimits.h"
#include "exchange/CVelumCsvRows.h"
#include "exchange/CVelumImportLimits.h"

#include <QFile>
#include <QUtf8StringView>
#include <algorithm>

namespace {

constexpr int EShownLines = 10;
constexpr qint64 EBlock = 1 << 20; // bytes

QChar ProposeDelim(const QString& aLine) {
  const qsizetype commas = aLine.count(u',');
  const qsizetype semicolons = aLine.count(u';');
  const qsizetype tabs = aLine.count(u'\t');
  if (semicolons > commas && semicolons > tabs) return u';';
  if (tabs > commas && tabs > semicolons) return u'\t';
  return u',';
}

QStringList FirstLines(const QString& aFilename, qint32& aCoding) {
  CVelumFile file(aFilename, EFilSeqRead);
  file.SetCoding(aCoding);
  file.OpenFile();
  QStringList lines;
  QString line;
  while (lines.size() < EShownLines && file.ReadLine(line)) lines.append(line);
  aCoding = file.Coding();
  file.CloseFile();
  return lines;
}

// Bytes at the end of aBytes that begin a character which goes on behind them.
qsizetype CutOff(QByteArrayView aBytes) {
  constexpr qsizetype longest = 4;
  for (qsizetype back = 1; back < longest && back <= aBytes.size(); ++back) {
    const auto byte = static_cast<quint8>(aBytes[aBytes.size() - back]);
    if ((byte & 0xC0) == 0x80) continue; // not the first of its character
    const qsizetype len = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
    return len > back ? back : 0;
  }
  return 0;
}

bool IsAscii(QByteArrayView aBytes) {
  return std::all_of(aBytes.begin(), aBytes.end(), [](char c) { return (c & 0x80) == 0; });
}

// Whether a file holds other than ASCII, and all of it is valid UTF-8. It is read to the first byte that is
// not, in blocks.
bool LooksUtf8(const QString& aFilename) {
  QFile file(aFilename);
  if (!file.open(QIODevice::ReadOnly)) return false;
  bool ascii = true;
  QByteArray rest; // of the block before
  for (QByteArray block = file.read(EBlock); !block.isEmpty(); block = file.read(EBlock)) {
    ascii = ascii && IsAscii(block);
    block.prepend(rest);
    const qsizetype cut = CutOff(block);
    if (!QUtf8StringView(block.first(block.size() - cut)).isValidUtf8()) return false;
    rest = block.last(cut);
  }
  return !ascii && rest.isEmpty();
}

} // namespace

TCsvProposal CVelumImports::ProposeCsv(const QString& aFilename, bool aWholeFile) {
  CVelumImportLimits::CheckIsFile(aFilename);
  TCsvProposal proposal;
  QStringList lines = FirstLines(aFilename, proposal.iCoding);
  proposal.iDelim = ProposeDelim(lines.value(0));
  proposal.iLooksUtf8 = aWholeFile && proposal.iCoding == ECodLatin1 && LooksUtf8(aFilename);
  if (qint32 coding = ECodUtf8; proposal.iLooksUtf8) lines = FirstLines(aFilename, coding);
  for (QString& line : lines) {
    line.truncate(EMaxScanLine);
    line.replace(u'\t', u"<tab>"_s);
  }
  proposal.iLines = lines;
  return proposal;
}
