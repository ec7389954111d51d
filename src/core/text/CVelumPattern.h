// The pattern of a date or of a time of day in a locale: writes a moment, and reads what a user typed.
#pragma once

#include <QList>
#include <QString>

// The numbers of a pattern's fields.
struct TVelumFields {
  int iDay = 1;
  int iMonth = 1;
  int iYear = 0;
  int iHour = 0; // 0 to 23, or 1 to 12 beside a day half
  int iMinute = 0;
  int iSecond = 0;
};

class CVelumPattern {
public:
  // aFormat is in the form of QLocale::dateFormat and timeFormat; years have four digits, zones go.
  explicit CVelumPattern(const QString& aFormat);

  // Whether it has day, month and year as numbers, each once, and nothing else.
  [[nodiscard]] bool IsDate() const;
  // Whether it has hour, minute and second, each once, and at most a day half besides.
  [[nodiscard]] bool IsTime() const;
  [[nodiscard]] bool HasHalf() const { return CountOf(EHalf) > 0; }
  [[nodiscard]] bool StartsWithHalf() const { return !iTokens.isEmpty() && iTokens.first().iField == EHalf; }
  [[nodiscard]] bool StartsWithField() const { return !iTokens.isEmpty() && iTokens.first().iField != ENone; }
  [[nodiscard]] CVelumPattern WithoutHalf() const;
  [[nodiscard]] CVelumPattern WithoutSecond() const;

  // aHalf is the text of the day half.
  [[nodiscard]] QString Write(const TVelumFields& aFields, const QString& aHalf) const;
  // Reads from aPos of a normal text (see Normal); the position behind it, or -1. Day, month and hour have
  // one or two digits, the year two or four, minute and second two. Blanks beside separators are free; a
  // word in front or behind may be left out.
  [[nodiscard]] qsizetype Match(QStringView aText, qsizetype aPos, TVelumFields& aFields) const;

  // aText with all kinds of blanks as plain ones, digits of all scripts as 0 to 9, and without marks of the
  // writing direction; trimmed.
  [[nodiscard]] static QString Normal(const QString& aText);

private:
  enum EField : char16_t {
    ENone = 0,
    EDay = u'd',
    EMonth = u'M',
    EYear = u'y',
    EHour = u'H',
    EMinute = u'm',
    ESecond = u's',
    EHalf = u'a',
    EZone = u't',
    EOther = u'?',
  };
  struct TToken {
    EField iField = ENone;
    qsizetype iWidth = 0;
    QString iText;    // of a literal
    QString iPattern; // the same in normal form, without blanks
  };

  void AddLetters(QChar aLetter, qsizetype aCount);
  void AddText(const QString& aText);
  void Drop(EField aField);
  void TrimEnds();
  [[nodiscard]] qsizetype CountOf(EField aField) const;
  [[nodiscard]] static qsizetype MatchText(const TToken& aToken, QStringView aText, qsizetype aPos);
  [[nodiscard]] static qsizetype MatchNumber(const TToken& aToken, QStringView aText, qsizetype aPos,
                                             TVelumFields& aFields);
  [[nodiscard]] static int* NumberOf(EField aField, TVelumFields& aFields);

  QList<TToken> iTokens;
};
