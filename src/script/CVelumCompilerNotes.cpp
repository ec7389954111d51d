// What a source does that its author will hardly have meant.
#include "script/CVelumCompiler.h"

#include "core/CVelumLib.h"

void CVelumCompiler::AddNote(const QString& aText, qint32 aPos) {
  iNotes.append({qMax(iCurLine - 1, 0), aPos + 1, aText});
}

// To be called when a statement is complete: what stands behind it on its line is never read. That may be a
// comment.
void CVelumCompiler::NoteRest() {
  if (!iSymDone && iSym == ESymEol) return;
  const qint32 from = iSymDone ? iScanner.LinePos() - 1 : iSymStart;
  qint32 pos = qMax(from, 0);
  while (pos < iTrimmed.size() && iTrimmed.at(pos) == u' ') ++pos;
  const QString rest = iTrimmed.mid(pos);
  if (!rest.isEmpty() && !rest.startsWith(u'#')) AddNote(u"The rest of the line is not read: "_s + rest, pos);
}

// Two names of one slot are one variable: see VarSlot.
void CVelumCompiler::NoteSlot(const QString& aName, qint16 aSlot) {
  QStringList& names = iNamesOfSlots[aSlot];
  if (names.contains(aName, Qt::CaseInsensitive)) return;
  if (!names.isEmpty())
    AddNote(u"'%1' is the same variable as '%2' here."_s.arg(aName, names.first()), iSymStart);
  names.append(aName);
}

void CVelumCompiler::NoteCoding(const QByteArray& aBytes) {
  if (CVelumLib::FromCodePage(aBytes) != iSymStr)
    AddNote(u"The text holds letters that scripts do not know; they become '?'."_s, iSymStart);
}

// aWhat tells the size as %1.
void CVelumCompiler::NoteSize(const QString& aWhat, qsizetype aSize, qint32 aLineIndex) {
  if (aSize <= EMaxStoredText) return;
  const QString text =
      aWhat.arg(aSize) + u"; a document in the binary form holds at most %1."_s.arg(EMaxStoredText);
  iNotes.append({aLineIndex, 0, text});
}
