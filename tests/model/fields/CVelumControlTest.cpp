#include "model/fields/CVelumControl.h"

#include "core/CVelumValue.h"
#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

// A list box that remembers what it was told.
class CSpyBox final : public CVelumListBoxBase {
public:
  explicit CSpyBox(int aLisType) : iLisType(aLisType) {}
  [[nodiscard]] QString ObjDescr() const override { return u"spy"_s; }
  [[nodiscard]] int LisType() const override { return iLisType; }
  void SetFlag4(bool aOn) override { iFlag4 = aOn; }
  void Clear() override {
    iLines.clear();
    iObjs.clear();
  }
  void AddLine(const QString& aLine, const Ref<CVelumObject>& aObj) override {
    iLines.append(aLine);
    iObjs.append(aObj);
  }
  [[nodiscard]] int NumLines() const override { return static_cast<int>(iLines.size()); }
  [[nodiscard]] QString Line(int aIndex) const override { return iLines.at(aIndex); }
  void DefineColumns(const QList<QString>& aTitles, const QList<float>& aWidths) override {
    iTitles = aTitles;
    iWidths = aWidths;
    iFraction = false;
  }
  void Define1Column(const QString& aTitle) override {
    iTitles = {aTitle};
    iFraction = true;
  }
  void Show() override { ++iShown; }
  void SetBaseObj(QObject* aBase) override { iBase = aBase; }

  int iLisType;
  bool iFlag4 = false;
  bool iFraction = false;
  int iShown = 0;
  QObject* iBase = nullptr;
  QList<QString> iLines;
  QList<Ref<CVelumObject>> iObjs;
  QList<QString> iTitles;
  QList<float> iWidths;
};

class CSpyWiki final : public CVelumWikiTextBoxBase {
public:
  [[nodiscard]] QString ObjDescr() const override { return u"wiki"_s; }
  void SetStr(const QString&) override {}
  void SetFont(const Ref<CVelumFont>&) override {}
  [[nodiscard]] QString TextStr() const override { return {}; }
  [[nodiscard]] bool GetLink(int, QString&) const override { return false; }
};

class CSpyFactory final : public CVelumCompanionFactory {
public:
  CSpyFactory() { CVelumCompanions::SetFactory(this); }
  ~CSpyFactory() override { CVelumCompanions::SetFactory(nullptr); }
  Ref<CVelumListBoxBase> NewListBox(int aLisType) override {
    ++iListBoxes;
    return MakeRef<CSpyBox>(aLisType);
  }
  Ref<CVelumWikiTextBoxBase> NewWikiTextBox() override {
    ++iWikiBoxes;
    return MakeRef<CSpyWiki>();
  }
  int iListBoxes = 0;
  int iWikiBoxes = 0;
};

CSpyBox& SpyOf(const CVelumControl& aControl) {
  return *static_cast<CSpyBox*>(aControl.ListBox().Get());
}

TEST(CVelumControl, ConstructSetsTheDefaults) {
  const CVelumControl control(7, u"Town"_s, EConText);
  EXPECT_EQ(control.Id(), 7);
  EXPECT_EQ(control.Name(), u"Town"_s);
  EXPECT_EQ(control.ConType(), EConText);
  EXPECT_EQ(control.Descr(), QString());
  EXPECT_EQ(control.Label(), QString());
  EXPECT_EQ(control.VisLines(), 1);
  EXPECT_EQ(control.VisChar(), 30);
  EXPECT_EQ(control.DefaultVal(), QString());
  EXPECT_EQ(control.DynFlags(), 0);
  EXPECT_EQ(control.MaxChar(), ENoShort);
  EXPECT_EQ(control.Digits(), ENoShort);
  EXPECT_EQ(control.TrueListVisChar(), ENoShort);
  EXPECT_EQ(control.TrueListColTitle(), QString());
  EXPECT_EQ(control.StdCmd(), ENoShort);
  EXPECT_FALSE(control.ListCol());
  EXPECT_EQ(control.NumListCols(), 0);
  EXPECT_EQ(control.PartnerId(), ENoInt);
  EXPECT_EQ(control.RefControlId(), ENoInt);
  EXPECT_EQ(control.SelBackgroundId(), ENoInt);
  EXPECT_EQ(control.SelControlId(), ENoInt);
  EXPECT_EQ(control.DestCardId(), ENoInt);
  EXPECT_EQ(control.ScriptSource(), QString());
  EXPECT_FALSE(control.Script());
  EXPECT_FALSE(control.Font());
  EXPECT_EQ(control.BackColor(), ENoInt);
  EXPECT_EQ(control.BaseType(), ENoShort);
  EXPECT_EQ(control.BaseControl(), nullptr);
  EXPECT_TRUE(control.Changed());
  EXPECT_EQ(control.ObjDescr(), u"CVelumControl name=Town,id=7,type=0"_s);
}

