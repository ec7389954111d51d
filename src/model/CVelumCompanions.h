// What a control carries at run time while a window shows it: a list box and a wiki text box. The model
// only knows their operations; the rooms above make and bind them.
#pragma once

#include "core/CVelumArray.h"

#include <QList>
#include <QObject>

class CVelumFont;

// Wrapper of a list or of a combo's list. Lines and their objects are kept here whether or not a widget
// shows them.
class CVelumListBoxBase : public CVelumObject {
public:
  // 0: a list with columns; 1: the list of a combo box.
  [[nodiscard]] virtual int LisType() const = 0;
  virtual void SetFlag4(bool aOn) = 0;
  virtual void Clear() = 0;
  virtual void AddLine(const QString& aLine, const Ref<CVelumObject>& aObj) = 0;
  [[nodiscard]] virtual int NumLines() const = 0;
  [[nodiscard]] virtual QString Line(int aIndex) const = 0;
  // Widths in twips.
  virtual void DefineColumns(const QList<QString>& aTitles, const QList<float>& aWidths) = 0;
  virtual void Define1Column(const QString& aTitle) = 0;
  virtual void Show() = 0;
  // aBase is the toolkit control that shows the list, or null.
  virtual void SetBaseObj(QObject* aBase) = 0;
};

class CVelumWikiTextBoxBase : public CVelumObject {
public:
  virtual void SetStr(const QString& aStr) = 0;
  virtual void SetFont(const CVelumFont& aFont) = 0;
};

// Makes the companions; without one installed, controls have none but a plain line store.
class CVelumCompanionFactory {
public:
  virtual ~CVelumCompanionFactory() = default;
  virtual Ref<CVelumListBoxBase> NewListBox(int aLisType) = 0;
  virtual Ref<CVelumWikiTextBoxBase> NewWikiTextBox() = 0;
};

namespace CVelumCompanions {
[[nodiscard]] Ref<CVelumListBoxBase> NewListBox(int aLisType);
[[nodiscard]] Ref<CVelumWikiTextBoxBase> NewWikiTextBox();
void SetFactory(CVelumCompanionFactory* aFactory);
} // namespace CVelumCompanions
