// The commands of the picture menu.
#pragma once

#include "toolkit/CVelumFileDialog.h"

// They work on the picture field that has the focus in the card window, and do nothing without one.
class CVelumPictureCommands {
public:
  explicit CVelumPictureCommands(QWidget& aFrame);

  // Asks for a file and brings it into the field.
  void ImportPicFile();
  // Shows the field's picture in full.
  void ShowPicture();

private:
  QWidget& iFrame;
  CVelumFileDialog fImportPicDialog;
};
