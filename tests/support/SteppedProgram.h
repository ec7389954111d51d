// A second program that a test lets run call by call.
#pragma once

#include "core/file/CVelumOs.h"

#include <functional>

#include <sys/types.h>

// Runs a piece of work in a process of its own. It stops before each call of CVelumOs, reads and locks too,
// until the test lets it go on. What the test has open at the start is the program's too, locks included; so
// that should be nothing.
class SteppedProgram {
public:
  enum class EState {
    Ready,   // stands before a call
    Waiting, // stands before another try for a lock
    Ended
  };

  // aWork returns the program's status, 0 to 100.
  explicit SteppedProgram(const std::function<int()>& aWork);
  // Ends it where it stands.
  ~SteppedProgram();
  SteppedProgram(const SteppedProgram&) = delete;
  SteppedProgram& operator=(const SteppedProgram&) = delete;

  [[nodiscard]] EState State() const { return iState; }
  // Lets it do the call that it stands before.
  void Step() { Tell('g'); }
  // Tells it that the time for waiting is over.
  void GiveUp() { Tell('x'); }
  // Up to aSteps calls; less when it ends or has to wait.
  void Run(int aSteps);
  // What the work returned; -1 when the process crashed.
  [[nodiscard]] int Status() const { return iStatus; }

private:
  void Tell(char aWhat);
  void Listen();

  pid_t iPid = -1;
  int iFd = -1;
  EState iState = EState::Ready;
  int iStatus = -1;
};
