// What the window manager needs to know of a window.
#pragma once

#include "core/CVelumObject.h"

#include <QRectF>
#include <QString>

class QWidget;

// A window with a name, which is its key in the window manager and in the stored positions. A class derives
// from a Qt widget and from this. One life: Load before it is first shown, ChangeNotify while it is loaded,
// Unload at its end; after that the widget is deleted and the next use of the name makes a new one.
class CVelumForm {
public:
  // A window that is not aSizable keeps the size of its design.
  CVelumForm(QString aName, bool aSizable);
  // A form that is still loaded is forgotten without its Unload.
  virtual ~CVelumForm();
  CVelumForm(const CVelumForm&) = delete;
  CVelumForm& operator=(const CVelumForm&) = delete;

  [[nodiscard]] const QString& Name() const { return iName; }
  [[nodiscard]] bool Sizable() const { return iSizable; }
  [[nodiscard]] bool IsLoaded() const { return iLoaded; }
  // The widget that this object is.
  [[nodiscard]] virtual QWidget* Widget() = 0;

  // Restores the place, fills the lists, shows the model.
  virtual void Load();
  // Keeps the place and lets go of what the form held.
  virtual void Unload();
  // aKind is an EChange.
  virtual void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2);

  // Whether something was entered that the document has not got, and letting go of it: the form then shows
  // the document.
  [[nodiscard]] virtual bool HasEntries() const { return false; }
  virtual void DropEntries() {}

  // Left, top, width and height in twips: of the child window when the form stands in a CVelumMdiArea,
  // otherwise of the top-level window (position of its frame, size of its content).
  [[nodiscard]] QRectF Place();
  // The size that there is at present, in twips, counted as in Place: also of a maximised child window.
  [[nodiscard]] QSizeF OuterSize();
  // Moves; takes the size too if aWithSize.
  void SetPlace(const QRectF& aPlace, bool aWithSize);

private:
  friend class CVelumFormList;

  QString iName;
  bool iSizable;
  bool iLoaded = false;
};