TEST(CVelumControl, FlagsByType) {
  for (qint32 type = EConText; type <= EConPicture; ++type) {
    const CVelumControl control(1, u"c"_s, type);
    const bool list = type <= EConTime;
    EXPECT_EQ(control.OkForListCol(), list) << type;
    EXPECT_EQ(control.Flags(), list ? 96 : 32) << type;
    EXPECT_EQ(control.AllowsCombo(), type <= EConReal) << type;
  }
}

TEST(CVelumControl, TypeTexts) {
  const QString names[] = {u"Text"_s,    u"Integer"_s, u"Real"_s,    u"Date"_s,   u"Time"_s,
                           u"Boolean"_s, u"List"_s,    u"Command"_s, u"Picture"_s};
  for (qint32 type = EConText; type <= EConPicture; ++type)
    EXPECT_EQ(CVelumControl(1, u"c"_s, type).TypeStr(), names[type]);
  for (const qint32 type : {-1, 9}) {
    const CVelumControl control(1, u"c"_s, type);
    EXPECT_EQ(AssertText([&] { static_cast<void>(control.TypeStr()); }), u"iType"_s);
    EXPECT_EQ(RaisedOverruled([&] { EXPECT_EQ(control.TypeStr(), QString()); }), -1);
  }
}

TEST(CVelumControl, EverySetterStoresAndMarksChanged) {
  CVelumControl control(1, u"c"_s, EConText);
  control.SetFlags(EConComboText);
  const Ref<CVelumArray> listCol = MakeRef<CVelumArray>(0, EValInt);
  listCol->SetChanged(false);
  const Ref<CVelumArray> script = MakeRef<CVelumArray>(EArrStrKey, EValStr);
  script->SetChanged(false);
  const Ref<CVelumFont> font = MakeRef<CVelumFont>();
  font->SetChanged(false);
  const auto check = [&control](auto aSet, auto aGet) {
    control.SetChanged(false);
    EXPECT_FALSE(control.Changed());
    aSet();
    EXPECT_TRUE(control.Changed());
    EXPECT_TRUE(aGet());
  };
  check([&] { control.SetId(2); }, [&] { return control.Id() == 2; });
  check([&] { control.SetName(u"n"_s); }, [&] { return control.Name() == u"n"_s; });
  check([&] { control.SetDescr(u"d"_s); }, [&] { return control.Descr() == u"d"_s; });
  check([&] { control.SetLabel(u"l"_s); }, [&] { return control.Label() == u"l"_s; });
  check([&] { control.SetConType(EConReal); }, [&] { return control.ConType() == EConReal; });
  check([&] { control.SetVisLines(3); }, [&] { return control.VisLines() == 3; });
  check([&] { control.SetVisChar(4); }, [&] { return control.VisChar() == 4; });
  check([&] { control.SetDefaultVal(u"5"_s); }, [&] { return control.DefaultVal() == u"5"_s; });
  check([&] { control.SetFlags(2); }, [&] { return control.Flags() == 2; });
  check([&] { control.SetFlag(16, true); }, [&] { return control.Flags() == 18; });
  check([&] { control.SetMaxChar(6); }, [&] { return control.MaxChar() == 6; });
  check([&] { control.SetDigits(2); }, [&] { return control.Digits() == 2; });
  check([&] { control.SetListVisChar(8); }, [&] { return control.TrueListVisChar() == 8; });
  check([&] { control.SetListColTitle(u"t"_s); }, [&] { return control.TrueListColTitle() == u"t"_s; });
  check([&] { control.SetStdCmd(EStdGoToCard); }, [&] { return control.StdCmd() == 6; });
  check([&] { control.SetListCol(listCol); }, [&] { return control.ListCol() == listCol; });
  check([&] { control.SetPartnerId(9); }, [&] { return control.PartnerId() == 9; });
  check([&] { control.SetRefControlId(10); }, [&] { return control.RefControlId() == 10; });
  check([&] { control.SetSelBackgroundId(11); }, [&] { return control.SelBackgroundId() == 11; });
  check([&] { control.SetSelControlId(12); }, [&] { return control.SelControlId() == 12; });
  check([&] { control.SetDestCardId(13); }, [&] { return control.DestCardId() == 13; });
  check([&] { control.SetScriptSource(u"s"_s); }, [&] { return control.ScriptSource() == u"s"_s; });
  check([&] { control.SetScript(script); }, [&] { return control.Script() == script; });
  check([&] { control.SetFont(font); }, [&] { return control.Font() == font; });
  check([&] { control.SetBackColor(14); }, [&] { return control.BackColor() == 14; });
}

