#include "persist/CVelumJournal.h"

#include "core/file/CVelumOs.h"
#include "persist/CVelumJournalFormat.h"
#include "persist/CVelumJournalReader.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

using namespace CVelumJournalFormat;

namespace {

constexpr qint64 EBlock = CVelumFilePatch::EBlock;
constexpr qint64 EWriteLen = 1 << 20;
constexpr unsigned EPrivate = 0600;

[[noreturn]] void RaiseBusy(const QString& aPath) {
  CVelumError::RaiseHost(EHostPermissionDenied, aPath + u" (another program is saving it)"_s);
}

} // namespace

CVelumJournal::CVelumJournal(const QString& aPath, int aDoc)
    : iPath(aPath), iJournalPath(NameFor(aPath)), iDoc(aDoc) {
  CreateLocked();
}

CVelumJournal::~CVelumJournal() {
  if (!iFinished && !iTouched) CVelumOs::RemoveQuietly(iJournalPath);
  CVelumOs::Close(iFd);
}

// Between making and locking it, somebody who opens the document may have taken the empty journal away.
void CVelumJournal::CreateLocked() {
  constexpr int ETries = 3;
  for (int i = 0; i < ETries; ++i) {
    int fd = CVelumOs::Open(iJournalPath, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, EPrivate);
    if (fd < 0 && errno == EEXIST) RaiseBusy(iPath);
    if (fd < 0) CVelumOs::Raise(errno, iJournalPath);
    try {
      if (CVelumOs::TryLock(fd, iJournalPath) && CVelumOs::IdOf(iJournalPath).SameFile(CVelumOs::IdOf(fd))) {
        iFd = fd;
        return;
      }
    } catch (...) {
      CVelumOs::RemoveQuietly(iJournalPath);
      CVelumOs::Close(fd);
      throw;
    }
    CVelumOs::Close(fd);
  }
  RaiseBusy(iPath);
}

void CVelumJournal::Flush() {
  iSum.addData(iBuf);
  CVelumOs::Write(iFd, iJournalPath, iBuf.constData(), iBuf.size());
  iBuf.clear();
}

void CVelumJournal::AddPiece(qint64 aPos, QByteArrayView aOld, QByteArrayView aNew) {
  if (aOld.isEmpty() && aNew.isEmpty()) return;
  Put(iBuf, aPos);
  Put(iBuf, static_cast<qint32>(aOld.size()));
  Put(iBuf, static_cast<qint32>(aNew.size()));
  iBuf += Sum(aNew);
  iBuf += aOld;
  if (iBuf.size() >= EWriteLen) Flush();
}

// A piece never reaches over the end of the old document, so that each is old or new as a whole, however far
// the length on the disk has come.
void CVelumJournal::AddBlock(qint64 aPos, QByteArrayView aNew) {
  char raw[EBlock];
  const qint64 oldLen =
      CVelumOs::ReadAt(iDoc, iPath, raw, std::clamp<qint64>(iOldLen - aPos, 0, aNew.size()), aPos);
  const QByteArrayView old(raw, oldLen);
  if (old.size() == aNew.size() && std::equal(old.begin(), old.end(), aNew.begin())) return;
  AddPiece(aPos, old, aNew.first(oldLen));
  AddPiece(aPos + oldLen, {}, aNew.sliced(oldLen));
  const bool joins =
      !iRuns.empty() && iRuns.back().iPos + iRuns.back().iLen == aPos && iRuns.back().iLen < EWriteLen;
  if (joins)
    iRuns.back().iLen += aNew.size();
  else
    iRuns.push_back({aPos, aNew.size()});
}

// All from aFrom to the end of the old document goes.
void CVelumJournal::AddCut(qint64 aFrom) {
  char raw[EBlock];
  for (qint64 pos = aFrom; pos < iOldLen; pos = (pos / EBlock + 1) * EBlock) {
    const qint64 len = std::min((pos / EBlock + 1) * EBlock, iOldLen) - pos;
    AddPiece(pos, QByteArrayView(raw, CVelumOs::ReadAt(iDoc, iPath, raw, len, pos)), {});
  }
}

void CVelumJournal::Write(const CVelumFilePatch& aPatch) {
  iOldLen = CVelumOs::IdOf(iDoc).iSize;
  iBuf = EMagic;
  Put(iBuf, iOldLen);
  Put(iBuf, aPatch.Size());
  aPatch.ForEachBlock([this](qint64 aPos, QByteArrayView aBytes) { AddBlock(aPos, aBytes); });
  AddCut(aPatch.Size());
  Flush();
  iBuf = EEndMark;
  iBuf += iSum.result();
  Flush();
  CVelumOs::Sync(iFd, iJournalPath);
  CVelumOs::SyncFolderOf(iJournalPath);
}

void CVelumJournal::Apply(const CVelumFilePatch& aPatch) {
  iTouched = true;
  QByteArray bytes;
  for (const TRun& run : iRuns) {
    bytes.resize(run.iLen);
    bytes.resize(aPatch.ReadAt(iDoc, iPath, bytes.data(), run.iLen, run.iPos));
    CVelumOs::WriteAt(iDoc, iPath, bytes.constData(), bytes.size(), run.iPos);
  }
  if (CVelumOs::IdOf(iDoc).iSize != aPatch.Size()) CVelumOs::Truncate(iDoc, iPath, aPatch.Size());
  CVelumOs::Sync(iDoc, iPath);
}

void CVelumJournal::Finish() {
  CVelumOs::Unlink(iJournalPath);
  iFinished = true;
  CVelumOs::SyncFolderOf(iJournalPath);
}

void CVelumJournal::RollBack() {
  CVelumJournalReader journal(iFd, iJournalPath);
  if (iTouched && journal.IsWhole()) journal.PutBack(iDoc, iPath);
  Finish();
}

Ref<CVelumFilePatch> CVelumJournal::OldBytes() {
  CVelumJournalReader journal(iFd, iJournalPath);
  if (!journal.IsWhole()) CVelumOs::Raise(EIO, iJournalPath);
  return journal.OldBytes(iDoc, iPath);
}
