#include "persist/CVelumRecovery.h"

#include "core/file/CVelumOs.h"
#include "persist/CVelumJournal.h"
#include "persist/CVelumJournalReader.h"
#include "persist/CVelumNewFile.h"

#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>

using EFit = CVelumJournalReader::EFit;

namespace {

[[noreturn]] void RaiseInTheWay(const QString& aName, const QString& aWhy) {
  CVelumError::RaiseHost(
      EHostPermissionDenied,
      u"%1 (%2). It bears the name of the file that a save keeps the old document in. Move "
      "it to another place, or make it readable, and open the document again"_s.arg(aName, aWhy));
}

// An open file that closes itself.
class CFd {
public:
  explicit CFd(int aFd) : iFd(aFd) {}
  ~CFd() { CVelumOs::Close(iFd); }
  CFd(const CFd&) = delete;
  CFd& operator=(const CFd&) = delete;
  operator int() const { return iFd; }

private:
  int iFd;
};

// The journal of a document, open, locked and written to its end. There is none when Fd is negative.
class CHeldJournal {
public:
  // Only to be read with O_RDONLY: then nothing is removed, and a journal that is not whole is none.
  explicit CHeldJournal(const QString& aPath, int aAccess = O_RDWR)
      : iPath(aPath), iName(CVelumJournal::NameFor(aPath)), iAccess(aAccess) {
    while (!Hold()) {
    }
  }
  ~CHeldJournal() { CVelumOs::Close(iFd); }
  CHeldJournal(const CHeldJournal&) = delete;
  CHeldJournal& operator=(const CHeldJournal&) = delete;

  [[nodiscard]] int Fd() const { return iFd; }
  [[nodiscard]] const QString& Name() const { return iName; }
  // What is in the document is on the disk before the journal goes.
  void Remove() {
    CVelumOs::Unlink(iName);
    CVelumOs::SyncFolderOf(iName);
  }
  void SetAside() {
    CVelumOs::Rename(iName, iName + u"-unused"_s);
    CVelumOs::SyncFolderOf(iName);
  }

private:
  bool Hold();
  void Open();
  [[nodiscard]] bool IsMine() const;

  QString iPath;
  QString iName;
  int iAccess;
  int iFd = -1;
};

void CHeldJournal::Open() {
  iFd = CVelumOs::Open(iName, iAccess | O_NOFOLLOW | O_NONBLOCK);
  if (iFd < 0 && errno == ENOENT) return;
  if (iFd < 0 && iAccess == O_RDONLY)
    CVelumError::RaiseHost(
        EHostPermissionDenied,
        u"%1 (%2). A save of the document was cut off, and it can only be read here; somebody "
        u"who may write to it has to open it first"_s.arg(iName, QString::fromLocal8Bit(strerror(errno))));
  if (iFd < 0) RaiseInTheWay(iName, QString::fromLocal8Bit(strerror(errno)));
  if (!CVelumOs::IsRegular(iFd)) RaiseInTheWay(iName, u"no file"_s);
}

// Who had the lock before may have finished, its journal be gone, and another one stand there.
bool CHeldJournal::IsMine() const {
  return CVelumOs::IdOf(iName).SameFile(CVelumOs::IdOf(iFd));
}

// False when it has to be tried again.
bool CHeldJournal::Hold() {
  CVelumOs::Close(std::exchange(iFd, -1));
  Open();
  if (iFd < 0) return true;
  if (!CVelumOs::WaitFor([this] { return CVelumOs::TryLock(iFd, iName); }))
    CVelumError::RaiseHost(EHostPermissionDenied, iPath + u" (another program is saving it)"_s);
  if (!IsMine()) return false;
  if (CVelumJournalReader(iFd, iName).IsWhole()) return true;
  // Its save had not begun to touch the document.
  if (iAccess == O_RDWR) Remove();
  if (iAccess == O_RDONLY) CVelumOs::Close(std::exchange(iFd, -1));
  return iAccess == O_RDONLY;
}

int OpenDocument(const QString& aPath) {
  const int fd = CVelumOs::Open(aPath, O_RDWR);
  if (fd < 0) CVelumOs::Raise(errno, aPath);
  return fd;
}

// A journal belongs to a binary document. Nothing half-written begins like a text.
bool IsText(int aDoc, const QString& aPath) {
  char first = 0;
  return CVelumOs::ReadAt(aDoc, aPath, &first, 1, 0) == 1 && first == '<';
}

EFit Fit(CVelumJournalReader& aReader, int aDoc, const QString& aPath) {
  return IsText(aDoc, aPath) ? EFit::Doubt : aReader.Compare(aDoc, aPath);
}

// The whole of aPatch over aDoc, as a file of its own.
void WriteCopy(CVelumFilePatch& aPatch, int aDoc, const QString& aPath, const QString& aCopy) {
  constexpr qint64 EPiece = 1 << 20;
  CVelumNewFile copy(aCopy);
  QByteArray piece(EPiece, Qt::Uninitialized);
  qint64 pos = 0;
  while (const qint64 len = aPatch.ReadAt(aDoc, aPath, piece.data(), EPiece, pos)) {
    CVelumOs::WriteAt(copy.Fd(), copy.Path(), piece.constData(), len, pos);
    pos += len;
  }
  copy.TakePlace(aPath);
}

} // namespace

