#include "script/CVelumCompiler.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "script/CVelumByteCode.h"
#include "script/CVelumKeywords.h"

using namespace CVelumError;

Ref<CVelumCompiler> gCompiler;

namespace {

const char16_t* const EKeywords[] = {
    u"Put",    u"Into",   u"Field",      u"Of",     u"Card", u"On",     u"End",  u"Go",
    u"To",     u"Next",   u"If",         u"Then",   u"Is",   u"Answer", u"Not",  u"And",
    u"Or",     u"Repeat", u"While",      u"For",    u"Each", u"Random", u"Exit", u"Else",
    u"Number", u"Cards",  u"Background", u"Return", u"Tab",  u"The",    u"Date", u"Send",
};

static_assert(std::size(EKeywords) == ENumKeywords);

} // namespace

CVelumCompiler::CVelumCompiler() : iVarNames(MakeRef<CVelumArray>(EArrStrKey, EValInt)) {
  iScanner.SetStripComments(true);
  qint16 id = 0;
  for (const char16_t* keyword : EKeywords) iScanner.DefKeyword(QString::fromUtf16(keyword), id++);
}

// ---- Emission

void CVelumCompiler::CodeByte(int aByte) {
  iCode.append(static_cast<char>(aByte));
}

void CVelumCompiler::CodeInt(qint16 aInt) {
  CodeByte(aInt & 0xFF);
  CodeByte((aInt >> 8) & 0xFF);
}

// A string literal: its tag, its length in one byte, its characters.
void CVelumCompiler::CodeStr() {
  const QByteArray bytes = CVelumLib::ToCodePage(iSymStr);
  if (iSymStr.size() > EMaxStrLen || bytes.size() > EMaxStrLen) RaiseHost(EHostBadCall);
  NoteCoding(bytes);
  CodeByte(EValStr);
  CodeByte(static_cast<int>(bytes.size()));
  iCode += bytes;
}

qint16 CVelumCompiler::CodePos() const {
  return CVelumChecked::Narrow<qint16>(iCode.size());
}

void CVelumCompiler::CodeJump(int aOp, qint16& aPatch) {
  CodeByte(aOp);
  aPatch = CodePos();
  CodeInt(0);
}

void CVelumCompiler::CodePatch(qint16 aValue, qint16 aPos) {
  CVelumChecked::CheckIndex<qsizetype>(aPos + 1, iCode.size());
  iCode[aPos] = static_cast<char>(aValue & 0xFF);
  iCode[aPos + 1] = static_cast<char>((aValue >> 8) & 0xFF);
}

void CVelumCompiler::CodeSlot(const QString& aName) {
  const qint16 slot = VarSlot(aName);
  NoteSlot(aName, slot);
  CodeByte(EOpPushInt);
  CodeInt(slot);
}

void CVelumCompiler::PushExit(qint16 aPos) {
  if (iNumExits >= EMaxExits) RaiseHost(EHostIndex);
  iExits[static_cast<size_t>(iNumExits++)] = aPos;
}

void CVelumCompiler::ResolveExits(int aMark, qint16 aTarget) {
  while (iNumExits > aMark) CodePatch(aTarget, iExits[static_cast<size_t>(--iNumExits)]);
}

// ---- Symbols and lines

void CVelumCompiler::NextSym() {
  iSymStart = qMax(0, iScanner.LinePos() - 1);
  while (iSymStart < iTrimmed.size() && iTrimmed.at(iSymStart) == u' ') ++iSymStart;
  iSymDone = false;
  iScanner.GetSym(iSym, iSymStr, iSymKw);
}

bool CVelumCompiler::IsKw(qint16 aKw) const {
  return iSym == ESymKeyword && iSymKw == aKw;
}

void CVelumCompiler::CheckSymIsKw(qint16 aKw) {
  if (!IsKw(aKw)) Error(u"CheckSymIsKw"_s, EMsgWrongKeyword, iScanner.KeywStr(aKw), iSymStr);
}

void CVelumCompiler::CheckSymIsSym(qint32 aSym) {
  if (iSym != aSym) Error(u"CheckSymIsSym"_s, EMsgWrongSymbol, CVelumScanner::SymStr(aSym), iSymStr);
}

void CVelumCompiler::AddLineLen() {
  if (iCurLine > 0) iCharPos += static_cast<qint32>(iLines.at(iCurLine - 1).size()) + 2;
}

// Walks on to the next line with a symbol on it. Lines with nothing but a comment get a line mark too.
bool CVelumCompiler::NextLine() {
  while (iCurLine < iLines.size()) {
    // Tabs stay: they are symbols of no rule.
    const QString line = CVelumLib::TrimBlanks(iLines.at(iCurLine++)).toString();
    if (!line.isEmpty()) {
      CodeByte(EOpLine);
      CodeInt(static_cast<qint16>(iCurLine - 1));
      iTrimmed = line;
      iScanner.SetLine(line);
      NextSym();
      if (iSym != ESymEol) return true;
    }
    AddLineLen();
  }
  return false;
}

