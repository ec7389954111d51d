#include "script/CVelumVar.h"

#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumStack.h"
#include "support/Assertions.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

namespace {

class CVelumVarTest : public testing::Test {
protected:
  CVelumVarTest() {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(u"en_US"_s);
    iStack = MakeRef<CVelumStack>(u"Vars"_s);
    iPage = iStack->Background(0);
    iField = MakeRef<CVelumControl>(iStack->IdGen().NextId(), u"field"_s, qint32{EConText});
    iCard = MakeRef<CVelumCard>(u"first"_s, iPage);
    iOther = MakeRef<CVelumCard>(u"first"_s, iPage);
  }

  static CVelumVar Str(const QString& aStr) { return CVelumVar(TVelumValue::OfStr(aStr)); }
  static CVelumVar Int(qint32 aInt) { return CVelumVar(TVelumValue::OfInt(aInt)); }
  static CVelumVar Real(double aReal) { return CVelumVar(TVelumValue::OfReal(aReal)); }
  static CVelumVar Date(double aDate) { return CVelumVar(TVelumValue::OfDate(aDate)); }
  static CVelumVar Time(double aTime) { return CVelumVar(TVelumValue::OfTime(aTime)); }
  static CVelumVar Boolean(bool aBoolean) { return CVelumVar(TVelumValue::OfBoolean(aBoolean)); }
  CVelumVar Card(const Ref<CVelumCard>& aCard) { return CVelumVar(TVelumValue::OfObj(EValCard, aCard)); }
  CVelumVar Control() { return CVelumVar(TVelumValue::OfObj(EValControl, iField)); }
  CVelumVar Set() { return CVelumVar(TVelumValue::OfObj(EValControlSet, iPage)); }

  // aA = aB, aA < aB, aA > aB as three letters.
  static std::string Order(const CVelumVar& aA, const CVelumVar& aB) {
    return std::string(aA.Equal(aB) ? "=" : "-") + (aA.Lt(aB) ? "<" : "-") + (aA.Gt(aB) ? ">" : "-");
  }
  // The number of the host error of aWork, 0 for none.
  static qint32 HostError(const std::function<void()>& aWork) {
    try {
      aWork();
    } catch (const CVelumException& e) {
      return e.Number();
    }
    return 0;
  }

  ScriptedPresenter iPresenter;
  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iPage;
  Ref<CVelumControl> iField;
  Ref<CVelumCard> iCard;
  Ref<CVelumCard> iOther;
};

} // namespace

TEST_F(CVelumVarTest, NamesItsType) {
  const std::pair<int, const char16_t*> names[] = {{11, u"String"},   {12, u"Int"},      {13, u"Float"},
                                                   {14, u"Date"},     {15, u"Time"},     {16, u"Boolean"},
                                                   {100, u"Card"},    {101, u"Control"}, {102, u"ControlSet"},
                                                   {103, u"SortKey"}, {104, u"Array"}};
  for (const auto& [type, name] : names) {
    const CVelumVar var(type);
    EXPECT_EQ(var.ValType(), type);
    EXPECT_EQ(var.GetValue().Type(), type);
    EXPECT_EQ(var.TypeStr(), QString::fromUtf16(name));
    EXPECT_EQ(var.ObjDescr(), u"CVelumVar type="_s + QString::fromUtf16(name));
  }
  for (const int type : {1, 10, 17, 50, 105}) {
    const CVelumVar var(type);
    EXPECT_EQ(Assertions::Of([&] { static_cast<void>(var.TypeStr()); }), "TypeStr|TypeStr type") << type;
  }
}

TEST_F(CVelumVarTest, HasNoTypeBeforeItIsConstructed) {
  const CVelumVar var;
  EXPECT_EQ(var.ValType(), 0);
  EXPECT_EQ(var.TypeStr(), u"(Undef)"_s);
  EXPECT_EQ(Assertions::Of([] { const CVelumVar none(0); }), "Construct|undef");
}

