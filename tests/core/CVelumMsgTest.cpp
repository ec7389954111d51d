#include "core/CVelumMsg.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include "core/CVelumDialogLib.h"

#include <gtest/gtest.h>
#include <map>

namespace {

struct TExpected {
  int iNumber;
  const char* iName;
  const char* iText;
};

// The catalogue as users and help pages know it, written down apart from the program's own table.
const TExpected ECatalogue[] = {
    {0, "EMsgEmptyStackOk", R"(Delete all cards?)"},
    {1, "EMsgDuplicateName", R"(There is already a %0 with this name.)"},
    {2, "EMsgEmptyName", R"(An empty name is not allowed for a %0.)"},
    {3, "EMsgSystemError", R"(The Host Runtime System reported the error: %0)"},
    {4, "EMsgBackgroundUsed",
     R"(You cannot delete the background because it is used by field '%0' of background '%1'.)"},
    {5, "EMsgDeleteCombo",
     R"(This field is part of a combo box, and the partner field '%0' will be deleted as well. Proceed?)"},
    {6, "EMsgComboListCreated", R"(A list field '%0' was created as partner field in this combo box.)"},
    {7, "EMsgBreakCombo",
     R"(Disabling this flag will break up the combo box into 2 independent fields. Proceed?)"},
    {8, "EMsgEmptyField", R"(You must specify some value on field '%0', empty is not allowed.)"},
    {9, "EMsgNumTooHigh", R"(The given value of %0 on field '%1' is too high, the maximum allowed is %2.)"},
    {10, "EMsgNumTooLow", R"(The given value of %0 on field '%1' is too low, the minimum allowed is %2.)"},
    {11, "EMsgNotNum", R"(The given string '%0' on field '%1' ist not a valid number.)"},
    {12, "EMsgBadLinkTarget", R"(This link gives '%0' as link target, but there is no card with this name.)"},
    {13, "EMsgSortKeyRef",
     R"(The sort key is used to keep the cards of a background sorted, and thus cannot be deleted.)"},
    {14, "EMsgNotForSortKey", R"(The type of this field/control is not suitable for using in a sort key.)"},
    {15, "EMsgNoSortKey", R"(There is no sort key available for this background.)"},
    {16, "EMsgUnknownPicFormat", R"(The content of the file was not recognized as a valid picture.)"},
    {17, "EMsgUnsupportedPicFormat",
     R"(The Symbian Orvelle client probably does not support this picture format. Proceed anyway?)"},
    {18, "EMsgCouldNotSave", R"(The stack was not saved due to an error.\n%0)"},
    {19, "EMsgDeleteCardsOk", R"(Delete all cards of the selected background?)"},
    {20, "EMsgDeleteControlOk", R"(Delete the field/control from %0 cards, with %1 set values?)"},
    {21, "EMsgDeleteBackgroundOk", R"(Delete the background together with its %0 cards?)"},
    {22, "EMsgControlMissing",
     R"(A field with the name '%0' could not be found in background '%1', but is needed for this operation.)"},
    {23, "EMsgControlNotUsable", R"(The field '%0' is not usable for this operation: %1)"},
    {24, "EMsgOrderCorrections",
     R"(Caution: There were %0 card order corrections, caused by differences in locales and/or differences between Windows and Symbian.)"},
    {25, "EMsgFontSupport",
     R"(Your phone will probably only display a font with the face name '%0' after you installed such a font yourself on your phone. (The SE UIQ3 phones only support a single font 'Sans-Serif Latin' out of the box.))"},
    {26, "EMsgTooManyItems",
     R"(There were too many items per line (more than 20) to import them all. Some data will be missing.)"},
    {27, "EMsgEmptyFile", R"(The file is empty.)"},
    {28, "EMsgSurplusItems",
     R"(On %0 lines there were more items than on the first line. Those items were ignored, and some data will be missing.)"},
    {29, "EMsgDeleteCardOk", R"(Delete card '%0'?)"},
    {30, "EMsgDiscardChangesOk", R"(Discard changes in %0?)"},
    {31, "EMsgAssertFailedOk",
     R"(Assert failed (probably due to a bug):\n< %0 >\nIgnore and try to proceed nevertheless?)"},
    {98, "EMsgCannotUndoOk", "This cannot be undone. Proceed?"},
    {1000, "EMsgAssertFailed", R"(An internal program error occured, probably because of a 'bug'.)"},
    {1001, "EMsgGenTooLow", R"(The format of the stack is too old and not supported any more.\n%0)"},
    {1002, "EMsgGenTooHigh",
     R"(The stack was written with a later version of the program and cannot be opened.\n%0)"},
    {1003, "EMsgNotAOrvelle", R"(The file is most probably not a Orvelle.\n%0)"},
    {1004, "EMsgNoFileAccess", R"(The program was not allowed to access the file.\n%0)"},
    {1005, "EMsgFileNotFound", R"(A file of the given name could not be found.\n%0)"},
    {1006, "EMsgBadStruct", R"(The stack file contains a structural error and cannot be opened.\n%0\n%1)"},
    {1007, "EMsgWrongFormat", R"(The file is not of the expected format and cannot be imported.\n%0)"},
    {1050, "EMsgWrongKeyword", R"(The keyword '%0' is expected, but the source gives '%1'.)"},
    {1051, "EMsgBadParamList", R"(Error in function call parameter list, ',' or ')' is expected.)"},
    {1052, "EMsgWrongSymbol", R"(The symbol '%0' is expected, but the source gives '%1'.)"},
    {1053, "EMsgBadExpression", R"(There is an error in the expression due to the unexpected '%0'.)"},
    {1054, "EMsgSourceEnd", R"(The end of the source lines was reached early.)"},
    {1080, "EMsgCardNotFound", R"(The card '%0' cannot be found.)"},
    {1081, "EMsgWrongValType",
     R"(A variable or expression has the type '%0' which is not allowed for this operation.)"},
    {1082, "EMsgBackgroundNotFound", R"(The background '%0' cannot be found.)"},
    {1083, "EMsgControlNotFound", R"(The field or control '%0' cannot be found.)"},
    {1084, "EMsgIncompatibleValTypes",
     R"(The operation is not possible, because the given types '%0' and '%1' are not compatible.)"},
    {1098, "EMsgChangeDoesNotFit",
     "The step '%0' cannot be taken back or made again, because the stack is not as the step left it. The "
     "stack stays "
     "as it is; earlier steps are forgotten."},
};

TEST(CVelumMsg, TableHoldsExactlyTheCatalogue) {
  CVelumMsg::InitMessages();
  CVelumMsg::InitMessages();
  std::map<int, QString> expected;
  for (const TExpected& entry : ECatalogue)
    expected[entry.iNumber] = QString::fromLatin1(entry.iName) + u": "_s + QString::fromLatin1(entry.iText);
  ASSERT_EQ(expected.size(), 52U);
  for (int number = 0; number <= 1100; ++number) {
    EXPECT_EQ(CVelumMsg::Entry(number), expected[number]) << number;
    EXPECT_EQ(CVelumMsg::Name(number), expected[number].section(u": "_s, 0, 0)) << number;
  }
}

TEST(CVelumMsg, PutsParameterIn) {
  ScriptedPresenter presenter;
  CVelumMsg::Show(EMsgEmptyName, EMsgCritical, u"card"_s, CVelumMsg::EUndefParam, CVelumMsg::EUndefParam);
  ASSERT_EQ(presenter.Count(), 1);
  EXPECT_EQ(presenter.Shown()[0].iMsg, 2);
  EXPECT_EQ(presenter.Shown()[0].iClass, EMsgCritical);
  EXPECT_EQ(presenter.Shown()[0].iName, u"EMsgEmptyName"_s);
  EXPECT_EQ(presenter.LastText(), u"An empty name is not allowed for a card."_s);
  EXPECT_EQ(CVelumMsg::LastMsgText(), u"An empty name is not allowed for a card."_s);
  EXPECT_EQ(CVelumMsg::LastMsgName(), u"EMsgEmptyName"_s);
}

TEST(CVelumMsg, UndefinedParameterKeepsItsMark) {
  EXPECT_EQ(CVelumMsg::Text(EMsgIncompatibleValTypes, u"Date"_s),
            u"The operation is not possible, because the given types 'Date' and '%1' are not compatible."_s);
  EXPECT_EQ(CVelumMsg::Text(EMsgEmptyName, u"<undef>"_s), u"An empty name is not allowed for a %0."_s);
  EXPECT_TRUE(CVelumMsg::Text(EMsgSurplusItems, u"2"_s).startsWith(u"On 2 lines there were more items"));
  EXPECT_TRUE(CVelumMsg::Text(EMsgSurplusItems, u"1"_s).startsWith(u"On 1 line there were more items"));
  EXPECT_TRUE(CVelumMsg::Text(EMsgOrderCorrections, u"1"_s)
                  .startsWith(u"Caution: There was 1 card order correction, caused"));
}

TEST(CVelumMsg, ParametersArePutInOneAfterTheOther) {
  EXPECT_EQ(CVelumMsg::Text(EMsgWrongSymbol, u"%1 and %2"_s, u"<%2>"_s, u"two"_s),
            u"The symbol '<two> and two' is expected, but the source gives '<two>'."_s);
  // A parameter that comes later does not bring an earlier one back.
  EXPECT_EQ(CVelumMsg::Text(EMsgWrongSymbol, u"a"_s, u"%0"_s),
            u"The symbol 'a' is expected, but the source gives '%0'."_s);
}

TEST(CVelumMsg, LineBreaksAreThoseOfTheTableOnly) {
  ScriptedPresenter presenter;
  CVelumMsg::Show(EMsgBadStruct, EMsgCritical, u"a\\new"_s, u"b"_s);
  EXPECT_EQ(CVelumMsg::LastMsgText(),
            u"The stack file contains a structural error and cannot be opened.\r\na\\new\r\nb"_s);
}

TEST(CVelumMsg, GapShowsAnEmptyBox) {
  ScriptedPresenter presenter;
  CVelumMsg::Show(32, EMsgInfo, u"x"_s, u"y"_s, u"z"_s);
  ASSERT_EQ(presenter.Count(), 1);
  EXPECT_EQ(presenter.LastMsg(), 32);
  EXPECT_EQ(presenter.LastText(), QString());
  EXPECT_EQ(CVelumMsg::LastMsgName(), QString());
}

TEST(CVelumMsg, NumbersOutsideTheTableAreRefused) {
  ScriptedPresenter presenter;
  for (const int number : {-1, 1101, 2000, 2001}) {
    try {
      CVelumMsg::Show(number, EMsgCritical, {});
      ADD_FAILURE() << number;
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EHostIndex);
    }
  }
  EXPECT_EQ(presenter.Count(), 0);
}

