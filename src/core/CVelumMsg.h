// The catalogue of messages, and showing them.
#pragma once

#include "core/CVelumError.h"
#include "core/CVelumSeams.h"

enum EMsg : qint32 {
  EMsgEmptyStackOk = 0,
  EMsgDuplicateName = 1,
  EMsgEmptyName = 2,
  EMsgSystemError = 3,
  EMsgBackgroundUsed = 4,
  EMsgDeleteCombo = 5,
  EMsgComboListCreated = 6,
  EMsgBreakCombo = 7,
  EMsgEmptyField = 8,
  EMsgNumTooHigh = 9,
  EMsgNumTooLow = 10,
  EMsgNotNum = 11,
  EMsgBadLinkTarget = 12,
  EMsgSortKeyRef = 13,
  EMsgNotForSortKey = 14,
  EMsgNoSortKey = 15,
  EMsgUnknownPicFormat = 16,
  EMsgUnsupportedPicFormat = 17,
  EMsgCouldNotSave = 18,
  EMsgDeleteCardsOk = 19,
  EMsgDeleteControlOk = 20,
  EMsgDeleteBackgroundOk = 21,
  EMsgControlMissing = 22,
  EMsgControlNotUsable = 23,
  EMsgOrderCorrections = 24,
  EMsgFontSupport = 25,
  EMsgTooManyItems = 26,
  EMsgEmptyFile = 27,
  EMsgSurplusItems = 28,
  EMsgDeleteCardOk = 29,
  EMsgDiscardChangesOk = 30,
  EMsgAssertFailedOk = 31,
  EMsgCannotUndoOk = 98,
  EMsgAssertFailed = 1000,
  EMsgGenTooLow = 1001,
  EMsgGenTooHigh = 1002,
  EMsgNotAOrvelle = 1003,
  EMsgNoFileAccess = 1004,
  EMsgFileNotFound = 1005,
  EMsgBadStruct = 1006,
  EMsgWrongFormat = 1007,
  EMsgWrongKeyword = 1050,
  EMsgBadParamList = 1051,
  EMsgWrongSymbol = 1052,
  EMsgBadExpression = 1053,
  EMsgSourceEnd = 1054,
  EMsgCardNotFound = 1080,
  EMsgWrongValType = 1081,
  EMsgBackgroundNotFound = 1082,
  EMsgControlNotFound = 1083,
  EMsgIncompatibleValTypes = 1084,
  EMsgChangeDoesNotFit = 1098,
  // Not messages: failures that end in the script editor.
  EMsgCompileError = 2000,
  EMsgRunError = 2001,
};

namespace CVelumMsg {

// A parameter with this text is not substituted.
inline const QString EUndefParam = u"<undef>"_s;

// Fills the table. Safe to call again.
void InitMessages();
// The raw entry "EMsgName: text" of a number 0 to 1100; host error 9 beyond.
[[nodiscard]] QString Entry(qint32 aMsg);
// The constant's name of a number, empty for a gap.
[[nodiscard]] QString Name(qint32 aMsg);
// The text with line breaks and parameters put in.
[[nodiscard]] QString Text(qint32 aMsg, const QString& aP0, const QString& aP1 = EUndefParam,
                           const QString& aP2 = EUndefParam);
// Shows a message through the presenter. Returns the answer (false unless a question was answered yes).
bool Show(qint32 aMsg, qint32 aClass, const QString& aP0, const QString& aP1 = EUndefParam,
          const QString& aP2 = EUndefParam);
[[nodiscard]] bool Ask(qint32 aMsg, qint32 aClass, const QString& aP0, const QString& aP1 = EUndefParam);
// Shows the failure that stands in the error record; aPlace, when given, follows it after an empty line.
void ShowLastError(const QString& aPlace = {});
// What it shows, without a place.
[[nodiscard]] QString LastErrorText();
// The text last shown, and its constant's name.
[[nodiscard]] QString LastMsgText();
[[nodiscard]] QString LastMsgName();
// Opens the help page of a form, or of one of its controls (empty: none). For "CVelumMsgForm" it is the
// page of the last message.
void ShowHelp(const QString& aFormName, const QString& aControlName);
// The name of that page, without ending.
[[nodiscard]] QString HelpPage(const QString& aFormName, const QString& aControlName);

} // namespace CVelumMsg
