// export-csv and export-xml: write cards for other programs.
#include "cli/CVelumCliCsv.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "exchange/CVelumExports.h"

namespace {

int RunCsv(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  if (!aArgs.Has(u"background"_s)) throw TVelumUsage{u"--background is missing."_s};
  TVelumCsvForm form;
  form.iDelimiter = CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s, u"comma"_s));
  form.iCoding = CVelumCliCsv::Coding(aArgs.Value(u"coding"_s, u"latin1"_s));
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  const auto background = CVelumCliStack::BackgroundByName(*open.iStack, aArgs.Value(u"background"_s));
  qint64 lacking = 0;
  const CVelumCliStack::CProgress progress(aTerminal);
  static_cast<void>(
      CVelumExports::ExportCsv(aArgs.iOperands.at(1), *background, form, progress.Step(), &lacking));
  if (lacking > 0)
    aTerminal.Complain(
        u"%1 characters became \"?\", as latin1 lacks them; --coding utf8 keeps them."_s.arg(lacking));
  return EExitDone;
}

int RunXml(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  const CVelumCliStack::CProgress progress(aTerminal);
  static_cast<void>(CVelumExports::ExportXml(*open.iStack, aArgs.iOperands.at(1), progress.Step()));
  return EExitDone;
}

} // namespace

const TVelumCommand& CVelumCommands::ExportCsv() {
  static const TVelumCommand command{
      u"export-csv"_s,
      {u"STACK"_s, u"OUT"_s},
      u"write the cards of a background as CSV"_s,
      u"The first line holds the names of the fields; each card is a line. All cells are in\n"
      "double quotes, and a line end inside a value is written as &eol;. Dates and numbers\n"
      "are written as the locale has them. An OUT that exists is replaced once the new\n"
      "file is complete."_s,
      {{u"background"_s, u"NAME"_s, u"the background (needed)"_s},
       {u"delimiter"_s, u"C"_s, u"comma, semicolon, tab or any one character; comma if not given"_s},
       {u"coding"_s, u"NAME"_s, u"latin1 (the Windows code page, unless told otherwise) or utf8"_s}},
      false,
      RunCsv,
  };
  return command;
}

const TVelumCommand& CVelumCommands::ExportXml() {
  static const TVelumCommand command{
      u"export-xml"_s,
      {u"STACK"_s, u"OUT"_s},
      u"write the content of all cards as XML"_s,
      u"The file holds the cards with the texts of their fields, not the stack itself (see\n"
      "convert for that). Dates and numbers are written as the locale has them; import-xml\n"
      "reads them with the same locale. An OUT that exists is replaced once the new file is\n"
      "complete."_s,
      {},
      false,
      RunXml,
  };
  return command;
}