TEST(CVelumMsg, UnknownClassAsserts) {
  ScriptedPresenter presenter;
  for (const int cls : {-1, 4}) {
    EXPECT_THROW(CVelumMsg::Show(EMsgEmptyFile, cls, {}), CVelumException);
    EXPECT_EQ(CVelumMsg::LastMsgText(), u"Assert failed (probably due to a bug):\r\n< Show class %1 >\r\n"
                                        "Ignore and try to proceed nevertheless?"_s.arg(cls));
    EXPECT_EQ(gLastError.iMsgId, EMsgAssertFailed);
  }
  presenter.Answer(true);
  EXPECT_FALSE(CVelumMsg::Show(EMsgEmptyFile, 4, {}));
  EXPECT_EQ(presenter.LastMsg(), EMsgEmptyFile);
  EXPECT_EQ(presenter.Shown().last().iClass, EMsgCritical);
}

TEST(CVelumMsg, AskGivesTheAnswer) {
  ScriptedPresenter presenter;
  presenter.Answer(true).Answer(false);
  EXPECT_TRUE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"Ada"_s));
  EXPECT_EQ(presenter.LastText(), u"Delete card 'Ada'?"_s);
  EXPECT_FALSE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"Ada"_s));
  // A box that is just closed.
  EXPECT_FALSE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"Ada"_s));
}

