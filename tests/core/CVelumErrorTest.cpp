#include "core/CVelumError.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include "core/CVelumMsg.h"
#include "support/Raised.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

class CNamed final : public CVelumObject {
public:
  explicit CNamed(QString aDescr) : iDescr(std::move(aDescr)) {}
  [[nodiscard]] QString ObjDescr() const override { return iDescr; }

private:
  QString iDescr;
};

class CNoDescr final : public CVelumObject {
public:
  [[nodiscard]] QString ObjDescr() const override { throw std::runtime_error("broken"); }
};

TEST(CVelumError, AssertHoldsSilently) {
  ScriptedPresenter presenter;
  CVelumError::Assert(true, u"x"_s);
  EXPECT_EQ(presenter.Count(), 0);
}

TEST(CVelumError, AssertionAnsweredYesGoesOn) {
  ScriptedPresenter presenter;
  presenter.Answer(true);
  CVelumError::Assert(false, u"Some condition"_s);
  ASSERT_EQ(presenter.Count(), 1);
  EXPECT_EQ(presenter.LastMsg(), 31);
  EXPECT_EQ(presenter.Shown()[0].iClass, EMsgQuestion);
  EXPECT_EQ(presenter.LastText(), u"Assert failed (probably due to a bug):\r\n< Some condition >\r\n"
                                  "Ignore and try to proceed nevertheless?"_s);
}

TEST(CVelumError, AssertionAnsweredNoThrows) {
  ScriptedPresenter presenter;
  EXPECT_EQ(Raised([] { CVelumError::Assert(false, u"Some condition"_s); }), 1000);
  EXPECT_EQ(gLastError.iMsgId, EMsgAssertFailed);
  EXPECT_EQ(gLastError.iProc, u"Assert"_s);
  EXPECT_EQ(gLastError.iP0, QString());
  EXPECT_EQ(gLastError.iP1, u"Some condition"_s);
  EXPECT_EQ(gLastError.iSysNum, 1999999999);
}

TEST(CVelumError, AssertionTextAndDescriptionStickTogether) {
  ScriptedPresenter presenter;
  const CNamed named(u"CNamed name=Ada"_s);
  EXPECT_EQ(Raised([&] { CVelumError::AssertObj(false, &named, u"CNamed.Do"_s, u"Index"_s); }), 1000);
  EXPECT_EQ(presenter.LastText(),
            u"Assert failed (probably due to a bug):\r\n< IndexCNamed name=Ada\r\n >\r\n"
            "Ignore and try to proceed nevertheless?"_s);
  EXPECT_EQ(gLastError.iProc, u"CNamed.Do"_s);
  EXPECT_EQ(gLastError.iP0, u"CNamed name=Ada"_s);
  EXPECT_EQ(gLastError.iP1, u"IndexCNamed name=Ada\r\n"_s);
}

TEST(CVelumError, FailingDescriptionIsIgnored) {
  ScriptedPresenter presenter;
  const CNoDescr broken;
  EXPECT_EQ(Raised([&] { CVelumError::AssertObj(false, &broken, u"P"_s, u"Text"_s); }), 1000);
  EXPECT_EQ(gLastError.iP0, QString());
  EXPECT_EQ(gLastError.iP1, u"Text"_s);
}

TEST(CVelumError, WithinACommandAQuestionIsAskedOnce) {
  ScriptedPresenter presenter;
  presenter.Answer(true).Answer(false);
  {
    const CVelumError::CCommand command;
    for (int i = 0; i < 3; ++i) {
      const CVelumError::CCommand nested;
      CVelumError::AssertObj(false, nullptr, u"P"_s, u"one"_s);
    }
    EXPECT_EQ(presenter.Count(), 1);
    for (int i = 0; i < 2; ++i)
      EXPECT_EQ(Raised([] { CVelumError::AssertObj(false, nullptr, u"Q"_s, u"one"_s); }), 1000);
    EXPECT_EQ(presenter.Count(), 2);
  }
  const CVelumError::CCommand next;
  EXPECT_EQ(Raised([] { CVelumError::AssertObj(false, nullptr, u"P"_s, u"one"_s); }), 1000);
  EXPECT_EQ(presenter.Count(), 3);
}

