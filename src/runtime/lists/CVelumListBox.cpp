#include "runtime/lists/CVelumListBox.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "runtime/CVelumRuntimeLib.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumListWidget.h"

#include <QLayout>
#include <algorithm>

namespace {

constexpr qsizetype EMaxListCols = 21;
constexpr qsizetype EMaxCommaParts = 101;
// Least size of a list that follows its form, and what stays free around it.
constexpr double EMinWidthMm = 20;
constexpr double EMinHeightMm = 15;
constexpr double EMarginMm = 2;

QList<QString> CommaParts(const QString& aList, qsizetype aMost) {
  QList<QString> parts;
  CVelumLib::SplitCommaList(aList, parts);
  if (parts.size() > aMost) CVelumError::RaiseHost(EHostIndex);
  return parts;
}

// The widget that an object of a form is, or holds.
QObject* WidgetOf(QObject* aBase) {
  const auto* base = qobject_cast<CVelumBaseControl*>(aBase);
  return base ? base->Widget() : aBase;
}

void SetTextColor(QWidget& aWidget, qint32 aColor) {
  const QPalette around = aWidget.parentWidget() ? aWidget.parentWidget()->palette() : QPalette();
  const TVelumColors colors = CVelumBaseColor::Resolve(aColor, ENoInt, around.color(QPalette::Base));
  QPalette palette;
  if (colors.iText.isValid()) palette.setColor(QPalette::Text, colors.iText);
  aWidget.setPalette(palette);
}

int MmToPixels(double aMm) {
  return static_cast<int>(CVelumLib::TwipsToPixels(CVelumLib::MmToTwips(aMm)));
}

} // namespace

CVelumListBox::CVelumListBox(int aType) : iType(aType) {
  const bool known = aType == ELisSingle || aType == ELisCombo;
  CVelumError::AssertObj(known, this, u"Construct"_s, u"Construct TypeOf"_s);
}

CVelumListBox::CVelumListBox(int aType, QObject* aObj, QWidget* aForm) : CVelumListBox(aType) {
  iForm = aForm;
  CVelumError::AssertObj(Fits(aObj), this, u"Construct"_s, u"Construct TypeOf"_s);
  SetBaseObj(aObj);
}

CVelumListBox::~CVelumListBox() {
  Unbind();
}

QString CVelumListBox::ObjDescr() const {
  return u"CVelumListBox type=%1,numLines=%2"_s.arg(iType).arg(NumLines());
}

bool CVelumListBox::Fits(const QObject* aBase) const {
  QObject* widget = WidgetOf(const_cast<QObject*>(aBase));
  if (iType == ELisSingle) return qobject_cast<CVelumListWidget*>(widget) != nullptr;
  return iType == ELisCombo && qobject_cast<CVelumComboWidget*>(widget) != nullptr;
}

void CVelumListBox::SetBaseObj(QObject* aBase) {
  Unbind();
  if (aBase && Fits(aBase)) Bind(aBase);
}

void CVelumListBox::Bind(QObject* aBase) {
  iBaseObj = aBase;
  iStale = true;
  if (iType == ELisCombo) {
    iCombo = qobject_cast<CVelumComboWidget*>(WidgetOf(aBase));
  } else {
    iList = qobject_cast<CVelumListWidget*>(WidgetOf(aBase));
    iList->SetSource(this);
    iResized = QObject::connect(iList, &CVelumListWidget::Resized, iList, [this] {
      if (iColsFrac) ApplyColumns();
    });
    ApplyColumns();
  }
  if (Flag(ELisOwnFont) && iFont) ShowFont();
}

void CVelumListBox::Unbind() {
  QObject::disconnect(iResized);
  // Another list box may have taken the widget meanwhile.
  if (iList && iList->Source() == static_cast<CVelumLineSource*>(this)) iList->SetSource(nullptr);
  iList = nullptr;
  iCombo = nullptr;
  iBaseObj = nullptr;
}

// Lines and objects.

int CVelumListBox::NumLines() const {
  return iProvider ? iProvider->NumLines() : static_cast<int>(iLines.size());
}

void CVelumListBox::CheckLine(int aIndex, const QString& aProc, const QString& aText, int aCount) const {
  CVelumError::AssertObj(aIndex >= 0 && aIndex < aCount, this, aProc, aText);
  CVelumChecked::CheckIndex(aIndex, aCount);
}

Ref<CVelumObject> CVelumListBox::Obj(int aIndex) const {
  if (aIndex == -1) return nullptr;
  CheckLine(aIndex, u"GetObj"_s, u"%1,%2"_s.arg(aIndex).arg(NumLines()), NumLines());
  return iProvider ? iProvider->Obj(aIndex) : iObjs.at(aIndex);
}

QString CVelumListBox::Line(int aIndex) const {
  CheckLine(aIndex, u"Line"_s, u"Get Line index"_s, NumLines());
  return iProvider ? iProvider->Line(aIndex) : iLines.at(aIndex);
}