TEST(CVelumControl, OwnedObjectsCountAsChanges) {
  CVelumControl control(1, u"c"_s, EConList);
  control.SetListCol(MakeRef<CVelumArray>(0, EValInt));
  control.SetScript(MakeRef<CVelumArray>(EArrStrKey, EValStr));
  control.SetFont(MakeRef<CVelumFont>());
  control.SetChanged(false);
  EXPECT_FALSE(control.Changed());
  EXPECT_FALSE(control.Font()->Changed());
  control.Font()->SetFlags(EFntBold);
  EXPECT_TRUE(control.Changed());
  EXPECT_FALSE(control.OwnChanged());
  control.SetChanged(false);
  control.ListCol()->Clear();
  EXPECT_TRUE(control.Changed());
  control.SetChanged(false);
  control.Script()->Clear();
  EXPECT_TRUE(control.Changed());
}

TEST(CVelumControl, RunTimeReferencesDoNotMarkChanged) {
  CVelumControl control(1, u"c"_s, EConList);
  control.SetChanged(false);
  QObject base;
  control.SetBaseControl(&base, 5);
  control.SetBaseLabel(&base);
  control.SetBaseFunc(&base);
  control.SetDynFlags(EDynRefControl);
  control.SetDynFlag(EDynKeyPart, true);
  EXPECT_FALSE(control.Changed());
  EXPECT_EQ(control.BaseControl(), &base);
  EXPECT_EQ(control.BaseType(), 5);
  EXPECT_EQ(control.BaseLabel(), &base);
  EXPECT_EQ(control.BaseFunc(), &base);
  EXPECT_EQ(control.DynFlags(), EDynRefControl | EDynKeyPart);
  EXPECT_TRUE(control.DynFlag(EDynKeyPart));
  control.SetDynFlag(EDynKeyPart, false);
  EXPECT_EQ(control.DynFlags(), EDynRefControl);
  control.SetDynFlag(EDynKeyPart, false);
  EXPECT_EQ(control.DynFlags(), EDynRefControl) << "a flag that is not set is not taken off";
}

TEST(CVelumControl, ABaseControlThatGoesLeavesNothingBehind) {
  CVelumControl control(1, u"c"_s, EConText);
  auto base = std::make_unique<QObject>();
  control.SetBaseControl(base.get(), 0);
  base.reset();
  EXPECT_EQ(control.BaseControl(), nullptr);
}

TEST(CVelumControl, FlagTests) {
  CVelumControl control(1, u"c"_s, EConText);
  EXPECT_TRUE(control.InCardView());
  EXPECT_TRUE(control.InCardList());
  control.SetFlag(EConInCardList, false);
  EXPECT_FALSE(control.InCardList());
  control.SetChanged(false);
  control.SetFlag(EConInCardList, false);
  EXPECT_EQ(control.Flags(), EConInCardView);
  EXPECT_FALSE(control.Changed());
}

TEST(CVelumControl, ListColumnFallbacks) {
  CVelumControl control(1, u"Town"_s, EConText);
  EXPECT_EQ(control.ListColTitle(), u"Town"_s);
  control.SetListColTitle(u"T"_s);
  EXPECT_EQ(control.ListColTitle(), u"T"_s);
  control.SetVisChar(25);
  EXPECT_EQ(control.ListVisChar(), 25);
  control.SetListVisChar(12);
  EXPECT_EQ(control.ListVisChar(), 12);
  control.SetListVisChar(ENoShort);
  control.SetVisChar(ENoShort);
  EXPECT_EQ(control.ListVisChar(), 1);
  EXPECT_EQ(control.TrueListVisChar(), ENoShort);
}