TEST(CVelumMsg, OnlyQuestionsCanBeAnsweredYes) {
  struct CYes final : CVelumPresenter {
    bool Message(qint32, EMsgClass, const QString&, const QString&) override { return true; }
    void Tell(const QString&) override {}
    void HelpPage(const QString&) override {}
  } yes;
  CVelumSeams::SetPresenter(&yes);
  EXPECT_FALSE(CVelumMsg::Show(EMsgEmptyFile, EMsgInfo, {}));
  EXPECT_TRUE(CVelumMsg::Show(EMsgEmptyStackOk, EMsgQuestion, {}));
  CVelumSeams::SetPresenter(nullptr);
  EXPECT_FALSE(CVelumMsg::Show(EMsgEmptyStackOk, EMsgQuestion, {}));
}

TEST(CVelumMsg, ShowLastErrorShowsAnApplicationErrorWithItsParameters) {
  ScriptedPresenter presenter;
  CVelumError::SetErrorRecord(EMsgBadStruct, u"Proc"_s, u"one"_s, u"two"_s);
  CVelumMsg::ShowLastError();
  EXPECT_EQ(presenter.LastMsg(), EMsgBadStruct);
  EXPECT_EQ(presenter.Shown().last().iClass, EMsgCritical);
  EXPECT_EQ(presenter.LastText(),
            u"The stack file contains a structural error and cannot be opened.\r\none\r\ntwo"_s);
}

