// The failure model: assertions that the user may overrule, application errors by message number, host
// errors below 1000, and the one error record.
#pragma once

#include "core/CVelumConst.h"
#include "core/CVelumObject.h"

#include <exception>
#include <functional>

// The one error record. Failures are carried by CVelumException; the record tells what the last one was.
struct TVelumError {
  qint32 iMsgId = 0;       // message number, or the host error's number when below 1000
  QString iProc;           // procedure that threw
  QString iP0;             // first message parameter
  QString iP1;             // second message parameter
  qint32 iSysNum = ENoInt; // host error number; ENoInt for an application error
  QString iSysSource;      // source text of the host error
  QString iSysDescr;       // description of the host error
};

// Host errors.
enum EHost : qint32 {
  EHostBadCall = 5,
  EHostOverflow = 6,
  EHostOutOfMemory = 7,
  EHostIndex = 9,
  EHostDivisionByZero = 11,
  EHostTypeMismatch = 13,
  EHostInterrupt = 18,
  EHostFileNotFound = 53,
  EHostDiskFull = 61,
  EHostPermissionDenied = 70,
  EHostDeviceIo = 57,
  EHostObjectNotSet = 91,
};

// What Throw and RaiseHost raise.
class CVelumException : public std::exception {
public:
  CVelumException(qint32 aNumber, QString aSource, QString aDescr);
  [[nodiscard]] qint32 Number() const { return iNumber; }
  [[nodiscard]] const QString& Source() const { return iSource; }
  [[nodiscard]] const QString& Descr() const { return iDescr; }
  [[nodiscard]] const char* what() const noexcept override { return iWhat.constData(); }

private:
  qint32 iNumber;
  QString iSource;
  QString iDescr;
  QByteArray iWhat;
};

// The record of the last failure.
extern TVelumError gLastError;

namespace CVelumError {

// One command of the user, from its start to its end, or one run of a command-line tool. Commands nest; the
// answers to assertions are forgotten when the outermost one ends, and the changes made in it are one step of
// undo.
class CCommand {
public:
  // aName as a person would call what is done ("Delete card 'Albania'"); of nested commands the first name
  // counts.
  explicit CCommand(const QString& aName = {});
  ~CCommand();
  CCommand(const CCommand&) = delete;
  CCommand& operator=(const CCommand&) = delete;
};

// Whether the user has gone on after an assertion that failed, since the program's start. What is in memory
// may then be what no file can hold.
[[nodiscard]] bool WasOverruled();

// While one exists, an assertion that fails raises at once: nobody is asked, and no answer counts.
class CStrict {
public:
  CStrict();
  ~CStrict();
  CStrict(const CStrict&) = delete;
  CStrict& operator=(const CStrict&) = delete;
};

// What the user wrote and the program is at work on, such as a line of a script. While it lives, the question
// of a failed assertion ends with aText(). The innermost one counts.
class CPlace {
public:
  explicit CPlace(std::function<QString()> aText);
  ~CPlace();
  CPlace(const CPlace&) = delete;
  CPlace& operator=(const CPlace&) = delete;
  // What assertions say; empty for nothing.
  [[nodiscard]] static QString Text();

private:
  std::function<QString()> iText;
  const CPlace* iOuter;
};

// AssertObj without an object, with procedure "Assert".
void Assert(bool aCond, const QString& aText);
// If aCond is false, asks the user whether to go on; on no, throws EMsgAssertFailed. The caller must stay
// safe when the user says yes. Within a CCommand the same question (procedure and text) is asked once; its
// answer holds for the rest of the command.
void AssertObj(bool aCond, const CVelumObject* aObj, const QString& aProc, const QString& aText);
// If aCond is false, throws EMsgBadStruct with aObj's description and "aProc: aDetail".
void ThrowBadStruct(bool aCond, const CVelumObject* aObj, const QString& aProc, const QString& aDetail);
// Fills gLastError for an application error.
void SetErrorRecord(qint32 aMsgId, const QString& aProc, const QString& aP0, const QString& aP1);
// Fills the record and raises aMsgId.
[[noreturn]] void Throw(qint32 aMsgId, const QString& aProc, const QString& aP0, const QString& aP1);
// Raises a host error (number below 1000). aDetail, when given, follows the plain description after ": ".
[[noreturn]] void RaiseHost(qint32 aNumber, const QString& aDetail = {});
// Raises again the number that stands in the record.
[[noreturn]] void Rethrow();
// To be called first in every handler (inside a catch block): fills the record when the failure is a host
// error; standard exceptions count as host errors (bad_alloc is 7). Leaves application errors alone.
void CatchError(const QString& aProc);
[[nodiscard]] TVelumError GetErrorRecord();
[[nodiscard]] qint32 GetErrorCode();
// The plain description of a host error number.
[[nodiscard]] QString HostDescr(qint32 aNumber);

} // namespace CVelumError