TEST(CVelumControl, ListColInfo) {
  qint16 width = 0;
  CVelumControl control(1, u"c"_s, EConText);
  EXPECT_TRUE(control.GetListColInfo(width));
  EXPECT_EQ(width, 30);
  control.SetListVisChar(12);
  EXPECT_TRUE(control.GetListColInfo(width));
  EXPECT_EQ(width, 12);
  control.SetFlag(EConInCardList, false);
  EXPECT_FALSE(control.GetListColInfo(width));
  EXPECT_EQ(width, ENoShort);
  CVelumControl boolean(1, u"c"_s, EConBoolean);
  boolean.SetFlag(EConInCardList, true);
  EXPECT_FALSE(boolean.GetListColInfo(width));
  EXPECT_EQ(width, ENoShort);
}

TEST(CVelumControl, PartnerNeedsAComboFlag) {
  CVelumControl control(1, u"c"_s, EConText);
  EXPECT_EQ(AssertText([&] { control.SetPartnerId(2); }), u"LetPartnerId Combo"_s);
  EXPECT_EQ(control.PartnerId(), ENoInt);
  EXPECT_EQ(AssertText([&] { control.SetPartnerId(ENoInt); }), QString());
  control.SetFlag(EConComboText, true);
  control.SetPartnerId(2);
  EXPECT_EQ(control.PartnerId(), 2);
  control.SetFlags(EConComboList);
  control.SetPartnerId(3);
  EXPECT_EQ(control.PartnerId(), 3);
}

TEST(CVelumControl, ListBoxFollowsTypeAndFlags) {
  CSpyFactory factory;
  CVelumControl text(1, u"c"_s, EConText);
  EXPECT_FALSE(text.ListBox());
  EXPECT_EQ(text.LisType(), -1);
  CVelumControl list(1, u"c"_s, EConList);
  EXPECT_EQ(factory.iListBoxes, 0);
  EXPECT_EQ(list.ListBox()->LisType(), ELisSingle);
  EXPECT_TRUE(SpyOf(list).iFlag4);
  EXPECT_EQ(factory.iListBoxes, 1);
  list.SetFlag(EConDisabled, true);
  EXPECT_EQ(list.ListBox()->LisType(), ELisSingle);
  EXPECT_EQ(factory.iListBoxes, 1);
  list.SetFlag(EConComboList, true);
  EXPECT_EQ(list.ListBox()->LisType(), ELisCombo);
  EXPECT_TRUE(SpyOf(list).iFlag4);
  EXPECT_EQ(factory.iListBoxes, 2);
  text.SetFlag(EConComboList, true);
  EXPECT_EQ(text.ListBox()->LisType(), ELisCombo);
  text.SetFlag(EConComboList, false);
  EXPECT_FALSE(text.ListBox());
  text.SetConType(EConList);
  EXPECT_EQ(text.ListBox()->LisType(), ELisSingle);
}

TEST(CVelumControl, ListBoxIsToldItsBase) {
  CSpyFactory factory;
  CVelumControl control(1, u"c"_s, EConList);
  QObject base;
  control.SetBaseControl(&base, 5);
  EXPECT_EQ(factory.iListBoxes, 0);
  EXPECT_EQ(SpyOf(control).iBase, &base);
  QObject other;
  control.SetBaseControl(&other, 5);
  EXPECT_EQ(SpyOf(control).iBase, &other);
  control.SetBaseControl(nullptr, ENoShort);
  EXPECT_EQ(SpyOf(control).iBase, nullptr);
}

TEST(CVelumControl, WikiTextBoxNeedsItsFlag) {
  CSpyFactory factory;
  CVelumControl control(1, u"c"_s, EConText);
  EXPECT_FALSE(control.WikiTextBox());
  control.SetFlag(EConWikiText, true);
  EXPECT_TRUE(control.WikiTextBox());
  EXPECT_TRUE(control.WikiTextBox() == control.WikiTextBox());
  EXPECT_EQ(factory.iWikiBoxes, 1);
  control.SetFlag(EConWikiText, false);
  EXPECT_FALSE(control.WikiTextBox());
}

TEST(CVelumControl, WithoutWindowsAListBoxStoresLines) {
  CVelumControl control(1, u"c"_s, EConList);
  control.SetFlag(EConWikiText, true);
  EXPECT_FALSE(control.WikiTextBox());
  control.SetList(nullptr, u"a\r\nb\r\n\r\nc"_s, false);
  const Ref<CVelumListBoxBase> box = control.ListBox();
  EXPECT_EQ(box->ObjDescr(), u"CVelumListBox type=0,numLines=4"_s);
  EXPECT_EQ(box->Line(3), u"c"_s);
  EXPECT_EQ(AssertText([&] { static_cast<void>(box->Line(4)); }), u"Get Line index"_s);
  EXPECT_EQ(RaisedOverruled([&] { static_cast<void>(box->Line(-1)); }), EHostIndex);
  EXPECT_EQ(control.GetList(), u"a\r\nb\r\n\r\nc"_s);
  control.SetList(nullptr, QString(), false);
  EXPECT_EQ(control.GetList(), QString());
}

