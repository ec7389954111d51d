#include "core/CVelumFieldTypes.h"
#include "core/CVelumValue.h"

#include <QList>
#include <QSet>
#include <QString>
#include <climits>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using CVelumFieldTypes::gRows;
using CVelumFieldTypes::Of;

namespace {

// The numbers of the types for which aHolds.
template <class T> QList<qint32> TypesThat(const T& aHolds) {
  QList<qint32> types;
  for (const TVelumFieldType& type : gRows)
    if (aHolds(type)) types.append(type.iConType);
  return types;
}

TEST(CVelumFieldTypes, EachRowStandsAtItsNumber) {
  for (size_t i = 0; i < gRows.size(); ++i) {
    EXPECT_EQ(gRows[i].iConType, static_cast<qint32>(i));
    EXPECT_EQ(&Of(static_cast<qint32>(i)), &gRows[i]);
  }
}

TEST(CVelumFieldTypes, NamesAreThereAndDiffer) {
  QSet<QStringView> names, choices;
  for (const TVelumFieldType& type : gRows) {
    EXPECT_FALSE(type.iName.isEmpty());
    EXPECT_FALSE(type.iChoice.isEmpty());
    names.insert(type.iName);
    choices.insert(type.iChoice);
  }
  EXPECT_EQ(names.size(), static_cast<qsizetype>(gRows.size()));
  EXPECT_EQ(choices.size(), static_cast<qsizetype>(gRows.size()));
}

// The numbers of the types and of the tags of their values stand in files.
TEST(CVelumFieldTypes, FilesKeepTheirNumbers) {
  const QList<QStringView> names{u"Text",    u"Integer", u"Real",    u"Date",   u"Time",
                                 u"Boolean", u"List",    u"Command", u"Picture"};
  const QList<EVal> tags{EValStr,     EValInt, EValReal,  EValDate,  EValTime,
                         EValBoolean, EValStr, EValUndef, EValBlobId};
  for (qint32 i = 0; i < names.size(); ++i) {
    EXPECT_EQ(Of(i).iName, names.at(i));
    EXPECT_EQ(Of(i).iValType, tags.at(i)) << i;
  }
}

TEST(CVelumFieldTypes, SortsByWhatHasAKeyOfSomeWidth) {
  EXPECT_EQ(TypesThat([](const auto& aType) { return aType.IsSortable(); }),
            (QList<qint32>{EConText, EConInteger, EConReal, EConDate, EConTime, EConBoolean}));
  for (const TVelumFieldType& type : gRows) {
    EXPECT_EQ(type.IsSortable(), type.iKeyLen > 0) << type.iConType;
    EXPECT_TRUE(!type.IsSortable() || type.HasPlainValue()) << type.iConType;
  }
}

TEST(CVelumFieldTypes, TakesTextsInWhatShowsThem) {
  for (const TVelumFieldType& type : gRows) {
    EXPECT_EQ(type.iTextLike, type.iWidget == EFieldText) << type.iConType;
    EXPECT_NE(type.iWidget, EFieldNoWidget) << type.iConType;
    EXPECT_TRUE(!type.iCombo || type.iTextLike) << type.iConType;
    EXPECT_TRUE(!(type.iShownAgain || type.iInCsv) || type.HasPlainValue()) << type.iConType;
  }
  EXPECT_EQ(TypesThat([](const auto& aType) { return aType.iCombo; }),
            (QList<qint32>{EConText, EConInteger, EConReal}));
  EXPECT_EQ(TypesThat([](const auto& aType) { return aType.iShownAgain; }),
            (QList<qint32>{EConInteger, EConReal, EConDate, EConTime, EConBoolean}));
}

TEST(CVelumFieldTypes, ValuesAreThoseOfConversions) {
  for (const TVelumFieldType& type : gRows)
    if (type.HasValue()) {
      EXPECT_EQ(CVelumValue::ConToValType(type.iConType), type.iValType);
    }
  EXPECT_EQ(TypesThat([](const auto& aType) { return !aType.HasPlainValue(); }),
            (QList<qint32>{EConCommand, EConPicture}));
}

// Windows that offer types of columns know them by their place.
TEST(CVelumFieldTypes, TypesOfColumnsComeFirst) {
  EXPECT_EQ(TypesThat([](const auto& aType) { return aType.iInCsv; }),
            (QList<qint32>{EConText, EConInteger, EConReal, EConDate, EConTime, EConBoolean}));
}

TEST(CVelumFieldTypes, OtherNumbersCanDoNothing) {
  for (const qint32 number : {-1, static_cast<qint32>(gRows.size()), ENoInt, INT_MIN}) {
    EXPECT_FALSE(CVelumFieldTypes::IsType(number));
    const TVelumFieldType& none = Of(number);
    EXPECT_TRUE(none.iName.isEmpty());
    EXPECT_FALSE(none.HasValue() || none.IsSortable() || none.iTextLike || none.iShownAgain || none.iCombo ||
                 none.iInCsv);
    EXPECT_EQ(none.iWidget, EFieldNoWidget);
  }
}

} // namespace
