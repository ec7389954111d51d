// Failing and counting system calls.
#pragma once

#include "core/file/CVelumOs.h"

#include <functional>

// Counts the calls that change something on the disk, and acts at the n-th of them. Installs itself, and is
// gone from the program at its end.
class FaultInjection final : public CVelumFaults {
public:
  static constexpr int EKilled = 99; // exit status of a process that was ended

  // What happens at the call that was chosen.
  enum class EAct {
    None, // only count
    Fail, // this call fails, a write after half its blocks
    Stay, // this and all later calls fail
    Kill  // the process ends there, a write after half its blocks
  };

  explicit FaultInjection(EAct aAct = EAct::None, int aAt = -1, int aErrno = 28 /* ENOSPC */)
      : iAct(aAct), iAt(aAt), iErrno(aErrno) {
    CVelumOs::SetFaults(this);
  }
  ~FaultInjection() override { CVelumOs::SetFaults(nullptr); }
  FaultInjection(const FaultInjection&) = delete;
  FaultInjection& operator=(const FaultInjection&) = delete;

  // Calls counted so far.
  [[nodiscard]] int Count() const { return iCount; }
  // Whether the chosen call was reached.
  [[nodiscard]] bool Hit() const { return iHit; }
  // Only calls of one kind count (and reads only when they are the kind chosen).
  void Only(EOsCall aCall) {
    iOnly = aCall;
    iHasOnly = true;
  }

  int Before(EOsCall aCall, const QString& aPath, qint64& aLen) override;

private:
  [[nodiscard]] bool Counts(EOsCall aCall) const {
    return iHasOnly ? aCall == iOnly : aCall != EOsCall::Read;
  }

  EAct iAct;
  int iAt;
  int iErrno;
  int iCount = 0;
  bool iHit = false;
  bool iHasOnly = false;
  bool iDying = false;
  EOsCall iOnly = EOsCall::Write;
};
