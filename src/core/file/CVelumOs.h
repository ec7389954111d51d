// The system calls by which the program touches files, in one place: so that their failures become host
// errors that carry the path, and so that a test can let any one of them fail.
#pragma once

#include "core/CVelumError.h"

#include <functional>

// Kinds of calls, as a test sees them.
enum class EOsCall { Open, Read, Write, Truncate, Sync, SyncFolder, Rename, Link, Unlink, Lock, Chmod, Wait };

// A call that has changed something, or brought it to the disk.
struct TVelumOsStep {
  EOsCall iCall;
  QString iPath;                // of a rename or link the new name; of SyncFolder the folder
  int iFd = -1;                 // of calls on an open file
  QString iFrom = {};           // of a rename or link the old name
  qint64 iPos = -1;             // of a write; -1: where the descriptor stood
  const char* iBytes = nullptr; // of a write
  qint64 iLen = 0;              // of a write; of Truncate the size
};

// Asked before every call. Tests install one; the program has none.
class CVelumFaults {
public:
  virtual ~CVelumFaults() = default;
  // 0 lets the call happen, otherwise it fails with that errno. aLen is the byte count of a Write; a
  // failing write that sets it to a smaller one has written so many bytes before it fails.
  virtual int Before(EOsCall aCall, const QString& aPath, qint64& aLen) = 0;
  // Told of every Open, Write, Truncate, Sync, SyncFolder, Rename, Link and Unlink that was done.
  virtual void Done(const TVelumOsStep& aStep) { static_cast<void>(aStep); }
};

// What tells one state of a file from another.
struct TVelumFileId {
  quint64 iDevice = 0;
  quint64 iNode = 0;
  qint64 iSize = -1; // bytes; -1 when there is no such file
  qint64 iTime = 0;  // last modification, nanoseconds

  [[nodiscard]] bool Exists() const { return iSize >= 0; }
  [[nodiscard]] bool SameFile(const TVelumFileId& aOther) const {
    return iDevice == aOther.iDevice && iNode == aOther.iNode;
  }
  bool operator==(const TVelumFileId&) const = default;
};

namespace CVelumOs {

// Installs the fault source of a test; null removes it.
void SetFaults(CVelumFaults* aFaults);

// For calls that stand elsewhere: raises what a test wants of this one.
void MayFail(EOsCall aCall, const QString& aPath);
// Raises the host error of an errno, with aPath and the system's text behind the plain description.
[[noreturn]] void Raise(int aErrno, const QString& aPath);

// Whether an errno says that something is there but must not be used that way.
[[nodiscard]] bool IsDenied(int aErrno);

// A descriptor (flags of open(2), close-on-exec added), or -1 with errno set. A new file gets aMode.
[[nodiscard]] int Open(const QString& aPath, int aFlags, unsigned aMode = 0666);
void Close(int aFd);
// Reads up to aLen bytes at aPos; less only at the end of the file. Raises.
[[nodiscard]] qint64 ReadAt(int aFd, const QString& aPath, char* aTo, qint64 aLen, qint64 aPos);
// Reads up to aLen bytes from where the descriptor stands; 0 at the end. Raises.
[[nodiscard]] qint64 Read(int aFd, const QString& aPath, char* aTo, qint64 aLen);
// Writes all bytes at aPos. Raises.
void WriteAt(int aFd, const QString& aPath, const char* aFrom, qint64 aLen, qint64 aPos);
// Writes all bytes where the descriptor stands. Raises.
void Write(int aFd, const QString& aPath, const char* aFrom, qint64 aLen);
void Truncate(int aFd, const QString& aPath, qint64 aSize);
// Brings a file's bytes to the disk. Raises.
void Sync(int aFd, const QString& aPath);
// Brings the entries of the folder that holds aPath to the disk. Raises.
void SyncFolderOf(const QString& aPath);
void Rename(const QString& aFrom, const QString& aTo);
// False when the file system has no hard links; raises on other failures.
[[nodiscard]] bool Link(const QString& aFrom, const QString& aTo);
// A file that is not there is no failure.
void Unlink(const QString& aPath);
// Unlink where a failure changes nothing.
void RemoveQuietly(const QString& aPath);
// Takes the lock of a file without waiting; false when another holder has it. On file systems without locks
// it is always had.
[[nodiscard]] bool TryLock(int aFd, const QString& aPath);
// Takes a shared lock without waiting, instead of the other if that is held; false when another holder has
// the file for itself alone. A lock that was held before is then gone.
[[nodiscard]] bool TryLockShared(int aFd, const QString& aPath);
// Gives up whatever lock there is.
void Unlock(int aFd);
// Asks aTry again and again until it says true, for up to five seconds; false when it never did.
[[nodiscard]] bool WaitFor(const std::function<bool()>& aTry);
// Whether the file system and the rights of this process let the file, or the entries of the folder, at aPath
// be changed. What is not there, or cannot be looked at, counts as changeable: whoever tries hears of it.
[[nodiscard]] bool MayWrite(const QString& aPath);

// 0 where there is a file at aPath (or a pipe, or a device), EISDIR for a folder, otherwise the errno of
// looking.
[[nodiscard]] int WhyNoFile(const QString& aPath);
[[nodiscard]] bool IsRegular(int aFd);
[[nodiscard]] bool IsFolder(int aFd);
[[nodiscard]] TVelumFileId IdOf(const QString& aPath);
[[nodiscard]] TVelumFileId IdOf(int aFd);
// aPath with all symbolic links followed as the system follows them, also when the last target does not
// exist.
[[nodiscard]] QString RealPath(const QString& aPath);
// The folder that holds aPath, as the path names it: without an end of its own, "." for a bare name.
[[nodiscard]] QString FolderOf(const QString& aPath);

} // namespace CVelumOs
