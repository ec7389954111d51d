#include "support/SteppedProgram.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// In the program: asks the test before each call.
class CAsk final : public CVelumFaults {
public:
  explicit CAsk(int aFd) : iFd(aFd) { CVelumOs::SetFaults(this); }
  int Before(EOsCall aCall, const QString&, qint64&) override {
    const char what = aCall == EOsCall::Wait ? 'w' : 'c';
    char answer = 0;
    if (::write(iFd, &what, 1) != 1 || ::read(iFd, &answer, 1) != 1) ::_exit(101);
    return answer == 'x' && aCall == EOsCall::Wait ? 1 : 0;
  }

private:
  int iFd;
};

} // namespace

SteppedProgram::SteppedProgram(const std::function<int()>& aWork) {
  int fds[2];
  EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
  iPid = ::fork();
  if (iPid == 0) {
    ::close(fds[0]);
    CAsk ask(fds[1]);
    int status = 101;
    try {
      status = aWork();
    } catch (...) { // told by the status
    }
    ::_exit(status);
  }
  ::close(fds[1]);
  iFd = fds[0];
  Listen();
}

SteppedProgram::~SteppedProgram() {
  if (iState != EState::Ended) {
    ::kill(iPid, SIGKILL);
    ::waitpid(iPid, nullptr, 0);
  }
  ::close(iFd);
}

void SteppedProgram::Listen() {
  char what = 0;
  if (::read(iFd, &what, 1) == 1) {
    iState = what == 'w' ? EState::Waiting : EState::Ready;
    return;
  }
  iState = EState::Ended;
  int status = 0;
  ::waitpid(iPid, &status, 0);
  iStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void SteppedProgram::Tell(char aWhat) {
  if (iState == EState::Ended) return;
  EXPECT_EQ(::write(iFd, &aWhat, 1), 1);
  Listen();
}

void SteppedProgram::Run(int aSteps) {
  for (int i = 0; i < aSteps && iState == EState::Ready; ++i) Step();
}