TEST_F(CVelumVarTest, ReadsOtherMembersAsZero) {
  const CVelumVar five = Int(5);
  EXPECT_EQ(five.IntVal(), 5);
  EXPECT_EQ(five.StrVal(), QString());
  EXPECT_EQ(five.RealVal(), 0.0);
  EXPECT_EQ(five.DateVal(), 0.0);
  EXPECT_EQ(five.TimeVal(), 0.0);
  EXPECT_FALSE(five.BooleanVal());
  EXPECT_EQ(five.CardVal(), nullptr);
  EXPECT_EQ(five.ControlVal(), nullptr);
  EXPECT_EQ(five.ControlSetVal(), nullptr);
  EXPECT_EQ(Str(u"7"_s).IntVal(), 0);
  EXPECT_EQ(Control().CardVal(), nullptr) << "an object of another class";
  EXPECT_EQ(Date(3.0).TimeVal(), 0.0);
  EXPECT_EQ(iPresenter.Count(), 0) << "nothing is checked";
}

TEST_F(CVelumVarTest, SetsTheMemberOfItsType) {
  CVelumVar str(EValStr);
  str.LetStrVal(u"a"_s);
  EXPECT_EQ(str.StrVal(), u"a"_s);
  CVelumVar num(EValInt);
  num.LetIntVal(-3);
  EXPECT_EQ(num.IntVal(), -3);
  CVelumVar real(EValReal);
  real.LetRealVal(1.5);
  EXPECT_EQ(real.RealVal(), 1.5);
  CVelumVar date(EValDate);
  date.LetDateVal(40000.0);
  EXPECT_EQ(date.DateVal(), 40000.0);
  CVelumVar time(EValTime);
  time.LetTimeVal(0.5);
  EXPECT_EQ(time.TimeVal(), 0.5);
  CVelumVar boolean(EValBoolean);
  boolean.LetBooleanVal(true);
  EXPECT_TRUE(boolean.BooleanVal());
  CVelumVar card(EValCard);
  card.LetCardVal(iCard);
  EXPECT_EQ(card.CardVal(), iCard.Get());
  CVelumVar control(EValControl);
  control.LetControlVal(iField);
  EXPECT_EQ(control.ControlVal(), iField.Get());
  CVelumVar set(EValControlSet);
  set.LetControlSetVal(iPage);
  EXPECT_EQ(set.ControlSetVal(), iPage.Get());
}

TEST_F(CVelumVarTest, SetsNoOtherMember) {
  CVelumVar str = Str(u"kept"_s);
  CVelumVar num = Int(1);
  const std::pair<const char*, std::function<void()>> setters[] = {
      {"LetStrVal|type", [&] { num.LetStrVal(u"x"_s); }},
      {"LetIntVal|type", [&] { str.LetIntVal(1); }},
      {"LetRealVal|type", [&] { str.LetRealVal(1.0); }},
      {"LetDateVal|type", [&] { str.LetDateVal(1.0); }},
      {"LetTimeVal|type", [&] { str.LetTimeVal(1.0); }},
      {"LetBooleanVal|type", [&] { str.LetBooleanVal(true); }},
      {"LetControlVal|type", [&] { str.LetControlVal(iField); }},
      {"LetCardVal|type", [&] { str.LetCardVal(iCard); }},
      {"LetControlSetVal|type", [&] { str.LetControlSetVal(iPage); }}};
  for (const auto& [assertion, work] : setters) EXPECT_EQ(Assertions::Of(work), assertion);
  iPresenter.SetDefaultAnswer(true);
  for (const auto& [assertion, work] : setters) work();
  EXPECT_EQ(str.StrVal(), u"kept"_s);
  EXPECT_EQ(num.IntVal(), 1);
}

TEST_F(CVelumVarTest, TakesAWholeRecordUnchecked) {
  CVelumVar var = Int(1);
  var.SetValue(TVelumValue::OfStr(u"text"_s));
  EXPECT_EQ(var.ValType(), EValInt) << "the type stays";
  EXPECT_EQ(var.GetValue().Type(), EValStr);
  EXPECT_EQ(var.StrVal(), u"text"_s);
}

