#include "core/CVelumDialogLib.h"

#include "core/CVelumSeams.h"

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

} // namespace
