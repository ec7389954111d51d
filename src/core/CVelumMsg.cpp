#include "core/CVelumMsg.h"

#include "core/CVelumDialogLib.h"

#include <QStringView>
#include <array>

namespace {

constexpr qint32 ETableEnd = 1100; // last index of the table
// The source of message 18 as it is raised when a save is refused; the host has an error of that number too.
constexpr QStringView ERefusedSave = u"CVelumSaveCheck";

struct TEntry {
  qint32 iMsg;
  QStringView iName;
  QStringView iText;
};

// A "\n" of two characters stands for a line break, %0 to %2 for the parameters.
constexpr TEntry EEntries[] = {
    {EMsgEmptyStackOk, u"EMsgEmptyStackOk", u"Delete all cards?"},
    {EMsgDuplicateName, u"EMsgDuplicateName", u"There is already a %0 with this name."},
    {EMsgEmptyName, u"EMsgEmptyName", u"An empty name is not allowed for a %0."},
    {EMsgSystemError, u"EMsgSystemError", u"The Host Runtime System reported the error: %0"},
    {EMsgBackgroundUsed, u"EMsgBackgroundUsed",
     u"You cannot delete the background because it is used by field '%0' of background '%1'."},
    {EMsgDeleteCombo, u"EMsgDeleteCombo",
     u"This field is part of a combo box, and the partner field '%0' will be deleted as well. "
     u"Proceed?"},
    {EMsgComboListCreated, u"EMsgComboListCreated",
     u"A list field '%0' was created as partner field in this combo box."},
    {EMsgBreakCombo, u"EMsgBreakCombo",
     u"Disabling this flag will break up the combo box into 2 independent fields. Proceed?"},
    {EMsgEmptyField, u"EMsgEmptyField", u"You must specify some value on field '%0', empty is not allowed."},
    {EMsgNumTooHigh, u"EMsgNumTooHigh",
     u"The given value of %0 on field '%1' is too high, the maximum allowed is %2."},
    {EMsgNumTooLow, u"EMsgNumTooLow",
     u"The given value of %0 on field '%1' is too low, the minimum allowed is %2."},
    {EMsgNotNum, u"EMsgNotNum", u"The given string '%0' on field '%1' ist not a valid number."},
    {EMsgBadLinkTarget, u"EMsgBadLinkTarget",
     u"This link gives '%0' as link target, but there is no card with this name."},
    {EMsgSortKeyRef, u"EMsgSortKeyRef",
     u"The sort key is used to keep the cards of a background sorted, and thus cannot be "
     u"deleted."},
    {EMsgNotForSortKey, u"EMsgNotForSortKey",
     u"The type of this field/control is not suitable for using in a sort key."},
    {EMsgNoSortKey, u"EMsgNoSortKey", u"There is no sort key available for this background."},
    {EMsgUnknownPicFormat, u"EMsgUnknownPicFormat",
     u"The content of the file was not recognized as a valid picture."},
    {EMsgUnsupportedPicFormat, u"EMsgUnsupportedPicFormat",
     u"The Symbian Orvelle client probably does not support this picture format. Proceed "
     u"anyway?"},
    {EMsgCouldNotSave, u"EMsgCouldNotSave", u"The stack was not saved due to an error.\\n%0"},
    {EMsgDeleteCardsOk, u"EMsgDeleteCardsOk", u"Delete all cards of the selected background?"},
    {EMsgDeleteControlOk, u"EMsgDeleteControlOk",
     u"Delete the field/control from %0 cards, with %1 set values?"},
    {EMsgDeleteBackgroundOk, u"EMsgDeleteBackgroundOk", u"Delete the background together with its %0 cards?"},
    {EMsgControlMissing, u"EMsgControlMissing",
     u"A field with the name '%0' could not be found in background '%1', but is needed for "
     u"this operation."},
    {EMsgControlNotUsable, u"EMsgControlNotUsable", u"The field '%0' is not usable for this operation: %1"},
    {EMsgOrderCorrections, u"EMsgOrderCorrections",
     u"Caution: There were %0 card order corrections, caused by differences in locales and/or "
     u"differences between Windows and Symbian."},
    {EMsgFontSupport, u"EMsgFontSupport",
     u"Your phone will probably only display a font with the face name '%0' after you "
     u"installed such a font yourself on your phone. (The SE UIQ3 phones only support a single "
     u"font 'Sans-Serif Latin' out of the box.)"},
    {EMsgTooManyItems, u"EMsgTooManyItems",
     u"There were too many items per line (more than 20) to import them all. Some data will be "
     u"missing."},
    {EMsgEmptyFile, u"EMsgEmptyFile", u"The file is empty."},
    {EMsgSurplusItems, u"EMsgSurplusItems",
     u"On %0 lines there were more items than on the first line. Those items were ignored, and "
     u"some data will be missing."},
    {EMsgDeleteCardOk, u"EMsgDeleteCardOk", u"Delete card '%0'?"},
    {EMsgDiscardChangesOk, u"EMsgDiscardChangesOk", u"Discard changes in %0?"},
    {EMsgAssertFailedOk, u"EMsgAssertFailedOk",
     u"Assert failed (probably due to a bug):\\n< %0 >\\nIgnore and try to proceed "
     u"nevertheless?"},
    {EMsgCannotUndoOk, u"EMsgCannotUndoOk", u"This cannot be undone. Proceed?"},
    {EMsgAssertFailed, u"EMsgAssertFailed",
     u"An internal program error occured, probably because of a 'bug'."},
    {EMsgGenTooLow, u"EMsgGenTooLow", u"The format of the stack is too old and not supported any more.\\n%0"},
    {EMsgGenTooHigh, u"EMsgGenTooHigh",
     u"The stack was written with a later version of the program and cannot be opened.\\n%0"},
    {EMsgNotAOrvelle, u"EMsgNotAOrvelle", u"The file is most probably not a Orvelle.\\n%0"},
    {EMsgNoFileAccess, u"EMsgNoFileAccess", u"The program was not allowed to access the file.\\n%0"},
    {EMsgFileNotFound, u"EMsgFileNotFound", u"A file of the given name could not be found.\\n%0"},
    {EMsgBadStruct, u"EMsgBadStruct",
     u"The stack file contains a structural error and cannot be opened.\\n%0\\n%1"},
    {EMsgWrongFormat, u"EMsgWrongFormat",
     u"The file is not of the expected format and cannot be imported.\\n%0"},
    {EMsgWrongKeyword, u"EMsgWrongKeyword", u"The keyword '%0' is expected, but the source gives '%1'."},
    {EMsgBadParamList, u"EMsgBadParamList",
     u"Error in function call parameter list, ',' or ')' is expected."},
    {EMsgWrongSymbol, u"EMsgWrongSymbol", u"The symbol '%0' is expected, but the source gives '%1'."},
    {EMsgBadExpression, u"EMsgBadExpression",
     u"There is an error in the expression due to the unexpected '%0'."},
    {EMsgSourceEnd, u"EMsgSourceEnd", u"The end of the source lines was reached early."},
    {EMsgCardNotFound, u"EMsgCardNotFound", u"The card '%0' cannot be found."},
    {EMsgWrongValType, u"EMsgWrongValType",
     u"A variable or expression has the type '%0' which is not allowed for this operation."},
    {EMsgBackgroundNotFound, u"EMsgBackgroundNotFound", u"The background '%0' cannot be found."},
    {EMsgControlNotFound, u"EMsgControlNotFound", u"The field or control '%0' cannot be found."},
    {EMsgIncompatibleValTypes, u"EMsgIncompatibleValTypes",
     u"The operation is not possible, because the given types '%0' and '%1' are not compatible."},
    {EMsgChangeDoesNotFit, u"EMsgChangeDoesNotFit",
     u"The step '%0' cannot be taken back or made again, because the stack is not as the step left it. The "
     u"stack stays "
     u"as it is; earlier steps are forgotten."},
};

using TTable = std::array<const TEntry*, ETableEnd + 1>;

const TTable& Table() {
  static const TTable table = [] {
    TTable filled{};
    for (const TEntry& entry : EEntries) filled[static_cast<size_t>(entry.iMsg)] = &entry;
    return filled;
  }();
  return table;
}

QString gLastMsgText;
QString gLastMsgName;

// Nothing for a gap.
const TEntry* Find(qint32 aMsg) {
  if (aMsg < 0 || aMsg > ETableEnd) CVelumError::RaiseHost(EHostIndex);
  return Table()[static_cast<size_t>(aMsg)];
}

// A message that counts says so differently of one.
QString TextFor(const TEntry& aEntry, const QString& aP0) {
  QString text = aEntry.iText.toString();
  if (aP0 != u"1") return text;
  if (aEntry.iMsg == EMsgSurplusItems) text.replace(u"%0 lines there were"_s, u"%0 line there were"_s);
  if (aEntry.iMsg == EMsgOrderCorrections)
    text.replace(u"There were %0 card order corrections"_s, u"There was %0 card order correction"_s);
  return text;
}

void Substitute(QString& aText, const QString& aMark, const QString& aParam) {
  if (aParam != CVelumMsg::EUndefParam) aText.replace(aMark, aParam);
}

EMsgClass CheckedClass(qint32 aClass) {
  const bool known = aClass >= EMsgCritical && aClass <= EMsgInfo;
  CVelumError::Assert(known, u"Show class "_s + QString::number(aClass));
  return known ? static_cast<EMsgClass>(aClass) : EMsgCritical;
}

bool ShowText(qint32 aMsg, EMsgClass aClass, const QString& aText) {
  const QString name = CVelumMsg::Name(aMsg);
  gLastMsgName = name;
  gLastMsgText = aText;
  return CVelumSeams::Presenter().Message(aMsg, aClass, name, aText) && aClass == EMsgQuestion;
}

// The message that stands for the failure in the error record.
qint32 LastErrorMsg() {
  if (gLastError.iMsgId >= 1000) return gLastError.iMsgId;
  const bool refused = gLastError.iMsgId == EMsgCouldNotSave && gLastError.iSysSource == ERefusedSave;
  return refused ? EMsgCouldNotSave : EMsgSystemError;
}

} // namespace