TEST(CVelumError, AssertionsNameThePlaceInWork) {
  ScriptedPresenter presenter;
  const auto ask = [&](const CVelumObject* aObj) {
    EXPECT_EQ(Raised([&] { CVelumError::AssertObj(false, aObj, u"Proc"_s, u"text"_s); }), EMsgAssertFailed);
    return presenter.LastText().section(u'<', 1).section(u'>', 0, 0);
  };
  const CNamed obj(u"thing"_s);
  QString line = u"line 1"_s;
  EXPECT_EQ(ask(nullptr), u" text "_s);
  {
    const CVelumError::CPlace outer([&] { return line; });
    line = u"line 2"_s;
    EXPECT_EQ(ask(nullptr), u" text\r\nline 2 "_s) << "as it is when it fails";
    EXPECT_EQ(ask(&obj), u" textthing\r\nline 2 "_s);
    EXPECT_EQ(gLastError.iP1, u"textthing\r\n"_s) << "the record is about the program";
    {
      const CVelumError::CPlace inner([] { return QString(); });
      EXPECT_EQ(ask(nullptr), u" text "_s);
    }
    EXPECT_EQ(CVelumError::CPlace::Text(), u"line 2"_s);
  }
  EXPECT_EQ(CVelumError::CPlace::Text(), QString());
}

TEST(CVelumError, ThrowFillsTheRecord) {
  gLastError = {5, u"a"_s, u"b"_s, u"c"_s, 6, u"d"_s, u"e"_s};
  try {
    CVelumError::Throw(EMsgGenTooHigh, u"Proc"_s, u"one"_s, u"two"_s);
    ADD_FAILURE();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), 1002);
    EXPECT_EQ(e.Source(), u"CVelumErrors.Throw"_s);
    EXPECT_EQ(e.Descr(), u"Application Error"_s);
    EXPECT_STREQ(e.what(), "Application Error");
  }
  const TVelumError record = CVelumError::GetErrorRecord();
  EXPECT_EQ(record.iMsgId, 1002);
  EXPECT_EQ(record.iProc, u"Proc"_s);
  EXPECT_EQ(record.iP0, u"one"_s);
  EXPECT_EQ(record.iP1, u"two"_s);
  EXPECT_EQ(record.iSysNum, 1999999999);
  EXPECT_EQ(record.iSysSource, QString());
  EXPECT_EQ(record.iSysDescr, QString());
  EXPECT_EQ(CVelumError::GetErrorCode(), 1002);
}

TEST(CVelumError, CatchErrorLeavesApplicationErrorsAlone) {
  try {
    CVelumError::Throw(EMsgFileNotFound, u"Proc"_s, u"path"_s, u"mode"_s);
  } catch (...) {
    CVelumError::CatchError(u"Handler"_s);
  }
  EXPECT_EQ(gLastError.iProc, u"Proc"_s);
  EXPECT_EQ(gLastError.iP0, u"path"_s);
  EXPECT_EQ(gLastError.iP1, u"mode"_s);
}

TEST(CVelumError, SecondThrowInAHandlerReplacesTheRecord) {
  const qint32 number = Raised([] {
    try {
      CVelumError::Throw(EMsgFileNotFound, u"Inner"_s, u"a"_s, u"b"_s);
    } catch (...) {
      CVelumError::CatchError(u"Handler"_s);
      CVelumError::Throw(EMsgWrongFormat, u"Outer"_s, u"c"_s, u"d"_s);
    }
  });
  EXPECT_EQ(number, 1007);
  EXPECT_EQ(gLastError.iMsgId, 1007);
  EXPECT_EQ(gLastError.iProc, u"Outer"_s);
  EXPECT_EQ(gLastError.iP0, u"c"_s);
  EXPECT_EQ(gLastError.iP1, u"d"_s);
}

TEST(CVelumError, CatchErrorRecordsHostErrors) {
  CVelumError::SetErrorRecord(1001, u"x"_s, u"y"_s, u"z"_s);
  try {
    CVelumError::RaiseHost(EHostIndex, u"elem 7"_s);
  } catch (...) {
    CVelumError::CatchError(u"CArray.Read"_s);
  }
  EXPECT_EQ(gLastError.iMsgId, 9);
  EXPECT_EQ(gLastError.iSysNum, 9);
  EXPECT_EQ(gLastError.iProc, u"CArray.Read"_s);
  EXPECT_EQ(gLastError.iP0, QString());
  EXPECT_EQ(gLastError.iP1, QString());
  EXPECT_EQ(gLastError.iSysDescr, u"Index out of range: elem 7"_s);
  EXPECT_FALSE(gLastError.iSysSource.isEmpty());
}

