// Pending window events and the wait cursor.
#pragma once

#include "core/CVelumSeams.h"

// Needs a running QApplication. Install it with CVelumSeams::SetEventPump.
class CVelumToolkitPump final : public CVelumEventPump {
public:
  ~CVelumToolkitPump() override;
  void Pump() override;
  // Paints, timers and queued calls; keys, clicks and close requests wait.
  void PumpPaint() override;
  // Counts nothing: on twice is on.
  void SetWaitCursor(bool aOn) override;

private:
  bool iWaiting = false;
};
