// A frame for a picture.
#pragma once

#include "toolkit/CVelumBaseControl.h"

#include <QPixmap>

class QLabel;

class CVelumBasePictureBox final : public CVelumBaseControl {
public:
  CVelumBasePictureBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // A null picture empties the box.
  void SetPicture(const QPixmap& aPicture);
  [[nodiscard]] QPixmap Picture() const { return iPicture; }
  // Without a frame the box is also transparent.
  void SetFrame(bool aOn);
  void SetPlaceholder(const QString& aText) override;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  QLabel* iLabel;
  QPixmap iPicture;
};