QString CVelumListBox::Part(int aLine, int aColumn) const {
  if (aLine < 0 || aLine >= NumLines()) return {};
  return iProvider ? iProvider->Part(aLine, aColumn) : iLines.at(aLine).section(u'\t', aColumn, aColumn);
}

TVelumLineKey CVelumListBox::SortKey(int aLine, int aColumn) const {
  if (iProvider) return iProvider->SortKey(aLine, aColumn);
  return CVelumLineSource::SortKey(aLine, aColumn);
}

int CVelumListBox::SelIndex() const {
  if (iStale) return -1;
  if (iCombo) return iCombo->ListIndex();
  return iList ? iList->SelLine() : -1;
}

QList<int> CVelumListBox::SelIndexes() const {
  if (iList && !iStale) return iList->SelLines();
  return SelIndex() < 0 ? QList<int>() : QList<int>{SelIndex()};
}

Ref<CVelumObject> CVelumListBox::SelObj() const {
  return Obj(SelIndex());
}

QString CVelumListBox::SelLine() const {
  const int index = SelIndex();
  return index < 0 ? QString() : Line(index);
}

void CVelumListBox::AddLine(const QString& aLine, const Ref<CVelumObject>& aObj) {
  CreateLineAt(static_cast<int>(iLines.size()), aLine, aObj);
}

void CVelumListBox::CreateLineAt(int aIndex, const QString& aLine, const Ref<CVelumObject>& aObj) {
  const int count = static_cast<int>(iLines.size());
  CheckLine(aIndex, u"CreateLineAt"_s, u"CreateLineAt index"_s, count + 1);
  const bool atEnd = aIndex == count && !iStale && !iProvider;
  iProvider.reset();
  iLines.insert(aIndex, aLine);
  iObjs.insert(aIndex, aObj);
  if (iHold) {
    iStale = true;
    return;
  }
  if (!atEnd) return Show();
  if (iCombo) iCombo->AddLine(aLine);
  if (iList) iList->LinesAdded(aIndex);
}

void CVelumListBox::ModifyLineAt(int aIndex, const QString& aLine, const Ref<CVelumObject>& aObj) {
  CheckLine(aIndex, u"ModifyLineAt"_s, u"ModifyLineAt index"_s, NumLines());
  if (!iProvider) {
    iLines[aIndex] = aLine;
    iObjs[aIndex] = aObj;
  }
  RefreshLine(aIndex);
}

void CVelumListBox::RefreshLine(int aIndex) {
  if (iStale) return;
  if (iCombo && aIndex >= 0 && aIndex < iCombo->count()) iCombo->SetLine(aIndex, Line(aIndex));
  if (iList) iList->LineChanged(aIndex);
}

void CVelumListBox::AddCommaList(const QString& aList) {
  for (const QString& part : CommaParts(aList, EMaxCommaParts)) AddLine(part, nullptr);
}

void CVelumListBox::SetProvider(std::unique_ptr<CVelumLineProvider> aProvider) {
  const Ref<CVelumObject> selected = SelObj();
  const int top = iList ? iList->TopRow() : -1;
  iLines.clear();
  iObjs.clear();
  iProvider = std::move(aProvider);
  Show();
  int index = -1;
  bool found = false;
  if (selected) GetObjIndex(selected.Get(), index, found);
  if (found && iList) iList->SetSelLine(index);
  if (iList) iList->SetTopRow(top);
}

int CVelumListBox::FindInList(const QString& aLine) const {
  if (!iProvider) return static_cast<int>(iLines.indexOf(aLine));
  for (int i = 0; i < NumLines(); ++i)
    if (iProvider->Line(i) == aLine) return i;
  return -1;
}

void CVelumListBox::GetObjIndex(const CVelumObject* aObj, int& aIndex, bool& aFound) const {
  aIndex = -1;
  if (iProvider) {
    aIndex = iProvider->IndexOf(aObj);
  } else {
    const auto at = std::find_if(iObjs.begin(), iObjs.end(),
                                 [aObj](const Ref<CVelumObject>& aLine) { return aLine.Get() == aObj; });
    if (at != iObjs.end()) aIndex = static_cast<int>(at - iObjs.begin());
  }
  aFound = aIndex >= 0;
}

// The widget.

void CVelumListBox::Clear() {
  iProvider.reset();
  iLines.clear();
  iObjs.clear();
  iStale = true;
}

void CVelumListBox::ClearAndShow() {
  Clear();
  Show();
}

void CVelumListBox::Show() {
  iStale = false;
  if (iCombo) iCombo->SetLines(iLines);
  if (iList) iList->Reload();
}

void CVelumListBox::SetComboText(const QString& aStr) {
  CVelumError::AssertObj(iType == ELisCombo, this, u"SetComboText"_s, u"SetComboText combo"_s);
  if (!iCombo) return;
  if (auto* base = qobject_cast<CVelumBaseControl*>(iBaseObj.data()))
    base->SetText(aStr);
  else
    iCombo->setCurrentText(aStr);
}

void CVelumListBox::SetEmpty() {
  CVelumError::AssertObj(iType == ELisCombo, this, u"SetEmpty"_s, u"combo"_s);
  if (iCombo) iCombo->SetListIndex(-1);
}

