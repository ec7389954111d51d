// Files that are cut short or have a byte changed, at every place.
#include "core/text/CVelumLocale.h"
#include "persist/StackMaker.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <gtest/gtest.h>

#include <QFile>

namespace {

class Damage : public testing::TestWithParam<const char*> {
protected:
  Damage() {
    CVelumLocale::Init(u"en_US"_s);
    QFile file(TestTree::Data() + u"/stacks/good/"_s + QString::fromLatin1(GetParam()) + u".Orvelle"_s);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    iBytes = file.readAll();
  }

  // Loads aBytes. A clean error is fine; a stack must be one that can be read, saved and loaded again.
  void Try(const QByteArray& aBytes) {
    // A new file each time: the system waits for the disk when an old one is cut and written again.
    QFile::remove(iFolder.Path(u"t.Orvelle"_s));
    QString path = iFolder.Write(u"t.Orvelle"_s, aBytes);
    StackMaker doc;
    try {
      doc = StackMaker::Load(path);
    } catch (const CVelumException&) {
      return;
    }
    // A save takes long, since it waits for the disk.
    bool save = ++iLoaded % 16 == 0;
    if (!Use(doc, save) || !save) return;
    ASSERT_NO_THROW(doc = StackMaker::Load(iFolder.Path(u"n.Orvelle"_s)));
  }
  // Reads all, edits, and saves under another name; true if all went well.
  bool Use(StackMaker& aDoc, bool aSave) {
    try {
      (void)aDoc.Tell();
      Ref<CVelumCard> card;
      qint32 at = 0;
      if (aDoc.iStack->GetFirstCard(card, at)) aDoc.iStack->RenameCard(card, u"renamed"_s);
      if (aSave) CVelumStackFile(iFolder.Path(u"n.Orvelle"_s)).SaveStack(aDoc.iStack, aDoc.iView);
      return true;
    } catch (const CVelumException&) {
      return false;
    }
  }
  void TryAll() {
    for (qsizetype len = 0; len < iBytes.size(); ++len) Try(iBytes.left(len));
    for (qsizetype at = 0; at < iBytes.size(); ++at) {
      auto old = static_cast<unsigned char>(iBytes[at]);
      for (int val : {0, 255, old ^ 0x80, (old + 1) & 255}) {
        QByteArray bytes = iBytes;
        bytes[at] = static_cast<char>(val);
        Try(bytes);
        if (HasFatalFailure()) FAIL() << "byte " << at << " set to " << val;
      }
    }
    EXPECT_GT(iLoaded, iBytes.size()) << "most single bytes do not spoil a stack";
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QByteArray iBytes;
  qsizetype iLoaded = 0;
};

TEST_P(Damage, IsToldOrHarmless) {
  TryAll();
}

TEST_P(Damage, IsSafeWhenAllAssertionsAreOverruled) {
  iPresenter.SetDefaultAnswer(true);
  TryAll();
}

INSTANTIATE_TEST_SUITE_P(Files, Damage, testing::Values("all_controls", "sorted_up", "blobs_holes"),
                         [](const testing::TestParamInfo<const char*>& aInfo) { return aInfo.param; });

} // namespace