void CVelumMsg::InitMessages() {
  Table();
}

QString CVelumMsg::Entry(qint32 aMsg) {
  const TEntry* entry = Find(aMsg);
  return entry ? entry->iName.toString() + u": "_s + entry->iText.toString() : QString();
}

QString CVelumMsg::Name(qint32 aMsg) {
  const TEntry* entry = Find(aMsg);
  return entry ? entry->iName.toString() : QString();
}

QString CVelumMsg::Text(qint32 aMsg, const QString& aP0, const QString& aP1, const QString& aP2) {
  const TEntry* entry = Find(aMsg);
  QString text = entry ? TextFor(*entry, aP0) : QString();
  text.replace(u"\\n"_s, u"\r\n"_s);
  Substitute(text, u"%0"_s, aP0);
  Substitute(text, u"%1"_s, aP1);
  Substitute(text, u"%2"_s, aP2);
  return text;
}

bool CVelumMsg::Show(qint32 aMsg, qint32 aClass, const QString& aP0, const QString& aP1, const QString& aP2) {
  return ShowText(aMsg, CheckedClass(aClass), Text(aMsg, aP0, aP1, aP2));
}

bool CVelumMsg::Ask(qint32 aMsg, qint32 aClass, const QString& aP0, const QString& aP1) {
  return Show(aMsg, aClass, aP0, aP1, EUndefParam);
}

