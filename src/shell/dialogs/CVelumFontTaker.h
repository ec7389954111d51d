// What a window that wants a font is besides its widget.
#pragma once

#include "model/CVelumFont.h"

class CVelumFontTaker {
public:
  virtual ~CVelumFontTaker() = default;
  // Takes the font that was chosen. aCase is what the window gave when it asked.
  virtual void SetFont(int aCase, const Ref<CVelumFont>& aFont) = 0;
};
