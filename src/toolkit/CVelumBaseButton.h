// A command button with a caption or a picture.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class QIcon;
class QPushButton;

class CVelumBaseButton final : public CVelumBaseControl {
public:
  CVelumBaseButton(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  [[nodiscard]] QString Text() const override;
  // "&" stands for itself.
  void SetText(const QString& aText) override;
  // A null icon takes the picture away. aToolTip tells what the picture means.
  void SetPicture(const QIcon& aIcon, const QString& aToolTip);
  [[nodiscard]] bool HasPicture() const;

private:
  QPushButton* iButton;
  QString iCaption;
};
