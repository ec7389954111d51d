// Translates the source text of a script into handlers of byte code.
#pragma once

#include "core/array/CVelumArray.h"
#include "core/text/CVelumScanner.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QStringList>
#include <array>

// Where and why the last compile failed. Of a host error or a failed assertion only the line is told.
struct TCompError {
  qint32 iMsg = 0; // EMsg..., 0 for other failures
  QString iParam0;
  QString iParam1;
  QString iLine;         // the source line in work, untrimmed
  qint32 iLineIndex = 0; // its index, from 0
  qint32 iStart = 0;     // its offset in the source, counting two characters per line end
  qint32 iEnd = 0;       // iStart plus the length of iLine
  qint32 iPos = 0;       // position of the scanner in the trimmed line
};

// Something in a source that compiles, but hardly does what was meant.
struct TCompNote {
  qint32 iLineIndex = 0; // from 0
  qint32 iPos = 0;       // column in the trimmed line, from 1; 0 for the whole line
  QString iText;
};

// One-pass recursive descent, line by line: a statement begins on a line of its own, and what stands behind
// its end on that line is never read. The language and the byte code are told in docs/byte-code.md.
class CVelumCompiler final : public CVelumObject {
public:
  // Lines of a source, characters of a string literal; more are host errors 9 and 5.
  static constexpr qint32 EMaxLines = 101;
  static constexpr int EMaxStrLen = 255;
  // Open Exit Repeat jumps; one more is host error 9.
  static constexpr int EMaxExits = 51;

  CVelumCompiler();

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumCompiler"_s; }
  // Fills aHandlers (type 11, flags EArrStrKey) with a name and the code in hexadecimal per handler. The
  // source's lines end at CR LF. A fault in the source throws EMsgCompileError with the place in GetError;
  // the handlers finished so far stay in aHandlers. Host errors and assertions leave the line there.
  void Compile(const QString& aSource, CVelumArray& aHandlers);
  // The code of the handler in work, or of the last one.
  [[nodiscard]] const QByteArray& Code() const { return iCode; }
  [[nodiscard]] const TCompError& GetError() const { return iError; }
  // What came up in the last compile, in the order of the source.
  [[nodiscard]] const QList<TCompNote>& Notes() const { return iNotes; }

private:
  // Nesting of expressions: deeper ones would exhaust the program's own stack (host error 7).
  static constexpr int EMaxDepth = 1000;
  class CDepth;

  // Emission.
  void CodeByte(int aByte);
  void CodeInt(qint16 aInt);
  void CodeStr();
  [[nodiscard]] qint16 CodePos() const;
  void CodeJump(int aOp, qint16& aPatch);
  void CodePatch(qint16 aValue, qint16 aPos);
  void CodeSlot(const QString& aName);
  void PushExit(qint16 aPos);
  void ResolveExits(int aMark, qint16 aTarget);

  // Symbols and lines.
  void NextSym();
  [[nodiscard]] bool IsKw(qint16 aKw) const;
  void CheckSymIsKw(qint16 aKw);
  void CheckSymIsSym(qint32 aSym);
  [[nodiscard]] bool NextLine();
  void GetNextLine();
  void AddLineLen();
  [[nodiscard]] qint16 VarSlot(const QString& aName);
  [[nodiscard]] qint16 FindSlot(const QString& aName);
  void CompLines(CVelumArray& aHandlers);
  void NoteLine();
  [[nodiscard]] QString Place() const;
  void AddNote(const QString& aText, qint32 aPos);
  void NoteRest();
  void NoteSlot(const QString& aName, qint16 aSlot);
  void NoteCoding(const QByteArray& aBytes);
  void NoteSize(const QString& aWhat, qsizetype aSize, qint32 aLineIndex);
  [[noreturn]] void Error(const QString& aProc, qint32 aMsg, const QString& aParam0, const QString& aParam1);

  // The grammar.
  void CompHandler(CVelumArray& aHandlers);
  void CompStatement();
  void CompStatementsUntil(qint16 aKw1, qint16 aKw2);
  void CompAssignment();
  void CompPut();
  void CompGo();
  void CompIf();
  void CompAnswer();
  void CompRepeat();
  void CompRepeatWhile();
  void CompRepeatFor();
  void CompExit();
  void CompSend();
  void CompEnd(qint16 aKw);
  void CompFieldRef();
  void CompExpr();
  void CompSimple();
  void CompTerm();
  void CompFactor();
  void CompKeywordFactor();
  void CompNumber();
  void CompParens();
  void CompField();
  void CompRandom();
  [[nodiscard]] qint16 CompFunctionCall();
  void CompNumberOfCards();
  void CompTheDate();

  QByteArray iCode;
  CVelumScanner iScanner;
  qint32 iSym = ESymEol;
  QString iSymStr;
  qint16 iSymKw = 0;
  qint32 iSymStart = 0;  // where it begins in the trimmed line
  bool iSymDone = false; // it belongs to the statement, though nothing was read behind it
  QString iTrimmed;
  QList<QString> iLines;
  qint32 iCurLine = 0;
  Ref<CVelumArray> iVarNames;
  QHash<QString, qint16> iSlots;            // the same, for the spellings met so far
  QHash<qint16, QStringList> iNamesOfSlots; // of the handler in work
  qint16 iNumVars = 0;
  std::array<qint16, EMaxExits> iExits{};
  int iNumExits = 0;
  TCompError iError;
  QList<TCompNote> iNotes;
  qint32 iCharPos = 0;
  int iDepth = 0;
};

// The one compiler of the program.
extern Ref<CVelumCompiler> gCompiler;
