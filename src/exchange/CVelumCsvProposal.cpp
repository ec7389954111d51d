#include "exchange/CVelumCsvProposal.h"

#include "exchange/CVelumCsvRows.h"
#include "exchange/CVelumImportLimits.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>

namespace {

constexpr int EShownLines = 10;
constexpr int ESampleLines = 1000;
constexpr qint64 EMaxSample = 1 << 22; // bytes

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

// The first lines as bytes, whatever ends them.
QByteArray Sample(const QString& aFilename) {
  QFile file(aFilename);
  if (!file.open(QIODevice::ReadOnly)) return {};
  QByteArray bytes = file.read(EMaxSample);
  int lines = 0;
  qsizetype end = 0; // behind the last line end that was found
  for (qsizetype i = 0; i < bytes.size() && lines < ESampleLines; ++i) {
    if (bytes.at(i) != '\r' && bytes.at(i) != '\n') continue;
    end = i + 1;
    ++lines;
  }
  // A character may have been cut at the end of a longer file.
  if (lines == ESampleLines || !file.atEnd()) bytes.truncate(end);
  return bytes;
}

bool LooksUtf8(const QByteArray& aBytes) {
  const bool ascii = std::all_of(aBytes.begin(), aBytes.end(), [](char c) { return (c & 0x80) == 0; });
  if (ascii) return false;
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString text = decoder(aBytes);
  return !decoder.hasError() && !text.isEmpty();
}

} // namespace

TCsvProposal CVelumImports::ProposeCsv(const QString& aFilename) {
  CVelumImportLimits::CheckIsFile(aFilename);
  TCsvProposal proposal;
  QStringList lines = FirstLines(aFilename, proposal.iCoding);
  proposal.iDelim = ProposeDelim(lines.value(0));
  proposal.iLooksUtf8 = proposal.iCoding == ECodLatin1 && LooksUtf8(Sample(aFilename));
  if (qint32 coding = ECodUtf8; proposal.iLooksUtf8) lines = FirstLines(aFilename, coding);
  for (QString& line : lines) {
    line.truncate(CVelumCsvRows::EMaxLineLen);
    line.replace(u'\t', u"<tab>"_s);
  }
  proposal.iLines = lines;
  return proposal;
}