void CVelumMsg::ShowLastError(const QString& aPlace) {
  CVelumDialogLib::EndWait();
  const QString text = LastErrorText();
  ShowText(LastErrorMsg(), EMsgCritical, aPlace.isEmpty() ? text : text + u"\r\n\r\n"_s + aPlace);
}

QString CVelumMsg::LastErrorText() {
  const TVelumError& error = gLastError;
  if (error.iMsgId >= 1000) return Text(error.iMsgId, error.iP0, error.iP1);
  return Text(LastErrorMsg(), error.iSysDescr, {});
}

QString CVelumMsg::LastMsgText() {
  return gLastMsgText;
}

QString CVelumMsg::LastMsgName() {
  return gLastMsgName;
}

QString CVelumMsg::HelpPage(const QString& aFormName, const QString& aControlName) {
  static const QString prefix = u"CVelum"_s;
  const QString base = aFormName.startsWith(prefix) ? aFormName.sliced(prefix.size()) : aFormName;
  if (aFormName == u"CVelumMsgForm"_s) return base + gLastMsgName;
  return base + (aControlName.startsWith(u'f') ? aControlName.sliced(1) : aControlName);
}

void CVelumMsg::ShowHelp(const QString& aFormName, const QString& aControlName) {
  CVelumSeams::Presenter().HelpPage(HelpPage(aFormName, aControlName));
}
