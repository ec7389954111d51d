// The choice not to see a message again.
#pragma once

#include <utility>

// While one lives, message boxes offer that choice and note it here. One at a time.
class CVelumSilence {
public:
  CVelumSilence() : iBefore(std::exchange(iCurrent, this)) {}
  ~CVelumSilence() { iCurrent = iBefore; }
  CVelumSilence(const CVelumSilence&) = delete;
  CVelumSilence& operator=(const CVelumSilence&) = delete;

  // Null when messages come without the choice.
  [[nodiscard]] static CVelumSilence* Current() { return iCurrent; }
  [[nodiscard]] bool Chosen() const { return iChosen; }
  void SetChosen() { iChosen = true; }

private:
  inline static CVelumSilence* iCurrent = nullptr;
  CVelumSilence* iBefore;
  bool iChosen = false;
};