TEST_F(CVelumVarTest, ComparesWithinAType) {
  EXPECT_EQ(Order(Str(u"a"_s), Str(u"b"_s)), "-<-");
  EXPECT_EQ(Order(Str(u"a"_s), Str(u"B"_s)), "-->") << "binary";
  EXPECT_EQ(Order(Str(u"a"_s), Str(u"A"_s)), "-->");
  EXPECT_EQ(Order(Str(u""_s), Str(u""_s)), "=--");
  EXPECT_EQ(Order(Int(-1), Int(2)), "-<-");
  EXPECT_EQ(Order(Int(2), Int(2)), "=--");
  EXPECT_EQ(Order(Real(1.5), Real(1.25)), "-->");
  EXPECT_EQ(Order(Date(2.0), Date(1.0)), "-->");
  EXPECT_EQ(Order(Time(0.25), Time(0.5)), "-<-");
  EXPECT_EQ(Order(Boolean(true), Boolean(false)), "-<-") << "true is -1";
  EXPECT_EQ(Order(Boolean(false), Boolean(true)), "-->");
  EXPECT_EQ(Order(Boolean(true), Boolean(true)), "=--");
}

TEST_F(CVelumVarTest, ReadsItsOwnSideAsItIs) {
  EXPECT_EQ(Order(Int(5), Real(1.5)), "-<-") << "the Float member of an Int is 0";
  EXPECT_EQ(Order(Int(5), Real(0.0)), "=--");
  EXPECT_EQ(Order(Int(5), Real(-1.0)), "-->");
  EXPECT_EQ(Order(Real(1.5), Int(1)), "-->");
  EXPECT_EQ(Order(Real(1.0), Int(1)), "=--");
}

TEST_F(CVelumVarTest, IsEqualToTheVerySameObjectOnly) {
  EXPECT_TRUE(Card(iCard).Equal(Card(iCard)));
  EXPECT_FALSE(Card(iCard).Equal(Card(iOther))) << "of the same name";
  EXPECT_TRUE(Control().Equal(Control()));
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Card(iCard).Lt(Card(iCard))); }), "Lt|Type");
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Control().Gt(Control())); }), "Gt|Type");
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Set().Equal(Set())); }), "Equal|Type");
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Set().Lt(Set())); }), "Lt|Type");
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Set().Gt(Set())); }), "Gt|Type");
}

TEST_F(CVelumVarTest, AssertsThatTypesAreCompatible) {
  const CVelumVar str = Str(u"1"_s);
  const CVelumVar num = Int(1);
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(str.Equal(num)); }), "Equal|type String");
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(num.Lt(str)); }), "Gt|type Int");
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Date(1.0).Gt(Time(1.0))); }), "Gt|type Date");
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(Order(str, num), "-->") << "overruled, the other side is read as a text, which is empty";
  EXPECT_EQ(Order(Set(), Set()), "---");
}

TEST_F(CVelumVarTest, AssignsWithinAType) {
  const CVelumVar from[] = {Str(u"t"_s), Int(4), Real(0.5), Date(3.0), Time(0.25), Boolean(true)};
  for (const CVelumVar& var : from) {
    CVelumVar to(var.ValType());
    to.Assign(var);
    EXPECT_TRUE(to.Equal(var)) << var.ValType();
  }
  CVelumVar card(EValCard);
  card.Assign(Card(iCard));
  EXPECT_EQ(card.CardVal(), iCard.Get()) << "the reference is copied";
  CVelumVar control(EValControl);
  control.Assign(Control());
  EXPECT_EQ(control.ControlVal(), iField.Get());
}

TEST_F(CVelumVarTest, AssertsOnOtherAssignments) {
  CVelumVar num = Int(1);
  EXPECT_EQ(Assertions::Of([&] { num.Assign(Str(u"a"_s)); }), "Assign|type Int");
  CVelumVar set(EValControlSet);
  EXPECT_EQ(Assertions::Of([&] { set.Assign(Set()); }), "Assign|Type");
  CVelumVar key(EValSortKey);
  EXPECT_EQ(Assertions::Of([&] { key.Assign(CVelumVar(EValSortKey)); }), "Assign|Type");
  iPresenter.SetDefaultAnswer(true);
  num.Assign(Str(u"a"_s));
  EXPECT_EQ(num.IntVal(), 1);
}

