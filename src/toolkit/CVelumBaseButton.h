// A command button with a caption or a picture.
#pragma once

#include "toolkit/CVelumBaseControl.h"

#include <QIcon>

class QPushButton;

class CVelumBaseButton final : public CVelumBaseControl {
public:
  CVelumBaseButton(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  [[nodiscard]] QString Text() const override;
  // "&" stands for itself.
  void SetText(const QString& aText) override;
  // A null icon takes the picture away. aToolTip tells what the picture means. A picture in the colours of
  // the desktop that could not be seen on the button takes the colour of its text.
  void SetPicture(const QIcon& aIcon, const QString& aToolTip);
  [[nodiscard]] bool HasPicture() const;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void ShowPicture();

  QPushButton* iButton;
  QString iCaption;
  QIcon iPicture;
};