TEST(CVelumControl, AListOnAControlWithoutAListBoxIsAHostError) {
  CVelumControl control(1, u"c"_s, EConText);
  EXPECT_EQ(Raised([&] { control.SetList(nullptr, u"a"_s, false); }), EHostObjectNotSet);
  EXPECT_EQ(Raised([&] { static_cast<void>(control.GetList()); }), EHostObjectNotSet);
}

// Three cards of the first background, in the order Ann, Cat, Bob by a late insertion.
struct CVelumControlLists : testing::Test {
  CVelumControlLists() {
    iAnn = iSample.AddCard(iSample.iFirst, u"Ann"_s);
    iBob = iSample.AddCard(iSample.iFirst, u"Bob"_s);
    iOther = iSample.AddCard(iSample.iSecond, u"Other"_s);
    iCat = MakeRef<CVelumCard>(u"Cat"_s, iSample.iFirst);
    iSample.iStack->AddCard(iCat, iBob, false);
    iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
    iAnn->SetControlVal(iSample.iNote->Id(), TVelumValue::OfStr(u"a\r\nb\tc"_s));
    iAnn->SetControlVal(iSample.iSize->Id(), TVelumValue::OfInt(1234));
    iBob->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Graz"_s));
    iCat->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  }
  QString List(CVelumControl& aControl, const QString& aRef) const {
    return aControl.GetCardList(*iSample.iStack, TVelumValue::OfStr(aRef));
  }

  TSampleStack iSample;
  Ref<CVelumCard> iAnn;
  Ref<CVelumCard> iBob;
  Ref<CVelumCard> iCat;
  Ref<CVelumCard> iOther;
};

TEST_F(CVelumControlLists, WithoutSelControlAllCardsOfTheBackgroundInOrder) {
  EXPECT_EQ(List(*iSample.iAll, u"any"_s), u"0\tAnn\r\n3\tCat\r\n1\tBob"_s);
}

TEST_F(CVelumControlLists, WithSelControlOnlyEqualCardsAndTheirColumnsOnOneLine) {
  EXPECT_EQ(List(*iSample.iSome, u"Bern"_s), u"0\ta b c\t1234\r\n3\t\t"_s);
  EXPECT_EQ(List(*iSample.iSome, u"bern"_s), QString());
  EXPECT_EQ(List(*iSample.iSome, u"Graz"_s), u"1\t\t"_s);
}

TEST_F(CVelumControlLists, UnsetSelectingValuesCountAsTheirZero) {
  iSample.iSome->SetSelControlId(iSample.iNote->Id());
  EXPECT_EQ(List(*iSample.iSome, QString()), u"3\t\t\r\n1\t\t"_s);
}

TEST_F(CVelumControlLists, AComboListsNamesAlone) {
  iSample.iAll->SetFlag(EConComboList, true);
  EXPECT_EQ(List(*iSample.iAll, QString()), u"Ann\r\nCat\r\nBob"_s);
  iSample.iStack->RenameCard(iAnn, QString());
  EXPECT_EQ(List(*iSample.iAll, QString()), u"\r\nCat\r\nBob"_s);
}

TEST_F(CVelumControlLists, DoesNotDependOnTheListBox) {
  CSpyFactory factory;
  static_cast<void>(List(*iSample.iAll, QString()));
  EXPECT_EQ(factory.iListBoxes, 0);
}

TEST_F(CVelumControlLists, Assertions) {
  iSample.iAll->SetFlag(EConCardList, false);
  EXPECT_EQ(AssertText([&] { static_cast<void>(List(*iSample.iAll, QString())); }), u"EConCardList"_s);
  iSample.iAll->SetFlag(EConCardList, true);
  iSample.iAll->SetSelBackgroundId(999);
  EXPECT_EQ(AssertText([&] { static_cast<void>(List(*iSample.iAll, QString())); }), u"Background def"_s);
  EXPECT_EQ(gLastError.iProc, u"GetCardList"_s);
  EXPECT_EQ(RaisedOverruled([&] { EXPECT_EQ(List(*iSample.iAll, QString()), QString()); }), -1);
  iSample.iSome->ListCol()->SetIntNum(0, 999);
  EXPECT_EQ(AssertText([&] { static_cast<void>(List(*iSample.iSome, u"Bern"_s)); }), u"control found"_s);
  EXPECT_EQ(RaisedOverruled([&] { EXPECT_EQ(List(*iSample.iSome, u"Graz"_s), u"1\t"_s); }), -1);
}

