// wiki: wiki text to RTF.
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "runtime/wiki/CVelumWikiTextBox.h"

#include <QFile>
#include <QFileInfo>

namespace {

// More bytes than any text that can be shown; what goes on behind them is too long anyway.
constexpr qint64 EMaxBytes = 4 * 32768;

QByteArray ReadBytes(const QString& aPath) {
  if (!QFileInfo(aPath).isFile()) CVelumError::Throw(EMsgFileNotFound, u"Wiki"_s, aPath, {});
  QFile file(aPath);
  if (!file.open(QIODevice::ReadOnly)) CVelumError::RaiseHost(EHostPermissionDenied, aPath);
  return file.read(EMaxBytes);
}

// A field keeps CR LF. A file whose first line ends at LF alone is brought to that, and the end of its last
// line is no part of the text.
QString ReadText(const QString& aPath) {
  QString text = QString::fromUtf8(ReadBytes(aPath));
  const qsizetype lf = text.indexOf(u'\n');
  if (lf < 0 || text.first(lf).contains(u'\r')) return text;
  if (text.endsWith(u'\n')) text.chop(1);
  return CVelumLib::ToCrLf(text);
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  CVelumWikiTextBox box;
  box.SetStr(ReadText(aArgs.iOperands.at(0)));
  aTerminal.File(box.TextStr());
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Wiki() {
  static const TVelumCliCommand command{
      u"wiki"_s,
      {u"FILE"_s},
      u"print wiki text as Rich Text Format"_s,
      u"FILE is text in UTF-8 of at most 32,766 characters. ** turns bold on and off, //\n"
      "italic, __ underline; [[target]] and [[target|text]] are links; two backslashes\n"
      "break a line, and an empty line ends a paragraph."_s,
      {},
      false,
      Run,
  };
  return command;
}
