// The open stack of a command: what HandleLoadStack is to the desktop program.
#pragma once

#include "cli/CVelumCommand.h"
#include "exchange/CVelumStep.h"
#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

class CVelumTerminal;

struct TVelumOpenStack {
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};

namespace CVelumCliStack {

// Loads a stack file and makes it gStack. Throws as the loader does; order corrections are told.
[[nodiscard]] TVelumOpenStack Open(const QString& aPath);
// Throws EMsgBackgroundNotFound when the stack has no background of that name.
[[nodiscard]] Ref<CVelumControlSet> BackgroundByName(const CVelumStack& aStack, const QString& aName);
// That of --background; the only one without the option. Throws TVelumUsage where it is one of several.
[[nodiscard]] Ref<CVelumControlSet> ChosenBackground(const CVelumStack& aStack, const TVelumArgs& aArgs);
// aText with a blank for each line end, so that it stays on one line of output.
[[nodiscard]] QString OneLine(QString aText);

// Shows how far long work is while it exists.
class CProgress {
public:
  explicit CProgress(CVelumTerminal& aTerminal) : iTerminal(aTerminal) {}
  ~CProgress();
  CProgress(const CProgress&) = delete;
  CProgress& operator=(const CProgress&) = delete;
  // What the work is to call; never gives up.
  [[nodiscard]] TVelumStep Step() const;

private:
  CVelumTerminal& iTerminal;
};

} // namespace CVelumCliStack
