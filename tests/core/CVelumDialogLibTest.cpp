#include "core/CVelumDialogLib.h"

#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <QList>
#include <gtest/gtest.h>

namespace {

class CCursorPump final : public CVelumEventPump {
public:
  CCursorPump() { CVelumSeams::SetEventPump(this); }
  ~CCursorPump() override { CVelumSeams::SetEventPump(nullptr); }
  void Pump() override {}
  void SetWaitCursor(bool aOn) override { iCalls.append(aOn); }
  QList<bool> iCalls;
};

TEST(CVelumDialogLib, CursorComesBackWithTheLastEnd) {
  CCursorPump pump;
  CVelumDialogLib::BeginWait();
  CVelumDialogLib::BeginWait();
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 2);
  CVelumDialogLib::EndWait();
  EXPECT_EQ(pump.iCalls, (QList<bool>{true, true}));
  CVelumDialogLib::EndWait();
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
  EXPECT_EQ(pump.iCalls, (QList<bool>{true, true, false}));
}

TEST(CVelumDialogLib, SurplusEndSetsThePointerAgainAndStaysAtZero) {
  CCursorPump pump;
  CVelumDialogLib::EndWait();
  CVelumDialogLib::EndWait();
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
  EXPECT_EQ(pump.iCalls, (QList<bool>{false, false}));
  CVelumDialogLib::BeginWait();
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 1);
  CVelumDialogLib::EndWait();
}

class CVelumDialogLibCheck : public testing::Test {
protected:
  CVelumDialogLibCheck() { CVelumMsg::InitMessages(); }

  // The message for an entry, -1 for none; checks that it goes with aBad.
  qint32 Int(const QString& aText, bool aEmptyOk, qint16 aMin, qint16 aMax) {
    iPresenter.Clear();
    bool bad = false;
    CVelumDialogLib::CheckInt(u"Digits"_s, aText, aEmptyOk, bad, aMin, aMax);
    EXPECT_EQ(bad, iPresenter.Count() == 1);
    return iPresenter.LastMsg();
  }
  ScriptedPresenter iPresenter;
};

TEST_F(CVelumDialogLibCheck, EmptyEntryIsRefusedByName) {
  bool bad = false;
  CVelumDialogLib::CheckNotEmpty(u"Name"_s, u" a "_s, bad);
  EXPECT_FALSE(bad);
  EXPECT_EQ(iPresenter.Count(), 0);
  for (const QString& text : {u""_s, u"   "_s}) {
    bad = false;
    CVelumDialogLib::CheckNotEmpty(u"Name"_s, text, bad);
    EXPECT_TRUE(bad);
    EXPECT_EQ(iPresenter.LastText(), u"You must specify some value on field 'Name', empty is not allowed."_s);
  }
  EXPECT_EQ(iPresenter.Shown().last().iClass, EMsgCritical);
}

TEST_F(CVelumDialogLibCheck, SoundEntriesLeaveTheMarkAsItIs) {
  bool bad = true;
  CVelumDialogLib::CheckNotEmpty(u"Name"_s, u"a"_s, bad);
  EXPECT_TRUE(bad);
  CVelumDialogLib::CheckInt(u"Digits"_s, u"1"_s, false, bad, 0, 7);
  EXPECT_TRUE(bad);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumDialogLibCheck, EmptyNumberIsTakenOnlyWhereItMay) {
  EXPECT_EQ(Int(u" "_s, false, 1, 100), EMsgEmptyField);
  EXPECT_EQ(iPresenter.LastText(), u"You must specify some value on field 'Digits', empty is not allowed."_s);
  EXPECT_EQ(Int(u" "_s, true, 1, 100), -1);
}

TEST_F(CVelumDialogLibCheck, NumberMustBeOneOfSixteenBits) {
  for (const QString& text : {u"x"_s, u"1.5"_s, u"1 2"_s, u"32768"_s, u"-32769"_s, QString(40000, u'1')})
    EXPECT_EQ(Int(text, true, ENoShort, ENoShort), EMsgNotNum) << text.left(10).toStdString();
  EXPECT_EQ(Int(u" 1.5 "_s, true, 0, 7), EMsgNotNum);
  EXPECT_EQ(iPresenter.LastText(), u"The given string '1.5' on field 'Digits' ist not a valid number."_s);
  for (const QString& text : {u"32767"_s, u"-32768"_s, u" 7 "_s, u"+7"_s, u"12-3"_s, u"-"_s})
    EXPECT_EQ(Int(text, true, ENoShort, ENoShort), -1) << text.toStdString();
}

TEST_F(CVelumDialogLibCheck, NumberMustLieBetweenItsLimits) {
  EXPECT_EQ(Int(u"0"_s, false, 1, 100), EMsgNumTooLow);
  EXPECT_EQ(iPresenter.LastText(),
            u"The given value of 0 on field 'Digits' is too low, the minimum allowed is 1."_s);
  EXPECT_EQ(Int(u" 101"_s, false, 1, 100), EMsgNumTooHigh);
  EXPECT_EQ(iPresenter.LastText(),
            u"The given value of 101 on field 'Digits' is too high, the maximum allowed is 100."_s);
  EXPECT_EQ(Int(u"1"_s, false, 1, 100), -1);
  EXPECT_EQ(Int(u"100"_s, false, 1, 100), -1);
  EXPECT_EQ(Int(u"-5"_s, false, ENoShort, 100), -1);
  EXPECT_EQ(Int(u"500"_s, false, 1, ENoShort), -1);
}

} // namespace
