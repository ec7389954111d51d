// Bytes that stand over those of a file without being in it.
#pragma once

#include "core/CVelumObject.h"

#include <QByteArrayView>

#include <array>
#include <bitset>
#include <functional>
#include <map>
#include <memory>

// What a file would be with some of its bytes changed, and with another length. Kept in whole blocks of
// EBlock bytes, in memory. A save collects the new document in one before it touches the file; the old bytes
// of a save that was cut off are laid over the document in one where it cannot be written to.
// CVelumFile::SetPatch makes a file read and write through it. Several files may share one, as long as they
// are the same file.
class CVelumFilePatch final : public CVelumObject {
public:
  static constexpr qint64 EBlock = 512;

  // aSize is the length of the file that lies below.
  explicit CVelumFilePatch(qint64 aSize) : iSize(aSize), iBelow(aSize) {}

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumFilePatch"_s; }
  // The length of the whole, in bytes.
  [[nodiscard]] qint64 Size() const { return iSize; }
  // Cuts or lengthens the whole; what is added is zeros.
  void SetSize(qint64 aSize);
  // Up to aLen bytes at aPos; less only at the end. aFd is the file below, aPath its name for failures, which
  // raise.
  [[nodiscard]] qint64 ReadAt(int aFd, const QString& aPath, char* aTo, qint64 aLen, qint64 aPos) const;
  // Lays aLen bytes over those at aPos. Reads what else stands in their blocks; raises when that fails.
  void WriteAt(int aFd, const QString& aPath, const char* aFrom, qint64 aLen, qint64 aPos);
  // Calls aDo with position and bytes of each block that was laid over, in ascending order; the last block of
  // the whole may be shorter.
  void ForEachBlock(const std::function<void(qint64 aPos, QByteArrayView aBytes)>& aDo) const;

private:
  static constexpr qint64 EPageLen = 65536;
  static constexpr qint64 EPageBlocks = EPageLen / EBlock;
  struct TPage {
    std::array<char, EPageLen> iBytes;
    std::bitset<EPageBlocks> iHas; // the blocks that were laid over
  };

  void ReadBelow(int aFd, const QString& aPath, char* aTo, qint64 aLen, qint64 aPos) const;
  void ReadInPage(const TPage* aPage, int aFd, const QString& aPath, char* aTo, qint64 aLen,
                  qint64 aPos) const;
  char* Block(int aFd, const QString& aPath, qint64 aPos, bool aWhole);

  qint64 iSize;
  qint64 iBelow;                                   // so much of the file below is still seen
  std::map<qint64, std::unique_ptr<TPage>> iPages; // by position divided by EPageLen
};
