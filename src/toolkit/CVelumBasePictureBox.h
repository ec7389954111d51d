// A frame for a picture.
#pragma once

#include "toolkit/CVelumBaseControl.h"

#include <QPixmap>

class QLabel;
class QMimeData;

// The picture stands in the left upper corner; what is larger than the box is cut off. A click is one of the
// left button, pressed and let go inside the box.
class CVelumBasePictureBox final : public CVelumBaseControl {
  Q_OBJECT
public:
  CVelumBasePictureBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // A null picture empties the box.
  void SetPicture(const QPixmap& aPicture);
  [[nodiscard]] QPixmap Picture() const { return iPicture; }
  // The room inside the frame, in logical pixels.
  [[nodiscard]] QSize InnerSize() const;
  // Without a frame the box is also transparent.
  void SetFrame(bool aOn);
  // Shown while there is no picture.
  void SetPlaceholder(const QString& aText) override;
  // Lets the box have the focus (Space clicks, Enter double-clicks) and offers what is dropped on it or
  // pasted into it.
  void SetInteractive();
  // Whether data from elsewhere can hold a picture: a file, or the picture itself.
  [[nodiscard]] static bool CanHoldPicture(const QMimeData& aData);

Q_SIGNALS:
  // Data that can hold a picture was dropped or pasted.
  void Offered(const QMimeData& aData);

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  void ShowContent();
  [[nodiscard]] bool MouseDone(QEvent& aEvent);
  [[nodiscard]] bool KeyDone(QEvent& aEvent);
  [[nodiscard]] bool DropDone(QEvent& aEvent);
  void Offer(const QMimeData* aData);

  QLabel* iLabel;
  QPixmap iPicture;
  QString iPlaceholder;
  bool iPressed = false;
};
