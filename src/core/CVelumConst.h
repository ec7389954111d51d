// Values that stand for "not set", and the tags of values.
#pragma once

#include "core/CVelumLimits.h"

#include <QtGlobal>

// The unset value of every 32-bit id, key, index and colour.
inline constexpr qint32 ENoInt = 1999999999;
// The unset value of every 16-bit field.
inline constexpr qint16 ENoShort = 31999;
// 1 January 1980, the program's no-date, in days since 30 December 1899.
inline constexpr double ENoDate = 29221.0;

// Tags of TVelumValue, as they stand in files.
enum EVal : qint16 {
  EValUndef = 0,
  EValStr = 11,
  EValInt = 12,
  EValReal = 13,
  EValDate = 14,
  EValTime = 15,
  EValBoolean = 16,
  EValBlobId = 17,
  EValIntPair = 50,
  EValCard = 100,
  EValControl = 101,
  EValControlSet = 102,
  EValSortKey = 103,
  EValArray = 104,
  EValBlob = 105,
};

// Types of a control, as they stand in files.
enum ECon : qint32 {
  EConText = 0,
  EConInteger = 1,
  EConReal = 2,
  EConDate = 3,
  EConTime = 4,
  EConBoolean = 5,
  EConList = 6,
  EConCommand = 7,
  EConPicture = 8,
};