template <class E, class... A> qint32 CaughtAs(A... aArgs) {
  try {
    throw E(aArgs...);
  } catch (...) {
    CVelumError::CatchError(u"Test"_s);
  }
  return gLastError.iMsgId;
}

TEST(CVelumError, StandardExceptionsCountAsHostErrors) {
  EXPECT_EQ(CaughtAs<std::bad_alloc>(), EHostOutOfMemory);
  EXPECT_TRUE(gLastError.iSysDescr.startsWith(u"Out of memory"_s));
  EXPECT_EQ(CaughtAs<std::length_error>("long"), EHostOutOfMemory);
  EXPECT_EQ(CaughtAs<std::out_of_range>("far"), EHostIndex);
  EXPECT_EQ(CaughtAs<std::runtime_error>("odd"), EHostBadCall);
  EXPECT_EQ(gLastError.iSysDescr, u"Bad call: odd"_s);
}

TEST(CVelumError, CatchErrorWithoutAFailureDoesNothing) {
  CVelumError::SetErrorRecord(1001, u"x"_s, u"y"_s, u"z"_s);
  CVelumError::CatchError(u"Nobody"_s);
  EXPECT_EQ(gLastError.iProc, u"x"_s);
}

TEST(CVelumError, RethrowRaisesTheRecordedNumberAndKeepsTheRecord) {
  CVelumError::SetErrorRecord(1006, u"x"_s, u"y"_s, u"z"_s);
  try {
    CVelumError::Rethrow();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), 1006);
    EXPECT_EQ(e.Source(), u"CVelumErrors.Throw"_s);
    EXPECT_EQ(e.Descr(), u"Application Error"_s);
  }
  EXPECT_EQ(gLastError.iProc, u"x"_s);
  EXPECT_EQ(gLastError.iP1, u"z"_s);
}

TEST(CVelumError, RethrownHostErrorKeepsItsDescription) {
  try {
    try {
      CVelumError::RaiseHost(EHostDiskFull, u"/a"_s);
    } catch (...) {
      CVelumError::CatchError(u"Saver"_s);
      CVelumError::Rethrow();
    }
  } catch (...) {
    CVelumError::CatchError(u"Command"_s);
  }
  EXPECT_EQ(gLastError.iMsgId, 61);
  EXPECT_EQ(gLastError.iProc, u"Command"_s);
  EXPECT_EQ(gLastError.iSysDescr, u"Disk full: /a"_s);
}

TEST(CVelumError, ThrowBadStruct) {
  const CNamed named(u"CNamed name=Ada"_s);
  CVelumError::ThrowBadStruct(true, &named, u"P"_s, u"Fine"_s);
  EXPECT_EQ(Raised([&] { CVelumError::ThrowBadStruct(false, &named, u"Reader"_s, u"Type id"_s); }), 1006);
  EXPECT_EQ(gLastError.iProc, u"Reader"_s);
  EXPECT_EQ(gLastError.iP0, u"CNamed name=Ada"_s);
  EXPECT_EQ(gLastError.iP1, u"Reader: Type id"_s);
  EXPECT_EQ(Raised([] { CVelumError::ThrowBadStruct(false, nullptr, u"Reader"_s, u"Type id"_s); }), 1006);
  EXPECT_EQ(gLastError.iP0, QString());
}

TEST(CVelumError, HostDescriptions) {
  EXPECT_EQ(CVelumError::HostDescr(6), u"Overflow"_s);
  EXPECT_EQ(CVelumError::HostDescr(7), u"Out of memory"_s);
  EXPECT_EQ(CVelumError::HostDescr(9), u"Index out of range"_s);
  EXPECT_EQ(CVelumError::HostDescr(11), u"Division by zero"_s);
  EXPECT_EQ(CVelumError::HostDescr(13), u"Type mismatch"_s);
  EXPECT_EQ(CVelumError::HostDescr(53), u"File not found"_s);
  EXPECT_EQ(CVelumError::HostDescr(61), u"Disk full"_s);
  EXPECT_EQ(CVelumError::HostDescr(70), u"Permission denied"_s);
  EXPECT_EQ(CVelumError::HostDescr(91), u"Object not set"_s);
  EXPECT_EQ(CVelumError::HostDescr(999), u"Error 999"_s);
}

} // namespace
