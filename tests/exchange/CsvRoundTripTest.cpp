// What goes in comes out, and what goes out comes in, for tables and stacks that nobody would write.
#include "CsvImportTest.h"

#include "core/CVelumValue.h"
#include "core/text/CVelumDays.h"
#include "exchange/CVelumCsvReader.h"
#include "persist/CVelumStackCheck.h"

#include <QDateTime>
#include <random>

namespace {

class CsvRoundTripTest : public CsvImportTest {
protected:
  [[nodiscard]] int Below(int aEnd) { return static_cast<int>(iRandom() % static_cast<unsigned>(aEnd)); }
  QByteArray OneOf(const QByteArrayList& aTexts) { return aTexts.at(Below(static_cast<int>(aTexts.size()))); }

  // A cell of a column that is mostly of one kind.
  QByteArray Cell(int aKind) {
    if (Below(12) == 0) return {};
    if (Below(40) == 0) aKind = Below(8);
    switch (aKind) {
    case 0:
      return QByteArray::number(Below(2000) - 1000);
    case 1:
      return QByteArray::number(Below(100000)) + "." + QByteArray::number(Below(1000));
    case 2:
      return OneOf({"2003-01-02", "2011-12-31", "1999-02-28", "0099-01-01"});
    case 3:
      return OneOf({"9:30", "10:15", "23:59:59", "0:00", "24:00"});
    case 4:
      return OneOf({"true", "false"});
    case 5:
      return OneOf({"01/02/2003", "13/02/2003", "12/31/2003", "1.2.2003"});
    case 6:
      return OneOf({"1,234", "1,234,567", "1.234,5", "007", "+5", "1e7", "-0", "99999999999", "12%"});
    default:
      return OneOf({"a", "x y", " b ", "\"", "\"\"", "a,b", "a\nb", "\r\n", "c\r", "\xC3\xA9",
                    "\xF0\x9F\x98\x80", ";;;", "\t", "|", "don't", "-", "#", "x\"y\n\"z"});
    }
  }

