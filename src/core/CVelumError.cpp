#include "core/CVelumError.h"

#include "core/CVelumLog.h"
#include "core/CVelumMsg.h"

#include <QHash>
#include <QPair>
#include <new>
#include <stdexcept>

TVelumError gLastError;

CVelumException::CVelumException(qint32 aNumber, QString aSource, QString aDescr)
    : iNumber(aNumber), iSource(std::move(aSource)), iDescr(std::move(aDescr)), iWhat(iDescr.toUtf8()) {}

namespace {

using TQuestion = QPair<QString, QString>; // procedure and text of an assertion

int sCommandDepth = 0;
int sStrictDepth = 0;
bool sOverruled = false;
QHash<TQuestion, bool> sAnswers; // of the running command
const CVelumError::CPlace* sPlace = nullptr;

const QString& AppSource() {
  static const QString source = u"CVelumErrors.Throw"_s;
  return source;
}

const QString& AppDescr() {
  static const QString descr = u"Application Error"_s;
  return descr;
}

const QString& HostSource() {
  static const QString source = u"Host"_s;
  return source;
}

// A description must not be what stops an assertion from being told.
QString DescrOf(const CVelumObject* aObj) {
  if (!aObj) return {};
  try {
    return aObj->ObjDescr();
  } catch (...) {
    return {};
  }
}

// Whether the user wants to go on; asked once per command for the same procedure and text.
bool MayGoOn(const QString& aProc, const QString& aText, const QString& aMsg) {
  if (sStrictDepth > 0) return false;
  const TQuestion question(aProc, aText);
  if (sCommandDepth > 0) {
    const auto answer = sAnswers.constFind(question);
    if (answer != sAnswers.constEnd()) return *answer;
  }
  const QString place = CVelumError::CPlace::Text();
  const QString msg = place.isEmpty() ? aMsg : aMsg + (aMsg.endsWith(u'\n') ? u""_s : u"\r\n"_s) + place;
  const bool goOn = CVelumMsg::Ask(EMsgAssertFailedOk, EMsgQuestion, msg, {});
  sOverruled = sOverruled || goOn;
  if (sCommandDepth > 0) sAnswers.insert(question, goOn);
  return goOn;
}

void RecordHost(qint32 aNumber, const QString& aProc, const QString& aSource, const QString& aDescr) {
  gLastError = {aNumber, aProc, {}, {}, aNumber, aSource, aDescr};
}

void RecordStd(qint32 aNumber, const QString& aProc, const std::exception& aFailure) {
  RecordHost(aNumber, aProc, HostSource(),
             CVelumError::HostDescr(aNumber) + u": "_s + QString::fromUtf8(aFailure.what()));
}

} // namespace

CVelumError::CCommand::CCommand(const QString& aName) {
  ++sCommandDepth;
  CVelumSeams::CommandBegun(aName);
}

CVelumError::CCommand::~CCommand() {
  CVelumSeams::CommandEnded();
  if (--sCommandDepth == 0) sAnswers.clear();
}

bool CVelumError::WasOverruled() {
  return sOverruled;
}

CVelumError::CStrict::CStrict() {
  ++sStrictDepth;
}

CVelumError::CStrict::~CStrict() {
  --sStrictDepth;
}

CVelumError::CPlace::CPlace(std::function<QString()> aText)
    : iText(std::move(aText)), iOuter(std::exchange(sPlace, this)) {}

CVelumError::CPlace::~CPlace() {
  sPlace = iOuter;
}

QString CVelumError::CPlace::Text() {
  return sPlace ? sPlace->iText() : QString();
}

void CVelumError::Assert(bool aCond, const QString& aText) {
  AssertObj(aCond, nullptr, u"Assert"_s, aText);
}

void CVelumError::AssertObj(bool aCond, const CVelumObject* aObj, const QString& aProc,
                            const QString& aText) {
  if (aCond) return;
  const QString descr = DescrOf(aObj);
  QString msg = aText;
  if (!descr.isEmpty()) msg += descr + u"\r\n"_s;
  if (!MayGoOn(aProc, aText, msg)) Throw(EMsgAssertFailed, aProc, descr, msg);
}

void CVelumError::ThrowBadStruct(bool aCond, const CVelumObject* aObj, const QString& aProc,
                                 const QString& aDetail) {
  if (!aCond) Throw(EMsgBadStruct, aProc, aObj ? aObj->ObjDescr() : QString(), aProc + u": "_s + aDetail);
}

void CVelumError::SetErrorRecord(qint32 aMsgId, const QString& aProc, const QString& aP0,
                                 const QString& aP1) {
  gLastError = {aMsgId, aProc, aP0, aP1, ENoInt, {}, {}};
}

void CVelumError::Throw(qint32 aMsgId, const QString& aProc, const QString& aP0, const QString& aP1) {
  SetErrorRecord(aMsgId, aProc, aP0, aP1);
  throw CVelumException(aMsgId, AppSource(), AppDescr());
}

void CVelumError::RaiseHost(qint32 aNumber, const QString& aDetail) {
  QString descr = HostDescr(aNumber);
  if (!aDetail.isEmpty()) descr += u": "_s + aDetail;
  throw CVelumException(aNumber, HostSource(), descr);
}

void CVelumError::Rethrow() {
  // The record keeps source and description of a host error, so that the next handler finds them again.
  if (gLastError.iMsgId < 1000 && !gLastError.iSysDescr.isEmpty())
    throw CVelumException(gLastError.iMsgId, gLastError.iSysSource, gLastError.iSysDescr);
  throw CVelumException(gLastError.iMsgId, AppSource(), AppDescr());
}

void CVelumError::CatchError(const QString& aProc) {
  if (!std::current_exception()) return;
  try {
    throw;
  } catch (const CVelumException& e) {
    if (e.Number() < 1000) RecordHost(e.Number(), aProc, e.Source(), e.Descr());
  } catch (const std::bad_alloc& e) {
    RecordStd(EHostOutOfMemory, aProc, e);
  } catch (const std::length_error& e) {
    RecordStd(EHostOutOfMemory, aProc, e);
  } catch (const std::out_of_range& e) {
    RecordStd(EHostIndex, aProc, e);
  } catch (const std::exception& e) {
    RecordStd(EHostBadCall, aProc, e);
  }
  qCDebug(gLogCore) << aProc << "caught" << gLastError.iMsgId << gLastError.iP0 << gLastError.iSysDescr;
}

TVelumError CVelumError::GetErrorRecord() {
  return gLastError;
}

qint32 CVelumError::GetErrorCode() {
  return gLastError.iMsgId;
}

QString CVelumError::HostDescr(qint32 aNumber) {
  switch (aNumber) {
  case EHostBadCall:
    return u"Bad call"_s;
  case EHostOverflow:
    return u"Overflow"_s;
  case EHostOutOfMemory:
    return u"Out of memory"_s;
  case EHostIndex:
    return u"Index out of range"_s;
  case EHostDivisionByZero:
    return u"Division by zero"_s;
  case EHostTypeMismatch:
    return u"Type mismatch"_s;
  case EHostInterrupt:
    return u"Interrupted"_s;
  case EHostFileNotFound:
    return u"File not found"_s;
  case EHostDeviceIo:
    return u"Input or output failed"_s;
  case EHostDiskFull:
    return u"Disk full"_s;
  case EHostPermissionDenied:
    return u"Permission denied"_s;
  case EHostObjectNotSet:
    return u"Object not set"_s;
  default:
    return u"Error "_s + QString::number(aNumber);
  }
}
