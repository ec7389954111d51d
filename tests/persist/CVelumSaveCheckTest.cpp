#include "persist/CVelumSaveCheck.h"

#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "persist/StackMaker.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

class CVelumSaveCheckTest : public testing::TestWithParam<bool> {};

// A key index without its sort key, as it can come about when a failure is passed over.
void SpoilKeys(CVelumStack& aStack) {
  Ref<CVelumControlSet> background;
  qint32 at = 0;
  ASSERT_TRUE(aStack.GetFirstBackground(background, at));
  const auto key = MakeRef<CVelumSortKey>(aStack.IdGen().NextId(), u"Key"_s, background->Id());
  aStack.AddSortKey(key);
  aStack.NewIndexForSortKey(key);
  aStack.DeleteSortKey(key->Id());
}

TEST_P(CVelumSaveCheckTest, AfterAFailureThatWasPassedOverNothingIsSavedThatCannotBeOpened) {
  ScriptedPresenter presenter;
  CVelumLocale::Init(u"en_US"_s);
  const TempFolder folder;
  const QString path = folder.Path(u"t.Orvelle"_s);
  StackMaker doc = StackMaker::New(2, 0);
  doc.iStack->SetFlag(EStaBinary, GetParam());
  doc.Save(path);
  const QByteArray before = folder.Read(u"t.Orvelle"_s);
  presenter.SetDefaultAnswer(true);
  SpoilKeys(*doc.iStack);
  CVelumError::Assert(false, u"passed over"_s);
  const qsizetype asked = presenter.Count();
  try {
    doc.Save(path);
    ADD_FAILURE() << "it was saved";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EMsgCouldNotSave);
    EXPECT_TRUE(e.Descr().contains(u"what could not be opened again: "_s)) << e.what();
  }
  EXPECT_EQ(presenter.Count(), asked) << "the look at what was written asks nobody";
  EXPECT_TRUE(doc.iStack->Changed());
  EXPECT_EQ(folder.Read(u"t.Orvelle"_s), before);
  EXPECT_EQ(QDir(folder.Path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"t.Orvelle"_s});
  doc = StackMaker::Load(path);
  doc.AddCard(u"more"_s, 0);
  doc.Save(path);
  EXPECT_EQ(StackMaker::Load(path).iStack->NumCards(), 3) << "what can be opened is saved";
}

INSTANTIATE_TEST_SUITE_P(Forms, CVelumSaveCheckTest, testing::Bool(),
                         [](const auto& aInfo) { return aInfo.param ? "Binary" : "Xml"; });

} // namespace