TEST_F(CVelumVarTest, GivesText) {
  EXPECT_EQ(Str(u"as is"_s).ToStr(), u"as is"_s);
  EXPECT_EQ(Int(7).ToStr(), u"7"_s);
  EXPECT_EQ(Int(-2147483647 - 1).ToStr(), u"-2147483648"_s);
  EXPECT_EQ(Real(1234.5).ToStr(), u"1234.5"_s);
  EXPECT_EQ(Boolean(true).ToStr(), u"True"_s);
  EXPECT_EQ(Boolean(false).ToStr(), u"False"_s);
  EXPECT_EQ(Card(iCard).ToStr(), u"first"_s);
  EXPECT_EQ(Control().ToStr(), u"field"_s);
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Set().ToStr()); }), "ToStr|Type");
  EXPECT_EQ(HostError([] { static_cast<void>(CVelumVar(EValCard).ToStr()); }), EHostObjectNotSet);
}

TEST_F(CVelumVarTest, ShowsFifteenDigits) {
  EXPECT_EQ(Real(0.1 + 0.2 + 0.3 + 4.35).ToStr(), u"4.95"_s);
  EXPECT_EQ(Real(4.35 * 19 / 100).ToStr(), u"0.8265"_s);
  EXPECT_EQ(Real(-1.0 / 3).ToStr(), u"-0.333333333333333"_s);
  EXPECT_EQ(Real(2.0 / 3).ToStr(), u"0.666666666666667"_s);
  EXPECT_EQ(Real(123456789012345.0).ToStr(), u"123456789012345"_s);
  EXPECT_EQ(Real(999999999999999.9).ToStr(), u"1E+15"_s);
  EXPECT_EQ(Real(1234567890123456789.0).ToStr(), u"1.23456789012346E+18"_s);
  EXPECT_EQ(Real(0.1 + 0.2).ToReal(), 0.1 + 0.2) << "the value keeps all";
}

TEST_F(CVelumVarTest, HandsItsTextOver) {
  CVelumVar var = Str(u"text"_s);
  const Ref<CVelumVar> other = var.MoveStr();
  EXPECT_EQ(other->StrVal(), u"text"_s);
  EXPECT_EQ(other->ValType(), EValStr);
  EXPECT_EQ(var.StrVal(), QString());
  EXPECT_EQ(var.ValType(), EValStr);
}

TEST_F(CVelumVarTest, GivesDatesAndTimesInTheirGeneralForm) {
  const double day = CVelumValue::IntToDate(20200131);
  EXPECT_EQ(Date(day).ToStr(), u"1/31/2020"_s);
  EXPECT_EQ(Time(0.5).ToStr(), CVelumLocale::LongTime(0.5));
  EXPECT_EQ(Time(day + 0.5).ToStr(), u"1/31/2020 "_s + CVelumLocale::LongTime(0.5));
  EXPECT_EQ(Date(0.0).ToStr(), CVelumLocale::LongTime(0.0)) << "neither date nor time";
}

TEST_F(CVelumVarTest, WritesNumbersInTheLocale) {
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(Real(1234.5).ToStr(), u"1234,5"_s);
  EXPECT_EQ(Str(u"1.5"_s).ToReal(), 1.5) << "but reads a point";
  EXPECT_EQ(Str(u"1,5"_s).ToReal(), 1.0);
  CVelumLocale::Init(u"en_US"_s);
}

TEST_F(CVelumVarTest, GivesWholeNumbers) {
  EXPECT_EQ(Str(u"12abc"_s).ToInt(), 12);
  EXPECT_EQ(Str(u"x"_s).ToInt(), 0);
  EXPECT_EQ(Str(u"-2.6"_s).ToInt(), -3);
  EXPECT_EQ(Int(9).ToInt(), 9);
  EXPECT_EQ(Real(2.5).ToInt(), 2);
  EXPECT_EQ(Real(3.5).ToInt(), 4);
  EXPECT_EQ(Date(2.5).ToInt(), 2);
  EXPECT_EQ(Time(0.75).ToInt(), 1);
  EXPECT_EQ(Boolean(true).ToInt(), -1);
  EXPECT_EQ(Boolean(false).ToInt(), 0);
  EXPECT_EQ(Card(iCard).ToInt(), 0);
  EXPECT_EQ(Control().ToInt(), 0);
  EXPECT_EQ(HostError([] { static_cast<void>(Real(3e9).ToInt()); }), EHostOverflow);
  EXPECT_EQ(HostError([] { static_cast<void>(Str(u"3000000000"_s).ToInt()); }), EHostOverflow);
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Set().ToInt()); }), "ToInt|Type");
}

