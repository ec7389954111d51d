#include "core/file/CVelumFilePatch.h"

#include "core/file/CVelumOs.h"

#include <algorithm>
#include <cstring>

void CVelumFilePatch::SetSize(qint64 aSize) {
  iBelow = std::min(iBelow, aSize);
  for (auto& [num, page] : iPages) {
    const qint64 start = num * EPageLen;
    const qint64 keep = std::clamp<qint64>(aSize - start, 0, EPageLen);
    std::fill(page->iBytes.begin() + keep, page->iBytes.end(), '\0');
    for (qint64 i = (keep + EBlock - 1) / EBlock; i < EPageBlocks; ++i)
      page->iHas.reset(static_cast<size_t>(i));
  }
  iSize = aSize;
}

// Zeros stand behind the end of the file.
void CVelumFilePatch::ReadBelow(int aFd, const QString& aPath, char* aTo, qint64 aLen, qint64 aPos) const {
  const qint64 there = std::clamp<qint64>(iBelow - aPos, 0, aLen);
  const qint64 len = there > 0 ? CVelumOs::ReadAt(aFd, aPath, aTo, there, aPos) : 0;
  std::memset(aTo + len, 0, static_cast<size_t>(aLen - len));
}

// aLen bytes that lie in one page, in runs of blocks that are or are not laid over.
void CVelumFilePatch::ReadInPage(const TPage* aPage, int aFd, const QString& aPath, char* aTo, qint64 aLen,
                                 qint64 aPos) const {
  if (!aPage) return ReadBelow(aFd, aPath, aTo, aLen, aPos);
  const qint64 end = aPos + aLen;
  const auto has = [&](qint64 aAt) { return aPage->iHas.test(static_cast<size_t>(aAt % EPageLen / EBlock)); };
  for (qint64 pos = aPos, next = 0; pos < end; pos = next) {
    const bool laid = has(pos);
    next = pos;
    do next = (next / EBlock + 1) * EBlock;
    while (next < end && has(next) == laid);
    next = std::min(next, end);
    char* to = aTo + (pos - aPos);
    if (laid)
      std::memcpy(to, aPage->iBytes.data() + pos % EPageLen, static_cast<size_t>(next - pos));
    else
      ReadBelow(aFd, aPath, to, next - pos, pos);
  }
}

qint64 CVelumFilePatch::ReadAt(int aFd, const QString& aPath, char* aTo, qint64 aLen, qint64 aPos) const {
  const qint64 len = std::clamp<qint64>(iSize - aPos, 0, aLen);
  for (qint64 done = 0; done < len;) {
    const qint64 pos = aPos + done;
    const qint64 piece = std::min(len - done, EPageLen - pos % EPageLen);
    const auto page = iPages.find(pos / EPageLen);
    ReadInPage(page == iPages.end() ? nullptr : page->second.get(), aFd, aPath, aTo + done, piece, pos);
    done += piece;
  }
  return len;
}

// The block at aPos, laid over; aWhole: all of it is about to be written.
char* CVelumFilePatch::Block(int aFd, const QString& aPath, qint64 aPos, bool aWhole) {
  std::unique_ptr<TPage>& page = iPages[aPos / EPageLen];
  if (!page) page = std::make_unique<TPage>();
  const qint64 at = aPos % EPageLen / EBlock;
  char* block = page->iBytes.data() + at * EBlock;
  const auto bit = static_cast<size_t>(at);
  if (!page->iHas.test(bit) && !aWhole) ReadBelow(aFd, aPath, block, EBlock, aPos / EBlock * EBlock);
  page->iHas.set(bit);
  return block;
}

void CVelumFilePatch::WriteAt(int aFd, const QString& aPath, const char* aFrom, qint64 aLen, qint64 aPos) {
  // A gap behind the end reads as zeros, and is part of the new bytes.
  for (qint64 gap = iSize; gap < aPos; gap = (gap / EBlock + 1) * EBlock) Block(aFd, aPath, gap, false);
  iSize = std::max(iSize, aPos + aLen);
  for (qint64 done = 0; done < aLen;) {
    const qint64 pos = aPos + done;
    const qint64 piece = std::min(aLen - done, EBlock - pos % EBlock);
    char* block = Block(aFd, aPath, pos, piece == EBlock);
    std::memcpy(block + pos % EBlock, aFrom + done, static_cast<size_t>(piece));
    done += piece;
  }
}

void CVelumFilePatch::ForEachBlock(const std::function<void(qint64, QByteArrayView)>& aDo) const {
  for (const auto& [num, page] : iPages) {
    for (qint64 i = 0; i < EPageBlocks; ++i) {
      const qint64 pos = num * EPageLen + i * EBlock;
      if (!page->iHas.test(static_cast<size_t>(i)) || pos >= iSize) continue;
      aDo(pos, QByteArrayView(page->iBytes.data() + i * EBlock, std::min(EBlock, iSize - pos)));
    }
  }
}
