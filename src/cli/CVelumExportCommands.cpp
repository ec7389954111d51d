// export-csv and export-xml: write cards for other programs.
#include "cli/CVelumCliCsv.h"
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliOutput.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "exchange/CVelumExports.h"
#include "exchange/CVelumPlainExport.h"

namespace {

QString LackingText(qint64 aLacking) {
  if (aLacking == 1) return u"1 character became \"?\", as latin1 lacks it; --coding utf8 keeps it."_s;
  return u"%1 characters became \"?\", as latin1 lacks them; --coding utf8 keeps them."_s.arg(aLacking);
}

void WriteClassic(const TVelumArgs& aArgs, const QString& aPath, const CVelumControlSet& aBackground,
                  CVelumTerminal& aTerminal) {
  TVelumCsvForm form;
  form.iDelimiter = CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s, u"comma"_s));
  form.iCoding = CVelumCliCsv::Coding(aArgs.Value(u"coding"_s, u"latin1"_s));
  qint64 lacking = 0;
  {
    const CVelumCliStack::CProgress progress(aTerminal);
    static_cast<void>(CVelumExports::ExportCsv(aPath, aBackground, form, progress.Step(), &lacking));
  }
  if (lacking > 0) aTerminal.Complain(LackingText(lacking));
}

void WritePlain(const TVelumArgs& aArgs, const QString& aPath, const CVelumControlSet& aBackground,
                CVelumTerminal& aTerminal) {
  const QChar delim = CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s, u"comma"_s));
  QStringList leftOut;
  {
    const CVelumCliStack::CProgress progress(aTerminal);
    static_cast<void>(CVelumPlainExport::Write(aPath, aBackground, delim, progress.Step(), &leftOut));
  }
  if (!leftOut.isEmpty())
    aTerminal.Complain(u"left out, as they have no text of their own: "_s + leftOut.join(u", "_s));
}

void CheckCsvUsage(const TVelumArgs& aArgs) {
  static_cast<void>(CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s, u"comma"_s)));
  static_cast<void>(CVelumCliCsv::Coding(aArgs.Value(u"coding"_s, u"latin1"_s)));
  if (aArgs.Has(u"plain"_s) && aArgs.Value(u"coding"_s) == u"latin1")
    throw TVelumUsage{u"--plain writes UTF-8."_s};
}

int RunCsv(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  CheckCsvUsage(aArgs);
  CVelumCliFiles::CheckFolder(aArgs.Operand(1));
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Operand(0));
  const Ref<CVelumControlSet> background = CVelumCliStack::ChosenBackground(*open.iStack, aArgs);
  CVelumCliOutput output(aArgs.Operand(1), aTerminal);
  const auto write = aArgs.Has(u"plain"_s) ? WritePlain : WriteClassic;
  write(aArgs, output.Path(), *background, aTerminal);
  output.Finish();
  return EExitDone;
}

int RunXml(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  CVelumCliFiles::CheckFolder(aArgs.Operand(1));
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Operand(0));
  CVelumCliOutput output(aArgs.Operand(1), aTerminal);
  {
    const CVelumCliStack::CProgress progress(aTerminal);
    static_cast<void>(CVelumExports::ExportXml(*open.iStack, output.Path(), progress.Step()));
  }
  output.Finish();
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::ExportCsv() {
  static const TVelumCliCommand command{
      u"export-csv"_s,
      {u"STACK"_s, u"OUT"_s},
      u"write the cards of a background as CSV"_s,
      u"The first line holds the names of the fields; each card is a line. All cells are in\n"
      "double quotes, and a line end inside a value is written as &eol;. Dates and numbers\n"
      "are written as the locale has them. An OUT that exists is replaced once the new\n"
      "file is complete; - is standard output. With --plain the file is for other programs\n"
      "and for import-csv: UTF-8, quotes only where a cell needs them, line ends as they\n"
      "are, numbers with a point and all digits, dates as yyyy-mm-dd, true and false, and\n"
      "nothing where a card has no value of its own."_s,
      {{u"plain"_s, {}, u"for other programs"_s},
       {u"background"_s, u"NAME"_s, u"the background; needed if it is one of several"_s},
       {u"delimiter"_s, u"C"_s, u"comma, semicolon, tab, bar or any one character; comma if not given"_s},
       {u"coding"_s, u"NAME"_s, u"latin1 (the Windows code page, unless told otherwise) or utf8"_s}},
      false,
      RunCsv,
  };
  return command;
}

const TVelumCliCommand& CVelumCommands::ExportXml() {
  static const TVelumCliCommand command{
      u"export-xml"_s,
      {u"STACK"_s, u"OUT"_s},
      u"write the content of all cards as XML"_s,
      u"The file holds the cards with the texts of their fields, not the stack itself (see\n"
      "convert for that). Dates and numbers are written as the locale has them; import-xml\n"
      "reads them with the same locale. An OUT that exists is replaced once the new file is\n"
      "complete; - is standard output."_s,
      {},
      false,
      RunXml,
  };
  return command;
}
