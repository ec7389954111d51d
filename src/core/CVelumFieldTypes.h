// What the types of fields are: one row a type, which all rooms read.
#pragma once

#include "core/CVelumConst.h"

#include <QStringView>
#include <array>

// How a part of a sort key that holds the value compares.
enum EFieldKey : quint8 {
  EFieldNoKey, // the type cannot be sorted by
  EFieldTextKey,
  EFieldWholeKey,
  EFieldRealKey,
};

// What shows the value in the card view.
enum EFieldWidget : quint8 {
  EFieldNoWidget,
  EFieldText, // a text box, rich or plain, or the text of a combo box
  EFieldCheckBox,
  EFieldList,
  EFieldPicture,
  EFieldButton,
};

struct TVelumFieldType {
  qint32 iConType = ENoInt;  // as files hold it; the place of the row in the table
  QStringView iName;         // as reports call the type
  QStringView iChoice;       // as windows offer it
  EVal iValType = EValUndef; // tag of the value; EValUndef: the type has no value
  bool iTextLike = false;    // shown on a line of text, so that a column of a card list can show it
  bool iShownAgain = false;  // what was typed is read, and then shown as it was understood
  bool iCombo = false;       // can be the text of a combo box
  bool iInCsv = false;       // a column of a CSV file can become a new field of the type
  EFieldKey iKey = EFieldNoKey;
  qint16 iKeyLen = 0; // default width of its part of a sort key; the most for a text, as wide as its field
  EFieldWidget iWidget = EFieldNoWidget;

  [[nodiscard]] constexpr bool IsSortable() const { return iKey != EFieldNoKey; }
  [[nodiscard]] constexpr bool HasValue() const { return iValType != EValUndef; }
  // A value of its own, which texts and scripts can hold; a picture is only named by its id.
  [[nodiscard]] constexpr bool HasPlainValue() const { return HasValue() && iValType != EValBlobId; }
};

namespace CVelumFieldTypes {

// clang-format off
inline constexpr std::array<TVelumFieldType, 9> gRows{{
    // number       name        choice      value        text   again  combo  csv    key             len  widget
    {EConText,    u"Text",    u"Text",    EValStr,     true,  false, true,  true,  EFieldTextKey,  30, EFieldText},
    {EConInteger, u"Integer", u"Integer", EValInt,     true,  true,  true,  true,  EFieldWholeKey, 11, EFieldText},
    {EConReal,    u"Real",    u"Float",   EValReal,    true,  true,  true,  true,  EFieldRealKey,  15, EFieldText},
    {EConDate,    u"Date",    u"Date",    EValDate,    true,  true,  false, true,  EFieldWholeKey, 8,  EFieldText},
    {EConTime,    u"Time",    u"Time",    EValTime,    true,  true,  false, true,  EFieldWholeKey, 6,  EFieldText},
    {EConBoolean, u"Boolean", u"Boolean", EValBoolean, false, true,  false, true,  EFieldWholeKey, 2,  EFieldCheckBox},
    {EConList,    u"List",    u"List",    EValStr,     false, false, false, false, EFieldNoKey,    0,  EFieldList},
    {EConCommand, u"Command", u"Command", EValUndef,   false, false, false, false, EFieldNoKey,    0,  EFieldButton},
    {EConPicture, u"Picture", u"Picture", EValBlobId,  false, false, false, false, EFieldNoKey,    0,  EFieldPicture},
}};
// clang-format on

// Stands for a number that no type has: it has no value, and can do nothing.
inline constexpr TVelumFieldType gNone{};

[[nodiscard]] constexpr bool IsType(qint32 aConType) {
  return aConType >= 0 && aConType < static_cast<qint32>(gRows.size());
}
// The row of a type; gNone for a number that no type has.
[[nodiscard]] constexpr const TVelumFieldType& Of(qint32 aConType) {
  return IsType(aConType) ? gRows[static_cast<size_t>(aConType)] : gNone;
}

} // namespace CVelumFieldTypes
