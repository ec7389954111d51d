// The facts of the sample stack, read from the text files beside this.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

struct TCountry {
  QString iName;
  QString iCapital;
  QString iContinent;
  double iThousands; // people
  double iArea;      // square kilometres
  qint32 iFounded;   // yyyymmdd; ENoInt when no day is named
  int iMinutes;      // standard time of the capital, minutes ahead of UTC
  bool iLandlocked;
  QString iNotes;
};

struct TMountain {
  QString iName;
  qint32 iMetres;
  QString iRange;
  QString iCountries;
  qint32 iAscent; // yyyymmdd; ENoInt when no day is named
  QString iNotes;
};

struct TRiver {
  QString iName;
  qint32 iKilometres;
  QString iMouth;
  QString iCountries;
  QString iNotes;
};

struct TPage {
  QString iName;
  QString iText; // wiki text
};

// Each reads a file of the folder; a std::runtime_error names a line that is not as it should be.
namespace SampleData {

[[nodiscard]] QList<TCountry> Countries(const QString& aFolder);
[[nodiscard]] QList<TMountain> Mountains(const QString& aFolder);
[[nodiscard]] QList<TRiver> Rivers(const QString& aFolder);
[[nodiscard]] QList<TPage> Guide(const QString& aFolder);

} // namespace SampleData