CVelumRecovery::EFound CVelumRecovery::Run(const QString& aPath) {
  CVelumNewFile::RemoveLeft(aPath);
  CHeldJournal journal(aPath);
  if (journal.Fd() < 0) return EFound::Nothing;
  if (!CVelumOs::IdOf(aPath).Exists()) {
    journal.SetAside();
    return EFound::Nothing;
  }
  CFd doc(OpenDocument(aPath));
  CVelumJournalReader reader(journal.Fd(), journal.Name());
  const EFit fit = Fit(reader, doc, aPath);
  if (fit == EFit::Doubt) return EFound::Doubt;
  if (fit == EFit::CutOff)
    reader.PutBack(doc, aPath);
  else
    CVelumOs::Sync(doc, aPath);
  journal.Remove();
  return fit == EFit::CutOff ? EFound::Restored : EFound::Nothing;
}

Ref<CVelumFilePatch> CVelumRecovery::OldBytes(const QString& aPath, int aDoc) {
  const CHeldJournal journal(aPath, O_RDONLY);
  if (journal.Fd() < 0) return nullptr;
  CVelumJournalReader reader(journal.Fd(), journal.Name());
  const EFit fit = Fit(reader, aDoc, aPath);
  if (fit == EFit::Doubt)
    CVelumError::RaiseHost(
        EHostPermissionDenied,
        u"%1 (a save of it was cut off, and it has been changed since by something else). It "
        u"can only be read here: copy it with %2 to a folder of your own, and open it there"_s.arg(
            aPath, journal.Name()));
  return fit == EFit::CutOff ? reader.OldBytes(aDoc, aPath) : nullptr;
}

QString CVelumRecovery::BuildOld(const QString& aPath) {
  CHeldJournal journal(aPath);
  if (journal.Fd() < 0) CVelumOs::Raise(ENOENT, journal.Name());
  const QDateTime time = QFileInfo(journal.Name()).lastModified();
  const QString name = CVelumBesideName::Dated(aPath, u"before the crash"_s, time);
  if (CVelumOs::IdOf(name).Exists()) return name;
  CFd doc(OpenDocument(aPath));
  CVelumJournalReader reader(journal.Fd(), journal.Name());
  const Ref<CVelumFilePatch> old = reader.OldBytes(doc, aPath);
  WriteCopy(*old, doc, aPath, name);
  return name;
}

void CVelumRecovery::Dismiss(const QString& aPath) {
  CHeldJournal journal(aPath);
  if (journal.Fd() >= 0) journal.Remove();
}

QString CVelumRecovery::DoubtText(const QString& aPath, const QString& aOld) {
  return u"A save of %1 was cut off, and that file has been changed since by something else, so nothing in "
         u"it was "
         "touched. The document as it was before that save stands beside it as %2."_s.arg(aPath, aOld);
}
