// The wrapper around the list widgets of the program.
#pragma once

#include "model/CVelumFont.h"
#include "model/fields/CVelumCompanions.h"
#include "toolkit/CVelumLineSource.h"

#include <QPointer>
#include <memory>

class CVelumComboWidget;
class CVelumListWidget;
class QWidget;

// Flags of a list box.
enum ELisFlag : qint32 {
  ELisFollowHeight = 1, // Resize gives the list the height of the form
  ELisFollowWidth = 2,  // ... and the width
  ELisOwnFont = 4,      // the font is applied to the widget rather than only kept
};

// Lines that are made when they are asked for: for a list so long that none may be made before it is seen.
class CVelumLineProvider : public CVelumLineSource {
public:
  [[nodiscard]] virtual QString Line(int aIndex) const = 0;
  [[nodiscard]] virtual Ref<CVelumObject> Obj(int aIndex) const = 0;
  // The first line of an object, or -1.
  [[nodiscard]] virtual int IndexOf(const CVelumObject* aObj) const = 0;
};

// Each line has a text, its columns parted by tabs, and an object or nothing. Lines are kept here; the
// widget, a CVelumListWidget or a CVelumComboWidget or a base control that holds one, asks for what it shows.
// A list box without a widget works too. Indices run from 0; wrong ones are host error 9 when the assertion
// was overruled.
class CVelumListBox final : public CVelumListBoxBase, private CVelumLineSource {
public:
  // Columns at most; one more is host error 9.
  static constexpr int EMaxCols = 101;

  // Not bound yet. Asserts "Construct TypeOf" for a type that is none of ELis.
  explicit CVelumListBox(int aType);
  // Bound to aObj, which stands in aForm; asserts "Construct TypeOf" when aObj is no widget of this type.
  CVelumListBox(int aType, QObject* aObj, QWidget* aForm);
  ~CVelumListBox() override;

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] int LisType() const override { return iType; }
  // Nothing for -1. Asserts "GetObj" with index and count.
  [[nodiscard]] Ref<CVelumObject> Obj(int aIndex) const;
  [[nodiscard]] QString Line(int aIndex) const override;
  [[nodiscard]] int NumLines() const override;
  // -1 when nothing is selected; of several lines the one used last.
  [[nodiscard]] int SelIndex() const;
  // All of them, in the order in which they are seen.
  [[nodiscard]] QList<int> SelIndexes() const;
  // Nothing, and the empty text, when nothing is selected.
  [[nodiscard]] Ref<CVelumObject> SelObj() const;
  [[nodiscard]] QString SelLine() const;

  [[nodiscard]] qint32 Flags() const { return iFlags; }
  void SetFlags(qint32 aFlags);
  [[nodiscard]] bool Flag(qint32 aBit) const { return (iFlags & aBit) != 0; }
  void SetFlag(qint32 aBit, bool aOn);
  void SetFlag4(bool aOn) override { SetFlag(ELisOwnFont, aOn); }
  [[nodiscard]] Ref<CVelumFont> Font() const { return iFont; }
  // Nothing stands for the default font.
  void SetFont(const Ref<CVelumFont>& aFont) override;
  // Gives the font to the widget; without the flag for an own font the default size is that of the desktop.
  void ShowFont();
  [[nodiscard]] QObject* BaseObj() const { return iBaseObj; }
  void SetBaseObj(QObject* aBase) override;
  // While lines are being defined AddLine does not touch the widget.
  [[nodiscard]] bool Hold() const { return iHold; }
  void SetHold(bool aHold) { iHold = aHold; }

  // For type 0 alone: asserts "DefineColums ELisSingle". Widths in twips, fractions of UsableWidth.
  void DefineColumns(const QList<QString>& aTitles, const QList<float>& aWidths) override;
  void DefineColumnsFrac(const QList<QString>& aTitles, const QList<float>& aFractions);
  void Define1Column(const QString& aTitle) override;
  // "title:width,title:width", at most 21. All widths up to 1.0: fractions, else twips.
  void DefineColumnsList(const QString& aList);
  [[nodiscard]] int NumCols() const { return static_cast<int>(iColTitles.size()); }
  [[nodiscard]] const QList<QString>& ColTitles() const { return iColTitles; }
  [[nodiscard]] const QList<float>& ColWidths() const { return iColWidths; }
  [[nodiscard]] bool ColsFrac() const { return iColsFrac; }

  void AddLine(const QString& aLine, const Ref<CVelumObject>& aObj) override;
  void CreateLineAt(int aIndex, const QString& aLine, const Ref<CVelumObject>& aObj);
  void ModifyLineAt(int aIndex, const QString& aLine, const Ref<CVelumObject>& aObj);
  // Each part of a comma list, at most 101, as a line without an object.
  void AddCommaList(const QString& aList);
  // Takes the lines from a provider in place of those that are kept; until Clear. Show brings them up. The
  // line of a selected object stays selected, and the list where it was scrolled.
  void SetProvider(std::unique_ptr<CVelumLineProvider> aProvider);
  // The line of a provider shows anew what the provider says.
  void RefreshLine(int aIndex);

  // For combos alone.
  void SetComboText(const QString& aStr); // asserts "SetComboText combo"
  void SetEmpty();                        // asserts "combo" in "SetEmpty"

  // The first line of that text exactly, or -1.
  [[nodiscard]] int FindInList(const QString& aLine) const;
  [[nodiscard]] bool IsInList(const QString& aLine) const { return FindInList(aLine) >= 0; }
  // The widget keeps its lines until Show.
  void Clear() override;
  void ClearAndShow();
  // Selects, makes visible and lets the toolkit paint; -1 selects nothing. Asserts "SetSelIndex index".
  void SetSelIndex(int aIndex);
  // Nothing is selected when no line is so.
  void SetSelIndexByLine(const QString& aLine);
  void GetObjIndex(const CVelumObject* aObj, int& aIndex, bool& aFound) const;
  // Asserts "found" in "SetSelIndexByObj".
  void SetSelIndexByObj(const CVelumObject* aObj);
  // Selects nothing for an index that is none.
  void SetSelIndexOrClear(int aIndex);
  void Show() override;
  // Fits the list to its form by the flags; fractional columns share the new width. A list that stands in a
  // layout of the toolkit has its size already.
  void Resize();

private:
  // CVelumLineSource
  [[nodiscard]] QString Part(int aLine, int aColumn) const override;
  [[nodiscard]] TVelumLineKey SortKey(int aLine, int aColumn) const override;

  void Bind(QObject* aBase);
  void Unbind();
  [[nodiscard]] bool Fits(const QObject* aBase) const;
  void SetColumns(const QList<QString>& aTitles, const QList<float>& aWidths, bool aFrac);
  void ApplyColumns();
  void CheckLine(int aIndex, const QString& aProc, const QString& aText, int aCount) const;

  int iType;
  qint32 iFlags = 0;
  QPointer<QObject> iBaseObj;
  QPointer<CVelumListWidget> iList;
  QPointer<CVelumComboWidget> iCombo;
  QMetaObject::Connection iResized;
  QList<QString> iLines;
  QList<Ref<CVelumObject>> iObjs;
  std::unique_ptr<CVelumLineProvider> iProvider;
  QPointer<QWidget> iForm;
  Ref<CVelumFont> iFont;
  QList<QString> iColTitles{QString()};
  QList<float> iColWidths{1.0F};
  bool iColsFrac = true;
  bool iHold = false;
  bool iStale = true; // the widget shows other lines than these
};
