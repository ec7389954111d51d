// Cards written out for other programs: one background as CSV, or all cards as content in XML.
#pragma once

#include "core/file/CVelumFile.h"
#include "exchange/CVelumStep.h"
#include "model/CVelumStack.h"

// One and two double quote characters.
extern const QString gQuote;
extern const QString gQuoteQuote;

// What a CSV file looks like.
struct TVelumCsvForm {
  QString iDelimiter = u","_s;
  qint32 iCoding = ECodLatin1;
};

namespace CVelumExports {

// A step of the start, with nothing to do: gQuote and gQuoteQuote are constants.
void InitExports();

// The text of a cell: in quotes, with quotes doubled and each line end (CR LF) as "&eol;".
[[nodiscard]] QString CsvQuote(const QString& aStr);
// The same of a value's external text, which depends on the locale and the settings of the field.
[[nodiscard]] QString CsvValue(const TVelumValue& aVal, const CVelumControl& aControl);

// Both write beside aPath and put the file in place when it is whole; a failure, or aStep giving up (then the
// result is false), leaves what was there. A file that is that of the stack itself is host error 70.

// A line with the names of all fields, also commands and pictures, and a line for each card in the order of
// the stack. With ECodLatin1 a character that the code page 1252 lacks becomes "?" (aLacking is their
// number); a file in ECodUtf8 begins with a byte order mark.
bool ExportCsv(const QString& aPath, const CVelumControlSet& aBackground, const TVelumCsvForm& aForm = {},
               const TVelumStep& aStep = {}, qint64* aLacking = nullptr);
// Characters of that file that the code page 1252 lacks; those found so far where aStep gave up.
[[nodiscard]] qint64 CountLacking(const CVelumControlSet& aBackground, const TVelumStep& aStep = {});
// The cards of all backgrounds, with all their fields but commands.
bool ExportXml(CVelumStack& aStack, const QString& aPath, const TVelumStep& aStep = {});

} // namespace CVelumExports