void CVelumCompiler::GetNextLine() {
  NoteRest();
  AddLineLen();
  if (!NextLine()) Error(u"GetNextLine"_s, EMsgSourceEnd, QString(), QString());
}

// Names live as long as the compile, but slots start anew with each handler: a name of an earlier handler
// keeps the slot that it had there.
qint16 CVelumCompiler::VarSlot(const QString& aName) {
  const auto known = iSlots.constFind(aName);
  if (known != iSlots.constEnd()) return *known;
  return *iSlots.insert(aName, FindSlot(aName));
}

qint16 CVelumCompiler::FindSlot(const QString& aName) {
  TVelumElem elem;
  qint32 next = 0;
  if (iVarNames->ReadByStrKey(aName, elem, next)) return static_cast<qint16>(elem.iVal.Int());
  iVarNames->InitElem(elem);
  elem.iStrKey = aName;
  elem.iVal = TVelumValue::OfInt(iNumVars);
  iVarNames->CreateStrKey(elem);
  const qint16 slot = iNumVars;
  CVelumLib::Inc(iNumVars);
  return slot;
}

void CVelumCompiler::Error(const QString& aProc, qint32 aMsg, const QString& aParam0,
                           const QString& aParam1) {
  iError.iMsg = aMsg;
  iError.iParam0 = aParam0;
  iError.iParam1 = aParam1;
  iError.iPos = iScanner.LinePos();
  Throw(EMsgCompileError, u"CVelumCompiler."_s + aProc, QString(), QString());
}

// The line in work, for the record of a failure.
void CVelumCompiler::NoteLine() {
  iError.iLineIndex = qMax(iCurLine - 1, 0);
  iError.iLine = iLines.value(iError.iLineIndex);
  iError.iStart = iCharPos;
  iError.iEnd = iCharPos + static_cast<qint32>(iError.iLine.size());
}

QString CVelumCompiler::Place() const {
  return u"Line %1: "_s.arg(qMax(iCurLine, 1)) + CVelumLib::TrimBlanks(iLines.value(iCurLine - 1)).toString();
}

// ---- The grammar

void CVelumCompiler::Compile(const QString& aSource, CVelumArray& aHandlers) {
  const CVelumError::CPlace place([this] { return Place(); });
  iError = {};
  iNotes.clear();
  iLines.clear();
  iCurLine = 0;
  iCharPos = 0;
  iVarNames->Clear();
  iSlots.clear();
  iDepth = 0;
  try {
    CVelumLib::SplitLines(aSource, iLines);
    NoteSize(u"The source has %1 characters"_s, aSource.size(), 0);
    CompLines(aHandlers);
  } catch (...) {
    NoteLine();
    throw;
  }
}

void CVelumCompiler::CompLines(CVelumArray& aHandlers) {
  if (iLines.size() > EMaxLines) {
    iCurLine = EMaxLines + 1;
    RaiseHost(EHostIndex);
  }
  while (iCurLine < iLines.size()) CompHandler(aHandlers);
}

void CVelumCompiler::CompHandler(CVelumArray& aHandlers) {
  iCharPos = 0;
  for (qint32 i = 0; i < iCurLine; ++i) iCharPos += static_cast<qint32>(iLines.at(i).size()) + 2;
  iCode.clear();
  CodeInt(0); // generation
  if (!NextLine()) return;
  AssertObj(IsKw(EKwOn), this, u"Compile"_s, u"Compile On"_s);
  NextSym();
  AssertObj(iSym == ESymIdent, this, u"Compile"_s, u"Compile Ident"_s);
  const QString name = iSymStr;
  const qint32 line = iCurLine - 1;
  NextSym();
  const QString param = iSym == ESymIdent ? iSymStr : QString();
  iSymDone = iSym == ESymIdent;
  qint16 patch = 0;
  CodeJump(EOpEnter, patch);
  iNumVars = 0;
  iNamesOfSlots.clear();
  if (!param.isEmpty()) {
    CodeByte(EOpPushParam);
    CodeSlot(param);
    CodeByte(EOpStoreVar);
  }
  GetNextLine();
  CompStatementsUntil(EKwEnd, EKwEnd);
  iSymDone = true;
  NoteRest();
  CodeByte(EOpLeave);
  CodeInt(iNumVars);
  CodePatch(iNumVars, patch);
  static_cast<void>(CodePos()); // positions count in 16 bits
  TVelumElem elem;
  aHandlers.InitElem(elem);
  elem.iStrKey = name;
  elem.iVal = TVelumValue::OfStr(CVelumLib::BytesToHex(iCode, false));
  NoteSize(u"The code of '"_s + name + u"' takes %1 characters"_s, elem.iVal.Str().size(), line);
  aHandlers.CreateStrKey(elem);
}