  std::mt19937 iRandom{20240501};
};

QByteArray Quoted(QByteArray aCell) {
  return "\"" + aCell.replace("\"", "\"\"") + "\"";
}

// The cells of a file, each record a list.
std::vector<std::vector<std::string>> CellsOf(const QByteArray& aBytes) {
  CVelumCsvReader reader({aBytes.constData(), static_cast<size_t>(aBytes.size())}, u',');
  std::vector<std::vector<std::string>> records;
  std::string buffer;
  while (reader.Next()) {
    records.emplace_back();
    for (const TCsvCell& cell : reader.Cells()) records.back().emplace_back(cell.Text(buffer));
  }
  return records;
}

// Whether two cells are the same but for a plus, grouping, zeros at the end of decimals, and the form of
// dates and times: then both are read as the same value of the type.
bool AreAlike(const std::string& aIn, const std::string& aOut, const TCsvForm& aForm) {
  if (aIn == aOut) return true;
  TVelumValue in;
  TVelumValue out;
  return aForm.iType != EConText && CVelumCsvForms::Read(aIn, aForm, in) == ECsvFit::Same &&
         CVelumCsvForms::Read(aOut, {aForm.iType, '.', '\0', aForm.iOrder}, out) == ECsvFit::Same &&
         CVelumValue::Equal(in, out);
}

TEST_F(CsvRoundTripTest, TablesComeBackCellByCell) {
  int typed = 0;
  for (int run = 0; run < 150; ++run) {
    const int columns = 1 + Below(6);
    std::vector<int> kinds;
    for (int i = 0; i < columns; ++i) kinds.push_back(Below(9));
    QByteArray bytes;
    for (int i = 0; i < columns; ++i) bytes += (i > 0 ? "," : "") + Quoted("n" + QByteArray::number(i));
    for (int record = Below(60); record >= 0; --record) {
      bytes += OneOf({"\n", "\r\n"});
      for (int i = 0; i < columns; ++i)
        bytes += (i > 0 ? "," : "") + Quoted(Cell(kinds[static_cast<size_t>(i)]));
    }
    iReading.iDelim = u',';
    ASSERT_EQ(Import(bytes), ECsvOutcome::Done) << bytes.constData();
    const auto in = CellsOf(bytes);
    const auto out = CellsOf(Exported());
    ASSERT_EQ(in.size(), out.size()) << bytes.constData();
    for (size_t record = 1; record < in.size(); ++record)
      for (size_t i = 0; i < in[record].size(); ++i) {
        const TCsvForm& form = iRun->Plan()[i].iForm;
        typed += form.iType != EConText ? 1 : 0;
        ASSERT_TRUE(AreAlike(in[record][i], out[record][i], form))
            << in[record][i] << " / " << out[record][i];
      }
    ASSERT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
  }
  EXPECT_GT(typed, 500) << "most tables should have columns of other types than text";
}

TVelumValue RandomValue(qint32 aType, std::mt19937& aRandom) {
  const auto below = [&](unsigned aEnd) { return static_cast<int>(aRandom() % aEnd); };
  switch (aType) {
  case EConInteger:
    return TVelumValue::OfInt(static_cast<qint32>(aRandom()));
  case EConReal: {
    const double real = std::ldexp(static_cast<double>(aRandom()), below(400) - 200);
    return TVelumValue::OfReal(below(2) == 0 ? real : below(100000) / 100.0);
  }
  case EConDate:
    return TVelumValue::OfDate(CVelumDays::Build(100 + below(9900), 3 + below(10), 1 + below(28)));
  case EConTime:
    return TVelumValue::OfTime(CVelumDays::Join(0, below(86400)));
  case EConBoolean:
    return TVelumValue::OfBoolean(below(2) == 0);
  default: {
    static const QString pieces[] = {u"a"_s,  u","_s,      u"\""_s,         u"\r\n"_s,   u"\n"_s, u" "_s,
                                     u"12"_s, u"\u00E9"_s, u"\U0001F600"_s, u"\uFEFF"_s, u"\t"_s};
    QString text;
    for (int left = below(6); left > 0; --left) text += pieces[below(std::size(pieces))];
    return TVelumValue::OfStr(text);
  }
  }
}

// The own values of all cards, in order; null stands for none.
QList<QList<std::optional<TVelumValue>>> ValuesOf(const CVelumStack& aStack) {
  QList<QList<std::optional<TVelumValue>>> all;
  Ref<CVelumCard> card;
  for (qint32 i = 0; aStack.GetNextCard(card, i);) {
    QList<std::optional<TVelumValue>> values;
    const Ref<CVelumControlSet> set = card->Background();
    for (qint32 c = 0; c < set->NumControls(); ++c) {
      const qint32 id = set->ControlAt(c)->Id();
      values.append(card->ControlValDef(id) ? std::optional(card->GetControlVal(id, false)) : std::nullopt);
    }
    all.append(values);
  }
  return all;
}

// An empty text without a default is what a field shows that has no value.
bool AreEqual(const std::optional<TVelumValue>& aA, const std::optional<TVelumValue>& aB) {
  const auto shown = [](const std::optional<TVelumValue>& aVal) {
    return aVal && aVal->Type() == EValStr && aVal->Str().isEmpty() ? std::nullopt : aVal;
  };
  const auto a = shown(aA);
  const auto b = shown(aB);
  return a.has_value() == b.has_value() && (!a || CVelumValue::Equal(*a, *b));
}

TEST_F(CsvRoundTripTest, StacksComeBackValueByValue) {
  for (int run = 0; run < 120; ++run) {
    iNew.iStack = MakeRef<CVelumStack>(u"s"_s);
    const int fields = 1 + Below(7);
    for (int i = 0; i < fields; ++i) {
      static const QString names[] = {u"a"_s, u"a"_s, u""_s, u"b,\"c\""_s, u"Field 3"_s, u"a 2"_s};
      auto field = MakeRef<CVelumControl>(iNew.iStack->IdGen().NextId(), names[Below(6)], Below(6));
      Set()->AddControl(field, ENoInt);
    }
    for (int cards = Below(40); cards > 0; --cards) {
      auto card = MakeRef<CVelumCard>(QString::number(cards), Set());
      iNew.iStack->AddCard(card, nullptr, false);
      for (int i = 0; i < fields; ++i)
        if (Below(5) > 0) card->SetControlVal(Field(i).Id(), RandomValue(Field(i).ConType(), iRandom));
    }
    const auto before = ValuesOf(*iNew.iStack);
    iReading.iDelim = u',';
    const QByteArray bytes = Exported();
    ASSERT_EQ(Fill(bytes), ECsvOutcome::Done) << bytes.constData() << Faults().join(u'\n').toStdString();
    const auto after = ValuesOf(*iNew.iStack);
    ASSERT_EQ(before.size(), after.size());
    for (qsizetype card = 0; card < before.size(); ++card)
      for (qsizetype i = 0; i < before.at(card).size(); ++i)
        ASSERT_TRUE(AreEqual(before.at(card).at(i), after.at(card).at(i)))
            << bytes.constData() << " card " << card << " field " << i;
    ASSERT_EQ(iRun->Report().iChanged, 0);
    ASSERT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
  }
}

} // namespace
