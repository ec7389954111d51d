// compile: a script's source to its handlers.
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/file/CVelumFile.h"
#include "script/CVelumCompiler.h"

#include <QFileInfo>
#include <QJsonObject>
#include <algorithm>

namespace {

qint32 Coding(const TVelumArgs& aArgs) {
  const QString coding = aArgs.Value(u"coding"_s, u"latin1"_s);
  if (coding == u"latin1"_s) return ECodLatin1;
  if (coding == u"utf8"_s) return ECodUtf8;
  throw TVelumUsage{u"There is no coding '%1': latin1 or utf8."_s.arg(coding)};
}

// Whether the last line has an end.
bool EndsLine(const QString& aPath) {
  QFile file(aPath);
  char last = '\0';
  return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) &&
         file.getChar(&last) && (last == '\n' || last == '\r');
}

// The source as an editor would hand it over: its lines end at CR LF.
QString ReadSource(const QString& aPath, qint32 aCoding) {
  if (!QFileInfo(aPath).isFile()) CVelumError::Throw(EMsgFileNotFound, u"Compile"_s, aPath, {});
  CVelumFile file(aPath, EFilSeqRead);
  file.SetCoding(aCoding);
  file.OpenFile();
  QStringList lines;
  QString line;
  while (file.ReadLine(line)) lines.append(line);
  file.CloseFile();
  return lines.join(u"\r\n"_s) + (EndsLine(aPath) ? u"\r\n"_s : QString());
}

qsizetype Indent(const QString& aLine) {
  const auto first = std::find_if(aLine.begin(), aLine.end(), [](QChar aChar) { return aChar != u' '; });
  return first - aLine.begin();
}

// FILE:LINE:COLUMN, both from 1; the compiler counts in the line without its indentation. Without a column
// where it stopped at no sign of that line.
QString Place(const QString& aPath, const TCompError& aError) {
  const QString line = u"%1:%2"_s.arg(aPath).arg(aError.iLineIndex + 1);
  if (aError.iMsg == 0 || aError.iMsg == EMsgSourceEnd) return line;
  return u"%1:%2"_s.arg(line).arg(Indent(aError.iLine) + qMax(1, aError.iPos));
}

// The failure of any kind that stands in the error record.
QString FailureText(const TCompError& aError) {
  if (CVelumError::GetErrorCode() == EMsgCompileError)
    return CVelumMsg::Name(aError.iMsg) + u": "_s +
           CVelumMsg::Text(aError.iMsg, aError.iParam0, aError.iParam1);
  const qint32 code = CVelumError::GetErrorCode();
  return CVelumMsg::Name(code < EMsgAssertFailed ? EMsgSystemError : code) + u": "_s +
         CVelumMsg::LastErrorText();
}

void PrintNotes(const QString& aPath, const QString& aSource, const CVelumCompiler& aCompiler,
                CVelumTerminal& aTerminal) {
  QStringList lines;
  CVelumLib::SplitLines(aSource, lines);
  for (const TCompNote& note : aCompiler.Notes()) {
    QString place = u"%1:%2"_s.arg(aPath).arg(note.iLineIndex + 1);
    if (note.iPos > 0) place += u":%1"_s.arg(Indent(lines.value(note.iLineIndex)) + note.iPos);
    aTerminal.Complain(place + u": note: "_s + note.iText);
  }
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
  } catch (...) {
    CVelumError::CatchError(u"CVelumCompileCommand.Run"_s);
    PrintNotes(path, source, compiler, aTerminal);
    aTerminal.Complain(Place(path, compiler.GetError()) + u": "_s + FailureText(compiler.GetError()));
    return EExitFailed;
  }
  PrintNotes(path, source, compiler, aTerminal);
  PrintHandlers(handlers, aArgs.iJson, aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Compile() {
  static const TVelumCliCommand command{
      u"compile"_s,
      {u"FILE"_s},
      u"compile a script and print a line per handler"_s,
      u"A line has the name, a blank and the code in hexadecimal. An error is told as\n"
      "FILE:LINE:COLUMN: EMsgName: text (without a column where there is none), and\n"
      "what compiles but is hardly meant as FILE:LINE:COLUMN: note: text."_s,
      {{u"coding"_s, u"NAME"_s, u"latin1 (the default: the Windows code page) or utf8"_s}},
      true,
      Run,
  };
  return command;
}
