// Memory that runs out while cards enter a stack.
#pragma once

#include "model/change/CVelumRecorder.h"

#include <new>

// Throws when the recorder weighs one of the cards that are added.
class CFailingTaker final : public CVelumChangeTaker {
public:
  explicit CFailingTaker(int aAt) : iLeft(aAt) {}
  void Take(CVelumChangeGroup, bool) override {}
  [[nodiscard]] qint64 Bound() const override {
    if (--iLeft == 0) throw std::bad_alloc();
    return std::numeric_limits<qint64>::max();
  }

private:
  mutable int iLeft;
};
