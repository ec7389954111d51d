#include "persist/CVelumJournalReader.h"

#include "core/file/CVelumOs.h"
#include "persist/CVelumJournalFormat.h"

#include <algorithm>

using namespace CVelumJournalFormat;

namespace {

constexpr qint64 EReadLen = 1 << 20;

bool IsZeros(const QByteArray& aBytes) {
  return std::all_of(aBytes.begin(), aBytes.end(), [](char aByte) { return aByte == 0; });
}

QByteArray ReadPiece(int aFd, const QString& aPath, qint64 aPos, qint64 aLen) {
  QByteArray bytes(aLen, Qt::Uninitialized);
  bytes.resize(CVelumOs::ReadAt(aFd, aPath, bytes.data(), aLen, aPos));
  return bytes;
}

} // namespace

// The next aLen bytes; fewer where the journal ends.
QByteArray CVelumJournalReader::Take(qint64 aLen) {
  if (iBuf.size() - iBufPos < aLen) {
    iBuf = iBuf.mid(iBufPos) + ReadPiece(iFd, iPath, iPos, EReadLen);
    iPos += EReadLen;
    iBufPos = 0;
  }
  QByteArray bytes = iBuf.mid(iBufPos, aLen);
  iBufPos += bytes.size();
  return bytes;
}

// The head, from the beginning.
bool CVelumJournalReader::Begin() {
  iPos = 0;
  iBuf.clear();
  iBufPos = 0;
  iAtEnd = false;
  iSum.reset();
  const QByteArray head = Take(EHeadLen);
  if (head.size() >= EMarkLen && !head.startsWith(EMagic) && head.startsWith(EFamily))
    CVelumError::RaiseHost(EHostPermissionDenied,
                           iPath + u" (of another version of this program; open the document with that)"_s);
  if (head.size() < EHeadLen || !head.startsWith(EMagic)) return false;
  iSum.addData(head);
  iOldLen = Get<qint64>(head, EMarkLen);
  iNewLen = Get<qint64>(head, EMarkLen + 8);
  return iOldLen >= 0 && iNewLen >= 0;
}

// False at the end mark and at whatever is no piece; iAtEnd tells.
bool CVelumJournalReader::Next(TPiece& aPiece) {
  const QByteArray mark = Take(EMarkLen);
  iAtEnd = mark == EEndMark;
  const QByteArray rest = iAtEnd ? QByteArray() : Take(EPieceHeadLen - EMarkLen);
  if (rest.size() < EPieceHeadLen - EMarkLen) return false;
  aPiece.iPos = Get<qint64>(mark, 0);
  const auto oldLen = Get<qint32>(rest, 0);
  aPiece.iNewLen = Get<qint32>(rest, 4);
  aPiece.iNewSum = rest.mid(8);
  const auto isLen = [](qint64 aLen) { return aLen >= 0 && aLen <= CVelumFilePatch::EBlock; };
  if (aPiece.iPos < 0 || !isLen(oldLen) || !isLen(aPiece.iNewLen)) return false;
  aPiece.iOld = Take(oldLen);
  if (iSumming) {
    iSum.addData(mark);
    iSum.addData(rest);
    iSum.addData(aPiece.iOld);
  }
  return aPiece.iOld.size() == oldLen;
}

bool CVelumJournalReader::IsWhole() {
  iSumming = true;
  TPiece piece;
  bool whole = Begin();
  while (whole && Next(piece)) {
  }
  iSumming = false;
  return whole && iAtEnd && Take(ESumLen) == iSum.result();
}

// Only what the save writes or cuts must be one of the two; what it appends is nothing the old document has.
void CVelumJournalReader::Compare(const TPiece& aPiece, int aDoc, const QString& aDocPath, bool& aAllNew,
                                  bool& aFits) const {
  const qint64 oldLen = aPiece.iOld.size();
  const QByteArray there = ReadPiece(aDoc, aDocPath, aPiece.iPos, std::max(oldLen, aPiece.iNewLen));
  const bool isNew = there.size() == aPiece.iNewLen && Sum(there) == aPiece.iNewSum;
  aAllNew = aAllNew && isNew;
  if (isNew || oldLen == 0) return;
  // Where a document is cut off, part of a piece may be gone; some disks give zeros for it.
  const bool cut = aPiece.iNewLen == 0 && (aPiece.iOld.startsWith(there) || IsZeros(there));
  aFits = aFits && (cut || there == aPiece.iOld);
}

CVelumJournalReader::EFit CVelumJournalReader::Compare(int aDoc, const QString& aDocPath) {
  const qint64 len = CVelumOs::IdOf(aDoc).iSize;
  bool allNew = Begin() && len == iNewLen;
  bool fits = len >= std::min(iOldLen, iNewLen) && len <= std::max(iOldLen, iNewLen);
  TPiece piece;
  while ((allNew || fits) && Next(piece)) Compare(piece, aDoc, aDocPath, allNew, fits);
  if (allNew) return EFit::Complete;
  return fits ? EFit::CutOff : EFit::Doubt;
}

void CVelumJournalReader::PutBack(int aDoc, const QString& aDocPath) {
  TPiece piece;
  for (bool more = Begin(); more && Next(piece);)
    if (!piece.iOld.isEmpty())
      CVelumOs::WriteAt(aDoc, aDocPath, piece.iOld.constData(), piece.iOld.size(), piece.iPos);
  CVelumOs::Truncate(aDoc, aDocPath, iOldLen);
  CVelumOs::Sync(aDoc, aDocPath);
}

Ref<CVelumFilePatch> CVelumJournalReader::OldBytes(int aDoc, const QString& aDocPath) {
  auto patch = MakeRef<CVelumFilePatch>(CVelumOs::IdOf(aDoc).iSize);
  TPiece piece;
  for (bool more = Begin(); more && Next(piece);)
    patch->WriteAt(aDoc, aDocPath, piece.iOld.constData(), piece.iOld.size(), piece.iPos);
  patch->SetSize(iOldLen);
  return patch;
}
