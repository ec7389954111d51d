#include "toolkit/CVelumGuard.h"

#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

namespace {

void Check() {
  CVelumError::AssertObj(false, nullptr, u"Check"_s, u"round"_s);
}

} // namespace

TEST(CVelumGuard, TellsWhetherAllWentWellAndShowsWhatDidNot) {
  ScriptedPresenter presenter;
  EXPECT_TRUE(CVelumGuard::Run(u"P"_s, [] {}));
  EXPECT_EQ(presenter.Count(), 0);
  EXPECT_FALSE(CVelumGuard::Run(u"P"_s, [] { CVelumError::RaiseHost(EHostOverflow); }));
  EXPECT_EQ(presenter.LastMsg(), EMsgSystemError);
  EXPECT_EQ(CVelumError::GetErrorRecord().iProc, u"P"_s);
}

TEST(CVelumGuard, AsksTheSameQuestionOncePerCommand) {
  ScriptedPresenter presenter;
  presenter.SetDefaultAnswer(true);
  const auto command = [] {
    for (int i = 0; i < 5; ++i) CVelumGuard::Run(u"inner"_s, Check);
  };
  EXPECT_TRUE(CVelumGuard::Run(u"outer"_s, command));
  EXPECT_EQ(presenter.CountOf(EMsgAssertFailedOk), 1);
  EXPECT_TRUE(CVelumGuard::Run(u"outer"_s, command));
  EXPECT_EQ(presenter.CountOf(EMsgAssertFailedOk), 2);
}
