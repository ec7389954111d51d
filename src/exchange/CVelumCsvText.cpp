#include "exchange/CVelumCsvText.h"

namespace {

constexpr std::string_view EMark = "\xEF\xBB\xBF";

void MendPairs(QString& aText) {
  for (qsizetype i = 0; i < aText.size(); ++i) {
    if (!aText.at(i).isSurrogate()) continue;
    const bool pair =
        aText.at(i).isHighSurrogate() && i + 1 < aText.size() && aText.at(i + 1).isLowSurrogate();
    if (pair)
      ++i;
    else
      aText[i] = QChar(QChar::ReplacementCharacter);
  }
}

} // namespace

QString CVelumCsvText::Wide(std::string_view aText) {
  // The conversion leaves out a mark at the start.
  size_t marks = 0;
  while (aText.substr(marks).starts_with(EMark)) marks += EMark.size();
  QString text(static_cast<qsizetype>(marks / EMark.size()), QChar(0xFEFF));
  aText.remove_prefix(marks);
  return text + QString::fromUtf8(aText.data(), static_cast<qsizetype>(aText.size()));
}

// Most texts are ASCII.
void CVelumCsvText::AppendUtf8(const QString& aText, std::string& aTo) {
  const size_t start = aTo.size();
  aTo.resize(start + static_cast<size_t>(aText.size()));
  char* to = aTo.data() + start;
  char16_t bits = 0;
  for (const QChar c : aText) {
    bits |= c.unicode();
    *to++ = static_cast<char>(c.unicode());
  }
  if (bits < 0x80) return;
  aTo.resize(start);
  QString text = aText;
  MendPairs(text);
  const QByteArray bytes = text.toUtf8();
  aTo.append(bytes.constData(), static_cast<size_t>(bytes.size()));
}
