// The check on stacks that load in spite of damage: it may find what it likes, but must come to an end.
#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "persist/CVelumStackCheck.h"
#include "persist/CVelumStackFile.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <QFile>
#include <array>
#include <gtest/gtest.h>

namespace {

class CVelumStackCheckDamageTest : public testing::TestWithParam<const char*> {
protected:
  CVelumStackCheckDamageTest() {
    CVelumLocale::Init(u"en_US"_s);
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    QFile file(TestTree::Data() + u"/stacks/good/"_s + QString::fromLatin1(GetParam()));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    iBytes = file.readAll();
  }
  ~CVelumStackCheckDamageTest() override { gStack = nullptr; }

  // Loads and checks; whether there was a problem of any kind.
  bool HasProblem(const QByteArray& aBytes) {
    const QString path = iFolder.Write(u"damaged.Orvelle"_s, aBytes);
    try {
      Ref<CVelumStack> stack;
      Ref<CVelumViewState> view;
      CVelumStackFile(path).LoadStack(stack, view);
      gStack = stack;
      return !CVelumStackCheck(*stack).Run().isEmpty();
    } catch (...) {
      CVelumError::CatchError(u"CVelumStackCheckDamageTest"_s);
      return true;
    }
  }

  QByteArray iBytes;
  TempFolder iFolder;
};

// Every third byte: loading after any change of any byte has a test of its own.
TEST_P(CVelumStackCheckDamageTest, ChangedBytesAreSurvived) {
  ASSERT_FALSE(HasProblem(iBytes));
  for (const bool answer : {false, true}) {
    ScriptedPresenter presenter;
    presenter.SetDefaultAnswer(answer);
    int found = 0;
    for (qsizetype i = 0; i < iBytes.size(); i += 3) {
      const char old = iBytes[i];
      const std::array values{0, 255, old ^ 0x80, old + 1};
      QByteArray bytes = iBytes;
      bytes[i] = static_cast<char>(values[static_cast<size_t>(i % 4)]);
      found += HasProblem(bytes);
    }
    EXPECT_GT(found, iBytes.size() / 30);
  }
}

INSTANTIATE_TEST_SUITE_P(Stacks, CVelumStackCheckDamageTest,
                         testing::Values("one_card.Orvelle", "combo_lists.Orvelle", "blobs.Orvelle"));

} // namespace
