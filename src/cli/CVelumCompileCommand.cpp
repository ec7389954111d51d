// compile: a script's source to its handlers.
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumFile.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "script/CVelumCompiler.h"

#include <QFileInfo>
#include <QJsonObject>

namespace {

qint32 Coding(const TVelumArgs& aArgs) {
  const QString coding = aArgs.Value(u"coding"_s, u"latin1"_s);
  if (coding == u"latin1"_s) return ECodLatin1;
  if (coding == u"utf8"_s) return ECodUtf8;
  throw TVelumUsage{u"There is no coding '%1': latin1 or utf8."_s.arg(coding)};
}

// The source as an editor would hand it over: its lines end at CR LF, and nothing comes behind a final end.
QString ReadSource(const QString& aPath, qint32 aCoding) {
  if (!QFileInfo(aPath).isFile()) CVelumError::Throw(EMsgFileNotFound, u"Compile"_s, aPath, {});
  CVelumFile file(aPath, EFilSeqRead);
  file.SetCoding(aCoding);
  file.OpenFile();
  QStringList lines;
  QString line;
  while (file.ReadLine(line)) lines.append(line);
  file.CloseFile();
  return lines.join(u"\r\n"_s);
}

// FILE:LINE:COLUMN, both from 1. The compiler counts in the line without its indentation.
QString Place(const QString& aPath, const TCompError& aError) {
  qsizetype indent = 0;
  while (indent < aError.iLine.size() && aError.iLine.at(indent) == u' ') ++indent;
  return u"%1:%2:%3: "_s.arg(aPath).arg(aError.iLineIndex + 1).arg(indent + qMax(1, aError.iPos));
}

void PrintHandlers(const CVelumArray& aHandlers, bool aJson, CVelumTerminal& aTerminal) {
  QJsonObject all;
  TVelumElem elem;
  qint32 next = 0;
  while (aHandlers.ReadNext(elem, next)) {
    if (aJson)
      all.insert(elem.iStrKey, elem.iVal.Str());
    else
      aTerminal.Line(elem.iStrKey + u' ' + elem.iVal.Str());
  }
  if (aJson) aTerminal.Json({{u"handlers"_s, all}});
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const QString path = aArgs.iOperands.at(0);
  const QString source = ReadSource(path, Coding(aArgs));
  CVelumCompiler compiler;
  CVelumArray handlers(EArrStrKey, EValStr);
  try {
    compiler.Compile(source, handlers);
  } catch (const CVelumException& e) {
    if (e.Number() != EMsgCompileError) throw;
    const TCompError& error = compiler.GetError();
    const QString text = CVelumMsg::Text(error.iMsg, error.iParam0, error.iParam1);
    aTerminal.Complain(Place(path, error) + CVelumMsg::Name(error.iMsg) + u": "_s + text);
    return EExitFailed;
  }
  PrintHandlers(handlers, aArgs.iJson, aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCommand& CVelumCommands::Compile() {
  static const TVelumCommand command{
      u"compile"_s,
      {u"FILE"_s},
      u"compile a script and print a line per handler"_s,
      u"A line has the name, a blank and the code in hexadecimal. An error is told as\n"
      "FILE:LINE:COLUMN: EMsgName: text."_s,
      {{u"coding"_s, u"NAME"_s, u"latin1 (the default: the Windows code page) or utf8"_s}},
      true,
      Run,
  };
  return command;
}
