// What a power failure can leave of a folder.
#pragma once

#include "core/file/CVelumOs.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>
#include <vector>

// The files of a folder by name, without folders in it.
using TFolderState = QMap<QString, QByteArray>;

// Notes the calls by which the program changes one folder, and tells which states the disk may be in when the
// power fails after any of them. Nothing that was not brought to the disk can be relied on: each block of 512
// bytes of a write, each change of a length, and each change of the folder may have reached the disk or not,
// in any order. What was there when the log began is on the disk. Installs itself while it notes.
class PowerLoss final : public CVelumFaults {
public:
  // aFolder holds what is on the disk.
  explicit PowerLoss(QString aFolder);
  ~PowerLoss() override { End(); }
  PowerLoss(const PowerLoss&) = delete;
  PowerLoss& operator=(const PowerLoss&) = delete;

  // The call that changes something at this number (from 0) fails.
  void FailAt(int aNum) { iFailAt = aNum; }
  [[nodiscard]] bool Failed() const { return iFailed; }
  // Calls that had been noted then.
  [[nodiscard]] size_t FailedAt() const { return iFailedAt; }
  void Begin() { CVelumOs::SetFaults(this); }
  void End() { CVelumOs::SetFaults(nullptr); }

  // Calls noted so far.
  [[nodiscard]] size_t Count() const { return iSteps.size(); }
  // What programs see in the folder after the first aCount calls.
  [[nodiscard]] TFolderState SeenAfter(size_t aCount) const { return Seen(Now(aCount)); }
  // Forgets the calls from number aCount on, and makes the folder what programs then see in it (all that was
  // done, whether on the disk or not): as after the end of a program.
  void GoBackTo(size_t aCount);
  // Calls aDo with states that a power failure after the first aCount calls can leave: with nothing and with
  // all of what was not brought to the disk, without each one and with only one of it, and with aRandom
  // choices.
  void ForEachState(size_t aCount, int aRandom, const std::function<void(const TFolderState&)>& aDo) const;

  // Makes a folder what aState says.
  static void Make(const QString& aFolder, const TFolderState& aState);
  [[nodiscard]] static TFolderState StateOf(const QString& aFolder);

  int Before(EOsCall aCall, const QString& aPath, qint64& aLen) override;
  void Done(const TVelumOsStep& aStep) override;

private:
  enum class EKind { Data, Extend, Cut, Sync, Name, SyncFolder };
  // A thing that reaches the disk or not as a whole.
  struct TChange {
    EKind iKind;
    int iFile = -1;     // of all but SyncFolder; of Name: the file that gets the name, -1 for none
    qint64 iPos = 0;    // of Data; the length of Extend and Cut
    QByteArray iBytes;  // of Data
    QString iName = {}; // of Name
    QString iFrom = {}; // of Name: the name that goes
  };
  using TStep = std::vector<TChange>; // of one call
  struct TFile {
    QByteArray iBytes;
    qint64 iLen = 0;
  };
  struct TDisk {
    std::vector<TFile> iFiles;
    QMap<QString, int> iNames;
  };

  [[nodiscard]] int FileOf(int aFd);
  void Name(const TVelumOsStep& aStep, TStep& aTo);
  void Write(const TVelumOsStep& aStep, TStep& aTo);
  void Open(const TVelumOsStep& aStep, TStep& aTo);
  void Know(const QString& aPath, int aFile);
  static void Apply(const TChange& aChange, TDisk& aDisk);
  [[nodiscard]] static TFolderState Seen(const TDisk& aDisk);
  [[nodiscard]] std::vector<const TChange*> Pending(size_t aCount, TDisk& aDisk) const;
  [[nodiscard]] TDisk Now(size_t aCount) const;

  QString iFolder;
  TDisk iStart;
  std::vector<TStep> iSteps;
  QMap<quint64, int> iFileOfNode; // by inode, as it is at the moment
  QMap<QString, int> iNow;        // the names at the moment
  std::vector<qint64> iLens;      // of the files at the moment
  int iFailAt = -1;
  int iCalls = 0;
  size_t iFailedAt = 0;
  bool iFailed = false;
};
