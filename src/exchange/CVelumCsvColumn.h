// The type of a column, found by looking at every cell of it.
#pragma once

#include "exchange/CVelumCsvForm.h"

#include <QString>
#include <optional>

// A column has a type other than text only if every cell that is not empty comes back from its value (see
// ECsvFit), and nothing had to be assumed about it but the order of day and month. Starts with all that is
// possible, and each cell takes away what it cannot be.
class CVelumCsvColumn {
public:
  // A cell, in UTF-8.
  void Take(std::string_view aText) {
    if (aText.empty())
      ++iEmpty;
    else if (++iFilled; iCan != 0)
      Narrow(aText);
  }

  [[nodiscard]] qint64 NumEmpty() const { return iEmpty; }
  [[nodiscard]] qint64 NumFilled() const { return iFilled; }

  // What the column has turned out to be.
  [[nodiscard]] TCsvForm Found() const;
  // How the cells are read best if the column is to be of a type: by what the column has shown, else by the
  // locale.
  [[nodiscard]] TCsvForm FormFor(qint32 aType) const;
  // Whether the separator of the numbers could part thousands as well as decimals, so that the column stays
  // text: as a whole number or as a real it means different things.
  [[nodiscard]] bool IsAmbiguous() const;
  // Whether the dates do not tell which of day and month stands first, so that the locale decided.
  [[nodiscard]] bool IsOrderAssumed() const;
  // Why numbers without doubt are to stay a text.
  enum class EWhyText : quint8 { None, ZeroFirst, Big, ManyDigits };
  [[nodiscard]] EWhyText WhyText() const;

private:
  // What all cells so far can be.
  enum ECan : quint8 {
    ECanPoint = 1, // numbers with a decimal point, and commas between groups
    ECanComma = 2, // numbers with a decimal comma, and points between groups
    ECanIso = 4,
    ECanDayMonth = 8,
    ECanMonthDay = 16,
    ECanTime = 32,
    ECanBoolean = 64,
    ECanAll = 127,
  };
  // What the cells have shown about one reading of numbers.
  struct TNumbers {
    bool iGrouped = false;    // separators that would part thousands ...
    bool iProven = false;     // ... and can mean nothing else
    bool iDecimals = false;   // separators that would part decimals ...
    bool iNotThree = false;   // ... one of them not in front of exactly three digits
    bool iBig = false;        // a whole number beyond 32 bits
    bool iManyDigits = false; // more digits than a real is sure to keep
    bool iOtherwise = false;  // written as no value of the type is: "007", "-0"
  };

  void Narrow(std::string_view aText);
  [[nodiscard]] quint8 CanBe(std::string_view aText);
  [[nodiscard]] quint8 CanBeNumber(std::string_view aText);
  [[nodiscard]] static bool TakeNumber(std::string_view aText, char aDecimal, char aGroup,
                                       TNumbers& aNumbers);
  [[nodiscard]] quint8 CanBeDate(std::string_view aText);
  // The reading of numbers that holds, if one does: 0 point, 1 comma.
  [[nodiscard]] std::optional<size_t> Reading() const;
  [[nodiscard]] std::optional<TCsvForm> FoundNumber() const;

  quint8 iCan = ECanAll;
  char iDateSeparator = 0;
  TNumbers iNumbers[2]; // with a decimal point, with a decimal comma
  qint64 iEmpty = 0;
  qint64 iFilled = 0;
};
