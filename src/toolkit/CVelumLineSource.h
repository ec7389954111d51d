// The lines that a list widget shows.
#pragma once

#include <QString>

// What a line is sorted by: its number if it has one, else its text.
struct TVelumLineKey {
  bool iIsNum = false;
  double iNum = 0;
  QString iText;
};

// Lines and columns are counted from 0. A widget asks only for what it is about to show, so that a list of a
// million lines costs nothing but their number.
class CVelumLineSource {
public:
  virtual ~CVelumLineSource() = default;
  [[nodiscard]] virtual int NumLines() const = 0;
  // The text of one column; empty beyond the last one of the line, and for a line that is no more.
  [[nodiscard]] virtual QString Part(int aLine, int aColumn) const = 0;
  // What the line is sorted by when its display is sorted by a column.
  [[nodiscard]] virtual TVelumLineKey SortKey(int aLine, int aColumn) const {
    return {false, 0, Part(aLine, aColumn)};
  }
};
