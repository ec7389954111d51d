// The words of the script language.
#pragma once

#include <QtGlobal>

// Ids of the keywords: their place in the table of CVelumCompiler.
enum EKw : qint16 {
  EKwPut,
  EKwInto,
  EKwField,
  EKwOf,
  EKwCard,
  EKwOn,
  EKwEnd,
  EKwGo,
  EKwTo,
  EKwNext,
  EKwIf,
  EKwThen,
  EKwIs,
  EKwAnswer,
  EKwNot,
  EKwAnd,
  EKwOr,
  EKwRepeat,
  EKwWhile,
  EKwFor,
  EKwEach,
  EKwRandom,
  EKwExit,
  EKwElse,
  EKwNumber,
  EKwCards,
  EKwBackground,
  EKwReturn,
  EKwTab,
  EKwThe,
  EKwDate,
  EKwSend,
  ENumKeywords
};