void FillColumns(CVelumArray& aCols, int aCount, qint32 aId) {
  aCols.Clear();
  TVelumElem elem;
  aCols.InitElem(elem);
  elem.iVal = TVelumValue::OfInt(aId);
  for (int i = 0; i < aCount; ++i) aCols.CreateAtEnd(elem);
}

TEST_F(CVelumControlLists, AtMostFiftyColumnsInTheText) {
  FillColumns(*iSample.iSome->ListCol(), 120, iSample.iTown->Id());
  EXPECT_EQ(List(*iSample.iSome, u"Graz"_s).count(u'\t'), 50);
}

TEST_F(CVelumControlLists, SetListTakesCardsByTheirIds) {
  CSpyFactory factory;
  iSample.iAll->SetList(iSample.iStack.Get(), u"1\tBob\r\n 3 x\tCat\tmore\r\n99\tgone\r\n2"_s, true);
  const CSpyBox& box = SpyOf(*iSample.iAll);
  EXPECT_EQ(box.iLines, QList<QString>({u"Bob"_s, u"Cat\tmore"_s, u"gone"_s, QString()}));
  EXPECT_TRUE(box.iObjs[0] == iBob.Get());
  EXPECT_TRUE(box.iObjs[1] == iCat.Get());
  EXPECT_FALSE(box.iObjs[2]);
  EXPECT_TRUE(box.iObjs[3] == iOther.Get());
  EXPECT_EQ(box.iTitles, QList<QString>({u"Card Name"_s}));
  EXPECT_TRUE(box.iFraction);
  EXPECT_EQ(box.iShown, 1);
}

TEST_F(CVelumControlLists, SetListTakesNoCardForIdsBeyondAllBounds) {
  CSpyFactory factory;
  iSample.iAll->SetList(iSample.iStack.Get(), u"99999999999999\ta\r\n-1\tb\r\n1E+300\tc\r\n1999999999\td"_s,
                        true);
  const CSpyBox& box = SpyOf(*iSample.iAll);
  ASSERT_EQ(box.NumLines(), 4);
  for (const Ref<CVelumObject>& obj : box.iObjs) EXPECT_FALSE(obj);
}

TEST_F(CVelumControlLists, SetListWithoutIds) {
  CSpyFactory factory;
  CVelumControl list(1, u"l"_s, EConList);
  list.SetList(iSample.iStack.Get(), u"1\tone\r\n2"_s, false);
  const CSpyBox& box = SpyOf(list);
  EXPECT_EQ(box.iLines, QList<QString>({u"1\tone"_s, u"2"_s}));
  EXPECT_FALSE(box.iObjs[0]);
  EXPECT_EQ(box.iTitles, QList<QString>({u"Value"_s}));
  list.SetList(iSample.iStack.Get(), u"x"_s, false);
  EXPECT_EQ(box.NumLines(), 1);
  EXPECT_EQ(list.GetList(), u"x"_s);
}

TEST_F(CVelumControlLists, SetListDefinesTheColumns) {
  CSpyFactory factory;
  iSample.iNote->SetListColTitle(u"A note"_s);
  iSample.iNote->SetListVisChar(10);
  iSample.iSome->SetList(iSample.iStack.Get(), List(*iSample.iSome, u"Bern"_s), true);
  const CSpyBox& box = SpyOf(*iSample.iSome);
  const TVelumMetrics& metrics = CVelumSeams::Metrics();
  EXPECT_EQ(box.iTitles, QList<QString>({u"A note"_s, u"Size"_s}));
  ASSERT_EQ(box.iWidths.size(), 2);
  EXPECT_FLOAT_EQ(box.iWidths[0], 10 * metrics.iAvgCharWidth + metrics.iFieldGapY);
  EXPECT_FLOAT_EQ(box.iWidths[1], 30 * metrics.iAvgCharWidth + metrics.iFieldGapY);
  EXPECT_FALSE(box.iFraction);
  EXPECT_EQ(box.iLines[0], u"a b c\t1234"_s);

  FillColumns(*iSample.iSome->ListCol(), 120, iSample.iTown->Id());
  iSample.iSome->SetList(iSample.iStack.Get(), QString(), true);
  EXPECT_EQ(box.iTitles.size(), 100);
}

