#include "persist/CVelumSaveTarget.h"

#include "persist/StackMaker.h"
#include "support/FaultInjection.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace {

// What was kept of another program goes with the save that was to replace it.
TEST(CVelumSaveTarget, AVersionThatWasKeptGoesWhenTheSaveFails) {
  const ScriptedPresenter presenter;
  const TempFolder folder;
  const QString path = folder.Path(u"t.Orvelle"_s);
  StackMaker doc = StackMaker::New(2, 100);
  doc.Save(path);
  StackMaker::New(1, 50).Save(folder.Path(u"o"_s));
  ASSERT_TRUE(QFile::remove(path) && QFile::rename(folder.Path(u"o"_s), path));
  const QByteArray other = folder.Read(u"t.Orvelle"_s);
  doc.AddCard(u"more"_s, 10);
  {
    FaultInjection faults(FaultInjection::EAct::Fail, 0);
    faults.Only(EOsCall::Rename);
    EXPECT_THROW(doc.Save(path), CVelumException);
    EXPECT_TRUE(faults.Hit());
  }
  EXPECT_EQ(QDir(folder.Path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"t.Orvelle"_s});
  EXPECT_EQ(folder.Read(u"t.Orvelle"_s), other);
  EXPECT_TRUE(presenter.Told().isEmpty());
  doc.Save(path);
  EXPECT_EQ(QDir(folder.Path()).entryList(QDir::Files).size(), 2) << "the next save keeps it";
}

} // namespace
