// A save in place that a dying disk cuts off.
#pragma once

#include "core/file/CVelumFilePatch.h"
#include "persist/StackMaker.h"

#include <gtest/gtest.h>

#include <cerrno>

// From the first write into one file on every call that changes something fails; that write after half its
// blocks. Installs itself.
class DyingDisk final : public CVelumFaults {
public:
  explicit DyingDisk(QString aPath) : iPath(std::move(aPath)) { CVelumOs::SetFaults(this); }
  ~DyingDisk() override { CVelumOs::SetFaults(nullptr); }
  DyingDisk(const DyingDisk&) = delete;
  DyingDisk& operator=(const DyingDisk&) = delete;

  int Before(EOsCall aCall, const QString& aPath, qint64& aLen) override {
    if (aCall == EOsCall::Read || aCall == EOsCall::Open || aCall == EOsCall::Lock) return 0;
    iDead = iDead || (aCall == EOsCall::Write && aPath == iPath);
    aLen = aLen / 2 / CVelumFilePatch::EBlock * CVelumFilePatch::EBlock;
    return iDead ? EIO : 0;
  }

private:
  QString iPath;
  bool iDead = false;
};

namespace CutSave {

// Edits aDoc, loaded from aPath and with pictures, in many places.
inline void Edit(StackMaker& aDoc) {
  aDoc.Card(1)->SetControlVal(aDoc.TextId(), TVelumValue::OfStr(QString(9000, u'x')));
  aDoc.AddCard(u"cut off"_s, 20000);
}

// Leaves the document half written, with a journal.
inline void Run(const QString& aPath) {
  StackMaker doc = StackMaker::Load(aPath);
  Edit(doc);
  DyingDisk disk(aPath);
  EXPECT_THROW(doc.Save(aPath), CVelumException);
}

} // namespace CutSave
