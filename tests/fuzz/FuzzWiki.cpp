// Wiki text of any kind: to RTF, and the RTF read again. The first byte says whether the rest is wiki text or
// RTF itself.
#include "FuzzTarget.h"

#include "runtime/wiki/CVelumWikiTextBox.h"
#include "toolkit/CVelumRtf.h"

#include <cstdlib>

namespace {

const char* const EPieces[] = {"**",      "//",       "__",   "\\\\",       "[[",  "]]",     "|",
                               "\r\n",    "\r",       "{",    "}",          "[",   "\\",     "a",
                               "select",  "\xC3\xA9", " ",    "\n",         "\\u", "\\'",    "\\par ",
                               "\\pard ", "\\fs20 ",  "{\\*", "\\colortbl", ";",   "\\red-9"};

void Require(bool aHolds) {
  if (!aHolds) std::abort();
}

// What is shown, counted as the links count it.
qsizetype Counted(const TRtfText& aText) {
  qsizetype count = 2 * (aText.iParas.size() - 1) + aText.iHidden.size();
  for (const TRtfPara& para : aText.iParas)
    for (const TRtfRun& run : para.iRuns) count += run.iText.size();
  return count;
}

void RunWiki(const QString& aText) {
  CVelumWikiTextBox box;
  try {
    box.SetStr(aText);
  } catch (const CVelumException&) {
    Require(box.TextStr().isEmpty() && box.Links().isEmpty());
    return;
  }
  const TRtfText text = CVelumRtf::Read(box.TextStr());
  const qsizetype count = Counted(text);
  for (const TWikiLink& link : box.Links()) Require(link.iStart + link.iLen <= count);
}

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  QByteArray bytes(1, static_cast<char>(aRandom() % 4));
  return bytes += Pieces(EPieces, 200, 20, aRandom);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0) return 0;
  const QString text =
      QString::fromUtf8(reinterpret_cast<const char*>(aData + 1), static_cast<qsizetype>(aSize - 1));
  if (aData[0] == 0)
    Require(!CVelumRtf::Read(text).iParas.isEmpty());
  else
    RunWiki(text);
  return 0;
}