TEST(CVelumMsg, ShowLastErrorShowsAHostErrorByItsDescription) {
  ScriptedPresenter presenter;
  try {
    CVelumError::RaiseHost(EHostDiskFull, u"/data/x"_s);
  } catch (...) {
    CVelumError::CatchError(u"Test"_s);
  }
  CVelumDialogLib::BeginWait();
  CVelumMsg::ShowLastError();
  EXPECT_EQ(presenter.LastMsg(), EMsgSystemError);
  EXPECT_EQ(presenter.LastText(), u"The Host Runtime System reported the error: Disk full: /data/x"_s);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
}

TEST(CVelumMsg, ShowLastErrorEndsWithAPlace) {
  ScriptedPresenter presenter;
  CVelumError::SetErrorRecord(EMsgCardNotFound, u"Proc"_s, u"Ada"_s, {});
  EXPECT_EQ(CVelumMsg::LastErrorText(), u"The card 'Ada' cannot be found."_s);
  CVelumMsg::ShowLastError(u"line 3"_s);
  EXPECT_EQ(presenter.LastMsg(), EMsgCardNotFound);
  EXPECT_EQ(presenter.LastText(), u"The card 'Ada' cannot be found.\r\n\r\nline 3"_s);
  EXPECT_EQ(CVelumMsg::LastMsgText(), presenter.LastText());
}

// Message 18 and the host error of that number.
TEST(CVelumMsg, ShowLastErrorTellsARefusedSaveFromAnInterrupt) {
  ScriptedPresenter presenter;
  const auto show = [&](const CVelumException& aFailure) {
    try {
      throw aFailure;
    } catch (...) {
      CVelumError::CatchError(u"Test"_s);
    }
    CVelumMsg::ShowLastError();
    return presenter.LastText();
  };
  EXPECT_EQ(show(CVelumException(EMsgCouldNotSave, u"CVelumSaveCheck"_s, u"too long"_s)),
            u"The stack was not saved due to an error.\r\ntoo long"_s);
  EXPECT_EQ(show(CVelumException(EHostInterrupt, u"Host"_s, CVelumError::HostDescr(EHostInterrupt))),
            u"The Host Runtime System reported the error: Interrupted"_s);
}

TEST(CVelumMsg, HelpPages) {
  EXPECT_EQ(CVelumMsg::HelpPage(u"CVelumControlEdit"_s, u"fName"_s), u"ControlEditName"_s);
  EXPECT_EQ(CVelumMsg::HelpPage(u"CVelumControlEdit"_s, {}), u"ControlEdit"_s);
  EXPECT_EQ(CVelumMsg::HelpPage(u"Other"_s, u"Button"_s), u"OtherButton"_s);
  ScriptedPresenter presenter;
  EXPECT_FALSE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"x"_s));
  CVelumMsg::ShowHelp(u"CVelumMsgForm"_s, u"fHelp0"_s);
  EXPECT_EQ(presenter.HelpPages(), QList<QString>{u"MsgFormEMsgDeleteCardOk"_s});
}

} // namespace