void CVelumListBox::SetSelIndex(int aIndex) {
  const bool below = aIndex < NumLines();
  CVelumError::AssertObj(below, this, u"SetSelIndex"_s, u"SetSelIndex index"_s);
  SetSelIndexOrClear(below ? aIndex : -1);
}

void CVelumListBox::SetSelIndexOrClear(int aIndex) {
  if (iStale) Show();
  const int index = aIndex >= 0 && aIndex < NumLines() ? aIndex : -1;
  if (iCombo) iCombo->SetListIndex(index);
  if (iList) iList->SetSelLine(index);
  CVelumSeams::EventPump().PumpPaint();
}

void CVelumListBox::SetSelIndexByLine(const QString& aLine) {
  SetSelIndexOrClear(FindInList(aLine));
}

void CVelumListBox::SetSelIndexByObj(const CVelumObject* aObj) {
  int index = -1;
  bool found = false;
  GetObjIndex(aObj, index, found);
  CVelumError::AssertObj(found, this, u"SetSelIndexByObj"_s, u"found"_s);
  SetSelIndexOrClear(index);
}

// Flags, font and columns.

void CVelumListBox::SetFlags(qint32 aFlags) {
  const bool nowOwn = (aFlags & ELisOwnFont) != 0 && !Flag(ELisOwnFont);
  iFlags = aFlags;
  if (nowOwn && iFont) ShowFont();
}

void CVelumListBox::SetFlag(qint32 aBit, bool aOn) {
  SetFlags(aOn ? iFlags | aBit : iFlags & ~aBit);
}

void CVelumListBox::SetFont(const Ref<CVelumFont>& aFont) {
  iFont = aFont;
  if (!iFont) {
    iFont = MakeRef<CVelumFont>();
    iFont->SetDefaults();
  }
  if (Flag(ELisOwnFont)) ShowFont();
}

void CVelumListBox::ShowFont() {
  const QFont font = CVelumLib::MakeToolkitFont(*iFont, Flag(ELisOwnFont));
  if (auto* base = qobject_cast<CVelumBaseControl*>(iBaseObj.data())) {
    base->SetFont(font);
    base->SetForeColor(iFont->ForeColor() == ENoInt ? 0 : iFont->ForeColor());
  } else if (auto* widget = qobject_cast<QWidget*>(WidgetOf(iBaseObj))) {
    SetTextColor(*widget, iFont->ForeColor());
    widget->setFont(font);
  }
}

void CVelumListBox::DefineColumns(const QList<QString>& aTitles, const QList<float>& aWidths) {
  SetColumns(aTitles, aWidths, false);
}

void CVelumListBox::DefineColumnsFrac(const QList<QString>& aTitles, const QList<float>& aFractions) {
  SetColumns(aTitles, aFractions, true);
}

void CVelumListBox::Define1Column(const QString& aTitle) {
  SetColumns({aTitle}, {1.0F}, true);
}

void CVelumListBox::DefineColumnsList(const QString& aList) {
  QList<QString> titles;
  QList<float> widths;
  for (const QString& part : CommaParts(aList, EMaxListCols)) {
    QString title;
    QString width;
    CVelumLib::SplitAt(part, u":"_s, title, width);
    titles.append(title);
    widths.append(static_cast<float>(CVelumValue::LenientNum(width)));
  }
  const bool frac = std::all_of(widths.begin(), widths.end(), [](float aWidth) { return aWidth <= 1.0F; });
  SetColumns(titles, widths, frac);
}

void CVelumListBox::SetColumns(const QList<QString>& aTitles, const QList<float>& aWidths, bool aFrac) {
  CVelumError::AssertObj(iType == ELisSingle, this, u"DefineColumns"_s, u"DefineColums ELisSingle"_s);
  if (aTitles.size() > EMaxCols || aWidths.size() != aTitles.size()) CVelumError::RaiseHost(EHostIndex);
  iColTitles = aTitles;
  iColWidths = aWidths;
  iColsFrac = aFrac;
  ApplyColumns();
}

void CVelumListBox::ApplyColumns() {
  if (!iList) return;
  QList<float> widths = iColWidths;
  if (iColsFrac)
    for (float& width : widths) width *= iList->UsableWidth();
  iList->DefineColumns(iColTitles, widths);
}

void CVelumListBox::Resize() {
  auto* widget = qobject_cast<QWidget*>(WidgetOf(iBaseObj));
  if (!widget) return;
  if (iForm && widget->parentWidget() == iForm && !iForm->layout()) {
    const int margin = MmToPixels(EMarginMm);
    QSize size = widget->size();
    if (Flag(ELisFollowHeight))
      size.setHeight(std::max(MmToPixels(EMinHeightMm), iForm->height() - widget->y() - margin));
    if (Flag(ELisFollowWidth))
      size.setWidth(std::max(MmToPixels(EMinWidthMm), iForm->width() - widget->x() - margin));
    widget->resize(size);
  }
  if (Flag(ELisFollowWidth) && iColsFrac) ApplyColumns();
}
