#include "support/PowerLoss.h"

#include "core/file/CVelumFilePatch.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <gtest/gtest.h>

#include <cerrno>
#include <random>
#include <unistd.h>

namespace {

constexpr qint64 EBlock = CVelumFilePatch::EBlock;

QString NameOf(const QString& aPath) {
  return aPath.section(u'/', -1);
}

} // namespace

PowerLoss::PowerLoss(QString aFolder) : iFolder(std::move(aFolder)) {
  const TFolderState state = StateOf(iFolder);
  for (auto it = state.begin(); it != state.end(); ++it) {
    const int file = static_cast<int>(iStart.iFiles.size());
    iStart.iFiles.push_back({it.value(), it.value().size()});
    iStart.iNames[it.key()] = file;
    iLens.push_back(it.value().size());
    Know(iFolder + u'/' + it.key(), file);
  }
  iNow = iStart.iNames;
}

TFolderState PowerLoss::StateOf(const QString& aFolder) {
  TFolderState state;
  for (const QString& name : QDir(aFolder).entryList(QDir::Files | QDir::Hidden)) {
    QFile file(aFolder + u'/' + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    state[name] = file.readAll();
  }
  return state;
}

void PowerLoss::Make(const QString& aFolder, const TFolderState& aState) {
  for (const QString& name : QDir(aFolder).entryList(QDir::Files | QDir::Hidden))
    QFile::remove(aFolder + u'/' + name);
  for (auto it = aState.begin(); it != aState.end(); ++it) {
    QFile file(aFolder + u'/' + it.key());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(it.value());
  }
}

void PowerLoss::Know(const QString& aPath, int aFile) {
  iFileOfNode[CVelumOs::IdOf(aPath).iNode] = aFile;
}

int PowerLoss::FileOf(int aFd) {
  return iFileOfNode.value(CVelumOs::IdOf(aFd).iNode, -1);
}

int PowerLoss::Before(EOsCall aCall, const QString&, qint64& aLen) {
  if (aCall == EOsCall::Wait) return 1;
  if (aCall == EOsCall::Read || aCall == EOsCall::Lock) return 0;
  if (iCalls++ != iFailAt) return 0;
  iFailed = true;
  iFailedAt = iSteps.size();
  aLen = aLen / 2 / EBlock * EBlock;
  return EIO;
}

// A file that is new gets a number; its inode may have been that of another one.
void PowerLoss::Open(const TVelumOsStep& aStep, TStep& aTo) {
  const QString name = NameOf(aStep.iPath);
  if (CVelumOs::IsFolder(aStep.iFd)) return;
  if (!iNow.contains(name)) {
    const int file = static_cast<int>(iLens.size());
    iLens.push_back(0);
    iNow[name] = file;
    iFileOfNode[CVelumOs::IdOf(aStep.iFd).iNode] = file;
    aTo.push_back({EKind::Name, file, 0, {}, name});
  }
  const int file = FileOf(aStep.iFd);
  const qint64 len = CVelumOs::IdOf(aStep.iFd).iSize;
  if (len < iLens[static_cast<size_t>(file)]) aTo.push_back({EKind::Cut, file, len, {}});
  iLens[static_cast<size_t>(file)] = len;
}

void PowerLoss::Write(const TVelumOsStep& aStep, TStep& aTo) {
  const int file = FileOf(aStep.iFd);
  const qint64 start = aStep.iPos < 0 ? ::lseek(aStep.iFd, 0, SEEK_CUR) - aStep.iLen : aStep.iPos;
  const qint64 end = start + aStep.iLen;
  for (qint64 pos = start; pos < end;) {
    const qint64 next = std::min((pos / EBlock + 1) * EBlock, end);
    aTo.push_back({EKind::Data, file, pos, QByteArray(aStep.iBytes + (pos - start), next - pos)});
    pos = next;
  }
  qint64& len = iLens[static_cast<size_t>(file)];
  if (end > len) aTo.push_back({EKind::Extend, file, end, {}});
  len = std::max(len, end);
}

void PowerLoss::Name(const TVelumOsStep& aStep, TStep& aTo) {
  const QString name = NameOf(aStep.iPath);
  const QString from = NameOf(aStep.iFrom);
  const bool gone = aStep.iCall == EOsCall::Unlink;
  if (gone && !iNow.contains(name)) return;
  const int file = gone ? -1 : iNow.value(from);
  aTo.push_back({EKind::Name, file, 0, {}, name, aStep.iCall == EOsCall::Rename ? from : QString()});
  if (gone || aStep.iCall == EOsCall::Rename) iNow.remove(gone ? name : from);
  if (!gone) iNow[name] = file;
}

void PowerLoss::Done(const TVelumOsStep& aStep) {
  TStep step;
  switch (aStep.iCall) {
  case EOsCall::Open:
    Open(aStep, step);
    break;
  case EOsCall::Write:
    Write(aStep, step);
    break;
  case EOsCall::Truncate:
    step.push_back({EKind::Cut, FileOf(aStep.iFd), aStep.iLen, {}});
    iLens[static_cast<size_t>(FileOf(aStep.iFd))] = aStep.iLen;
    break;
  case EOsCall::Sync:
    step.push_back({EKind::Sync, FileOf(aStep.iFd), 0, {}});
    break;
  case EOsCall::SyncFolder:
    step.push_back({EKind::SyncFolder, -1, 0, {}});
    break;
  default:
    Name(aStep, step);
  }
  if (!step.empty()) iSteps.push_back(std::move(step));
}

void PowerLoss::Apply(const TChange& aChange, TDisk& aDisk) {
  if (aChange.iKind == EKind::Name) {
    if (!aChange.iFrom.isEmpty()) aDisk.iNames.remove(aChange.iFrom);
    aDisk.iNames.remove(aChange.iName);
    if (aChange.iFile >= 0) aDisk.iNames[aChange.iName] = aChange.iFile;
    return;
  }
  TFile& file = aDisk.iFiles[static_cast<size_t>(aChange.iFile)];
  if (aChange.iKind == EKind::Extend) file.iLen = std::max(file.iLen, aChange.iPos);
  if (aChange.iKind == EKind::Cut) {
    file.iLen = aChange.iPos;
    file.iBytes.truncate(aChange.iPos);
  }
  if (aChange.iKind != EKind::Data) return;
  const qint64 end = aChange.iPos + aChange.iBytes.size();
  if (file.iBytes.size() < end) file.iBytes.append(end - file.iBytes.size(), '\0');
  file.iBytes.replace(aChange.iPos, aChange.iBytes.size(), aChange.iBytes);
}

TFolderState PowerLoss::Seen(const TDisk& aDisk) {
  TFolderState state;
  for (auto it = aDisk.iNames.begin(); it != aDisk.iNames.end(); ++it) {
    const TFile& file = aDisk.iFiles[static_cast<size_t>(it.value())];
    state[it.key()] = file.iBytes.left(file.iLen).leftJustified(file.iLen, '\0');
  }
  return state;
}

// Brings aDisk to what is certainly on the disk; returns the rest, in the order in which it was done.
std::vector<const PowerLoss::TChange*> PowerLoss::Pending(size_t aCount, TDisk& aDisk) const {
  std::vector<const TChange*> pending;
  aDisk = iStart;
  aDisk.iFiles.resize(iLens.size());
  for (size_t i = 0; i < aCount; ++i) {
    for (const TChange& change : iSteps[i]) {
      const bool sync = change.iKind == EKind::Sync || change.iKind == EKind::SyncFolder;
      if (!sync) pending.push_back(&change);
      if (!sync) continue;
      std::erase_if(pending, [&](const TChange* aOne) {
        const bool hit = change.iKind == EKind::SyncFolder
                             ? aOne->iKind == EKind::Name
                             : aOne->iKind != EKind::Name && aOne->iFile == change.iFile;
        if (hit) Apply(*aOne, aDisk);
        return hit;
      });
    }
  }
  return pending;
}

PowerLoss::TDisk PowerLoss::Now(size_t aCount) const {
  TDisk disk;
  for (const TChange* change : Pending(aCount, disk)) Apply(*change, disk);
  return disk;
}

void PowerLoss::GoBackTo(size_t aCount) {
  iSteps.resize(aCount);
  const TDisk disk = Now(aCount);
  Make(iFolder, Seen(disk));
  iNow = disk.iNames;
  iFileOfNode.clear();
  for (auto it = iNow.begin(); it != iNow.end(); ++it) {
    Know(iFolder + u'/' + it.key(), it.value());
    iLens[static_cast<size_t>(it.value())] = disk.iFiles[static_cast<size_t>(it.value())].iLen;
  }
}

void PowerLoss::ForEachState(size_t aCount, int aRandom,
                             const std::function<void(const TFolderState&)>& aDo) const {
  TDisk sure;
  const std::vector<const TChange*> pending = Pending(aCount, sure);
  QSet<size_t> seen;
  const auto make = [&](const std::function<bool(size_t)>& aHas) {
    TDisk disk = sure;
    for (size_t i = 0; i < pending.size(); ++i)
      if (aHas(i)) Apply(*pending[i], disk);
    const TFolderState state = Seen(disk);
    const size_t hash = qHashRange(state.keyValueBegin(), state.keyValueEnd());
    if (seen.contains(hash)) return;
    seen.insert(hash);
    aDo(state);
  };
  make([](size_t) { return false; });
  make([](size_t) { return true; });
  for (size_t one = 0; one < pending.size() && !testing::Test::HasFailure(); ++one) {
    make([one](size_t aAt) { return aAt == one; });
    make([one](size_t aAt) { return aAt != one; });
  }
  std::mt19937 random(static_cast<unsigned>(aCount));
  for (int i = 0; i < aRandom && !testing::Test::HasFailure(); ++i)
    make([&random](size_t) { return random() % 2 == 0; });
}