TEST_F(CVelumControlLists, AComboGetsNoColumns) {
  CSpyFactory factory;
  iSample.iSome->SetFlag(EConComboList, true);
  iSample.iSome->SetList(iSample.iStack.Get(), u"a\r\nb"_s, false);
  EXPECT_EQ(SpyOf(*iSample.iSome).iTitles, QList<QString>());
  EXPECT_EQ(SpyOf(*iSample.iSome).iShown, 1);
}

TEST(CVelumControl, CardListOfManyCardsIsLinear) {
  TSampleStack sample;
  constexpr int many = 100000;
  sample.iStack->BeginBulk(many);
  for (int i = 0; i < many; ++i) sample.AddCard(sample.iFirst, u"card"_s);
  sample.iStack->EndBulk();
  const QString list = sample.iAll->GetCardList(*sample.iStack, TVelumValue());
  EXPECT_EQ(list.count(u'\n'), many - 1);
  EXPECT_TRUE(list.endsWith(u"\r\n99999\tcard"_s));
}

const Bytes& PutControl(Bytes& aBytes, int aGen) {
  aBytes.Common(0, aGen, u"Town"_s, 7, 96).Str(u"d"_s).Str(u"l"_s).Short(EConReal).Str(u"5"_s);
  aBytes.Short(3).Short(25).Short(200);
  if (aGen >= 3) aBytes.Short(2);
  aBytes.Short(12).Str(u"Col"_s).Int(1).Int(2).Int(3).Int(4).Short(0).Short(6).Int(8);
  return aBytes;
}

TEST(CVelumControl, ReadsWhatItStores) {
  Bytes bytes;
  CVelumControl control;
  control.SetFlags(1);
  Load(control, PutControl(bytes, 3));
  EXPECT_FALSE(control.Changed());
  EXPECT_EQ(control.Name(), u"Town"_s);
  EXPECT_EQ(control.Id(), 7);
  EXPECT_EQ(control.Flags(), 96);
  EXPECT_EQ(control.Descr(), u"d"_s);
  EXPECT_EQ(control.Label(), u"l"_s);
  EXPECT_EQ(control.ConType(), EConReal);
  EXPECT_EQ(control.DefaultVal(), u"5"_s);
  EXPECT_EQ(control.VisLines(), 3);
  EXPECT_EQ(control.VisChar(), 25);
  EXPECT_EQ(control.MaxChar(), 200);
  EXPECT_EQ(control.Digits(), 2);
  EXPECT_EQ(control.TrueListVisChar(), 12);
  EXPECT_EQ(control.TrueListColTitle(), u"Col"_s);
  EXPECT_EQ(control.PartnerId(), 1);
  EXPECT_EQ(control.RefControlId(), 2);
  EXPECT_EQ(control.SelBackgroundId(), 3);
  EXPECT_EQ(control.SelControlId(), 4);
  EXPECT_EQ(control.StdCmd(), 6);
  EXPECT_EQ(control.DestCardId(), 8);
  EXPECT_FALSE(control.WikiTextBox());
  EXPECT_EQ(Stored(control), QByteArray(bytes));
  EXPECT_EQ(control.ExtLen(), QByteArray(bytes).size());
}

TEST(CVelumControl, GenerationTwoHasNoDigits) {
  Bytes old;
  CVelumControl control;
  Load(control, PutControl(old, 2));
  EXPECT_EQ(control.Digits(), ENoShort);
  EXPECT_EQ(control.TrueListVisChar(), 12);
  const QByteArray saved = Stored(control);
  EXPECT_EQ(saved.size(), QByteArray(old).size() + 2);
  EXPECT_EQ(saved.mid(2, 2), QByteArray("\3\0", 2));
  CVelumControl again;
  Load(again, saved);
  EXPECT_EQ(again.Digits(), ENoShort);
  EXPECT_EQ(Raised([&] { Load(again, Bytes().Short(0).Short(1)); }), 1001);
  EXPECT_EQ(Raised([&] { Load(again, Bytes().Short(0).Short(4)); }), 1002);
}

