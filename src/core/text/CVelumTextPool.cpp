#include "core/text/CVelumTextPool.h"

#include <algorithm>

namespace {

// In characters. The first block is small, as many files hold few texts.
constexpr qsizetype EMinBlock = 512;
constexpr qsizetype EMaxBlock = 32768;
// A longer text has memory of its own, so that it does not keep a block alive, nor a block it.
constexpr qsizetype EMaxShared = 256;

} // namespace

QString CVelumTextPool::Take(qsizetype aLen, char16_t*& aChars) {
  if (aLen > EMaxShared) {
    QString own(aLen, Qt::Uninitialized);
    aChars = reinterpret_cast<char16_t*>(own.data());
    return own;
  }
  const qsizetype need = aLen + 1; // a zero ends each text
  if (iUsed + need > iBlock.constAllocatedCapacity()) {
    const qsizetype next = std::clamp(2 * iBlock.constAllocatedCapacity(), EMinBlock, EMaxBlock);
    iBlock = QString::DataPointer(QTypedArrayData<char16_t>::allocate(next));
    Q_CHECK_PTR(iBlock.data());
    iUsed = 0;
  }
  aChars = iBlock.data() + iUsed;
  aChars[aLen] = u'\0';
  iUsed += need;
  iBlock.d_ptr()->ref();
  return QString(QString::DataPointer(iBlock.d_ptr(), aChars, aLen));
}