TEST_F(CVelumVarTest, GivesReals) {
  EXPECT_EQ(Str(u"1.5e1x"_s).ToReal(), 15.0);
  EXPECT_EQ(Str(u"x"_s).ToReal(), 0.0);
  EXPECT_EQ(Int(3).ToReal(), 3.0);
  EXPECT_EQ(Real(0.25).ToReal(), 0.25);
  EXPECT_EQ(Date(40000.0).ToReal(), 40000.0);
  EXPECT_EQ(Time(0.5).ToReal(), 0.5);
  EXPECT_EQ(Boolean(true).ToReal(), 1.0) << "unlike the whole number";
  EXPECT_EQ(Boolean(false).ToReal(), 0.0);
  EXPECT_EQ(Card(iCard).ToReal(), 0.0);
  EXPECT_EQ(Control().ToReal(), 0.0);
  EXPECT_EQ(Assertions::Of([&] { static_cast<void>(Set().ToReal()); }), "ToReal|Type");
}

TEST_F(CVelumVarTest, ReadsALiteral) {
  CVelumVar var(EValStr);
  qint32 ip = 1;
  var.GetFromCode(QByteArray("\x99\x0B\x03\x61\x80\x62\x63"), ip);
  EXPECT_EQ(var.StrVal(), u"a\u20acb"_s) << "a byte is a character of the code page";
  EXPECT_EQ(ip, 6);
  ip = 0;
  var.GetFromCode(QByteArray("\x0B\x00", 2), ip);
  EXPECT_EQ(var.StrVal(), QString());
  EXPECT_EQ(ip, 2);
}

TEST_F(CVelumVarTest, ChecksALiteral) {
  CVelumVar var(EValStr);
  const auto read = [&](const QByteArray& aCode, qint32 aIp) { var.GetFromCode(aCode, aIp); };
  EXPECT_EQ(Assertions::Of([&] { read("\x0C\x01\x61", 0); }), "GetFromCode|type 12");
  EXPECT_EQ(Assertions::Of([&] { read("", 0); }), "CodeByte|CodeByte len");
  EXPECT_EQ(Assertions::Of([&] { read("\x0B", 0); }), "CodeByte|CodeByte len");
  EXPECT_EQ(Assertions::Of([&] { read("\x0B\x02\x61", 0); }), "CodeChar|CodeChar len");
  EXPECT_EQ(Assertions::Of([&] { read("\x0B\x01\x61", -1); }), "CodeByte|CodeByte len");
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(HostError([&] { read("\x0B", 0); }), EHostIndex) << "overruled, nothing behind the code is read";
  EXPECT_EQ(HostError([&] { read("\x0B\x02\x61", 0); }), EHostIndex);
}

TEST_F(CVelumVarTest, BoundsTexts) {
  CVelumVar var = Str(QString(CVelumVar::EMaxTextLen - 1, u'a'));
  var.AppendStr(u"b"_s);
  EXPECT_EQ(var.StrVal().size(), CVelumVar::EMaxTextLen);
  EXPECT_EQ(HostError([&] { var.AppendStr(u"c"_s); }), EHostOutOfMemory);
}

TEST_F(CVelumVarTest, KeepsACardThatWasDeleted) {
  iStack->AddCard(iCard, nullptr, false);
  const CVelumVar var = Card(iCard);
  iStack->DeleteCard(iCard);
  iCard = nullptr;
  EXPECT_EQ(var.ToStr(), u"first"_s);
}

TEST_F(CVelumVarTest, TellsCompatibleTypes) {
  EXPECT_TRUE(CVelumVar::IsNumeric(12));
  EXPECT_TRUE(CVelumVar::IsNumeric(13));
  EXPECT_FALSE(CVelumVar::IsNumeric(11));
  EXPECT_FALSE(CVelumVar::IsNumeric(14));
  EXPECT_TRUE(CVelumVar::TypesCompatible(12, 13));
  EXPECT_TRUE(CVelumVar::TypesCompatible(102, 102));
  EXPECT_FALSE(CVelumVar::TypesCompatible(14, 15));
}