TEST(CVelumControl, StoresScriptFontAndColumns) {
  CVelumControl control(1, u"c"_s, EConList);
  const Ref<CVelumArray> script = MakeRef<CVelumArray>(EArrStrKey, EValStr);
  TVelumElem elem;
  script->InitElem(elem);
  elem.iStrKey = u"openCard"_s;
  elem.iVal = TVelumValue::OfStr(u"0A"_s);
  script->CreateStrKey(elem);
  control.SetScript(script);
  control.SetScriptSource(u"on openCard"_s);
  control.SetFont(MakeRef<CVelumFont>(u"Arial"_s, qint16{240}, 1));
  const Ref<CVelumArray> cols = MakeRef<CVelumArray>(0, EValInt);
  FillColumns(*cols, 2, 5);
  control.SetListCol(cols);
  const QByteArray bytes = Stored(control);
  EXPECT_EQ(control.ExtLen(), bytes.size());
  EXPECT_EQ(control.ScriptCount(), 1);
  CVelumControl read;
  Load(read, bytes);
  EXPECT_FALSE(read.Changed());
  EXPECT_EQ(read.ScriptSource(), u"on openCard"_s);
  ASSERT_EQ(read.ScriptCount(), 1);
  EXPECT_EQ(read.Script()->StrKeyAt(0), u"openCard"_s);
  ASSERT_TRUE(read.Font());
  EXPECT_EQ(read.Font()->Size(), 240);
  ASSERT_EQ(read.NumListCols(), 2);
  EXPECT_EQ(read.ListCol()->IntNum(1), 5);
  EXPECT_EQ(Stored(read), bytes);
}

TEST(CVelumControl, EmptyScriptsAndColumnsAreLeftOut) {
  CVelumControl plain(1, u"c"_s, EConList);
  CVelumControl control(1, u"c"_s, EConList);
  control.SetScript(MakeRef<CVelumArray>(EArrStrKey, EValStr));
  control.SetListCol(MakeRef<CVelumArray>(0, EValInt));
  EXPECT_EQ(Stored(control), Stored(plain));
  EXPECT_EQ(control.ExtLen(), plain.ExtLen());
}

TEST(CVelumControl, BadStructures) {
  Bytes base;
  const QByteArray good = PutControl(base, 3);
  const qsizetype conType = 4 + 10 + 4 + 4 + 2 + 2 + 2 + 4 + 4 + 4;
  const auto patched = [&good](qsizetype aAt, const QByteArray& aBytes) {
    return QByteArray(good).replace(aAt, aBytes.size(), aBytes);
  };
  CVelumControl control;
  ASSERT_EQ(good.mid(conType, 2), QByteArray(Bytes().Short(EConReal)));
  for (const int type : {-1, 9, 31999})
    EXPECT_EQ(Raised([&] { Load(control, patched(conType, Bytes().Short(type))); }), 1006) << type;
  EXPECT_EQ(gLastError.iP1, u"CVelumControl.Internalize: ConType"_s);

  const qsizetype numCols = good.size() - 8;
  const QByteArray head = good.left(numCols) + QByteArray(Bytes().Short(1));
  const QByteArray tail = good.right(6);
  const auto withCols = [&](qint32 aFlags, int aType) {
    return QByteArray(Bytes().Raw(head).Array(aFlags, aType, 0).Raw(tail));
  };
  EXPECT_EQ(Raised([&] { Load(control, withCols(0, EValInt)); }), -1);
  EXPECT_EQ(Raised([&] { Load(control, withCols(EArrIntKey, EValInt)); }), 1006);
  EXPECT_EQ(Raised([&] { Load(control, withCols(EArrMixed, EValInt)); }), 1006);
  EXPECT_EQ(Raised([&] { Load(control, withCols(0, EValStr)); }), 1006);
  EXPECT_EQ(gLastError.iP1, u"CVelumControl.Internalize: ListCol"_s);
}

TEST(CVelumControl, AScriptOfAnotherMakeIsABadStructure) {
  const auto load = [](qint32 aFlags, int aType) {
    CVelumControl control;
    Bytes bytes;
    bytes.Short(0).Short(3).Str(u"c"_s).Int(1).Int(0).Str({}).Short(1).Array(aFlags, aType, 0);
    Load(control, bytes);
  };
  for (const int type : {EValInt, EValArray}) EXPECT_EQ(Raised([&] { load(EArrStrKey, type); }), 1006);
  for (const qint32 flags : {0, 2, 5, 17}) EXPECT_EQ(Raised([&] { load(flags, EValStr); }), 1006);
  EXPECT_EQ(gLastError.iP1, u"CVelumLib.InternalizeCommon: script"_s);
}

} // namespace
