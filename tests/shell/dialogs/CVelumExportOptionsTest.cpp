// Both windows of the exports.
#include "shell/dialogs/CVelumExportOptions.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumMsg.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

namespace {

const QString EExport = u"CVelumExportOptions"_s;
const QString ECsvExport = u"CVelumCsvExportOptions"_s;

class CVelumExportOptionsTest : public ShellTest {
protected:
  CVelumExportOptionsTest() { iPath = iFolder.Path(u"out"_s); }
  static CVelumForm& Form(const QString& aName) {
    EXPECT_TRUE(CVelumWinMan::FormIsLoaded(aName)) << aName.toStdString();
    return *CVelumWinMan::NameToForm(aName);
  }
  template <class T> static T& Find(const QString& aForm, const QString& aName) {
    return *Form(aForm).Widget()->findChild<T*>(aName);
  }
  static QWidget& Background() { return Find<QWidget>(EExport, u"fBackgroundBox"_s); }
  // A radio button, check box or button, clicked on its label or centre.
  static void Click(const QString& aForm, const QString& aName) {
    auto& button = Find<QAbstractButton>(aForm, aName);
    const bool mark = !qobject_cast<QPushButton*>(&button);
    QTest::mouseClick(&button, Qt::LeftButton, {}, mark ? QPoint(8, button.height() / 2) : QPoint());
    QCoreApplication::processEvents(); // windows get the keys one after the other, as they do for a user
  }
  void OpenExport() {
    Start(CopyStack(u"a.Orvelle"_s));
    Choose(u"fExport"_s);
  }
  void OpenCsv() {
    OpenExport();
    Click(EExport, u"fOkBut"_s);
  }
  void OpenClassic() {
    OpenCsv();
    Click(ECsvExport, u"fClassic"_s);
  }
  static bool Checked(const QString& aName) { return Find<QAbstractButton>(ECsvExport, aName).isChecked(); }
  static bool IsLoaded(const QString& aForm) { return CVelumWinMan::FormIsLoaded(aForm); }
  // Gives the first card a text that the code page lacks in part.
  static void SetText(const QString& aText) {
    const Ref<CVelumCard> card = gStackView->CurCard();
    const Ref<CVelumControlSet> set = card->Background();
    for (qint32 i = 0; i < set->NumControls(); ++i)
      if (set->ControlAt(i)->ConType() == EConText)
        return card->SetControlVal(set->ControlAt(i)->Id(), TVelumValue::OfStr(aText));
    FAIL() << "no text field";
  }
  [[nodiscard]] QByteArray Written() const { return iFolder.Read(u"out"_s); }
};

} // namespace

TEST_F(CVelumExportOptionsTest, KeepsTheChosenBackgroundUntilItIsDeleted) {
  OpenExport();
  const auto chosen = MakeRef<CVelumControlSet>(u"New"_s, gStack->IdGen().NextId());
  gStack->AddBackground(chosen);
  CVelumSeams::ChangeNotify(EChangeStructure);
  const auto& form = dynamic_cast<const CVelumExportOptions&>(Form(EExport));
  auto& box = dynamic_cast<CVelumListWidget&>(Background());
  box.SetSelLine(gStack->NumBackgrounds() - 1);
  ASSERT_EQ(form.Background(), chosen);
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(form.Background(), chosen);
  CVelumSeams::ChangeNotify(EChangeBackgroundGoes, chosen.Get());
  EXPECT_TRUE(form.Background());
  EXPECT_NE(form.Background(), chosen);
}

TEST_F(CVelumExportOptionsTest, ProposesCsvOfTheFirstBackground) {
  OpenExport();
  EXPECT_TRUE(Find<QRadioButton>(EExport, u"fCsv"_s).isChecked());
  EXPECT_TRUE(Background().isEnabled());
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(first, index));
  EXPECT_EQ(dynamic_cast<CVelumExportOptions&>(Form(EExport)).Background(), first);
}

TEST_F(CVelumExportOptionsTest, OnlyCsvNeedsABackground) {
  OpenExport();
  Click(EExport, u"fXml"_s);
  EXPECT_FALSE(Background().isEnabled());
  Click(EExport, u"fCsv"_s);
  EXPECT_TRUE(Background().isEnabled());
}

TEST_F(CVelumExportOptionsTest, WritesContentInXml) {
  OpenExport();
  Click(EExport, u"fXml"_s);
  QString title;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool aSave) {
    EXPECT_TRUE(aSave);
    EXPECT_EQ(aDialog.NameFilters().value(0), u"XML Files (*.xml)"_s);
    EXPECT_EQ(aDialog.ExtensionFor(aDialog.NameFilters().value(1)), u"csv"_s);
    return iPath;
  });
  Click(EExport, u"fOkBut"_s);
  EXPECT_TRUE(Written().contains("<orvelle version=\"1.0\">"));
  EXPECT_EQ(Written().count("<card "), 13);
  EXPECT_EQ(Report(), u"Exported 13 cards to out"_s);
  EXPECT_EQ(gOptions.iExportXmlDialogInitDir, iFolder.Path());
  EXPECT_FALSE(IsLoaded(EExport));
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumExportOptionsTest, TheFolderOfTheOptionComesFirst) {
  OpenExport();
  gOptions.iExportXmlDialogInitDir = u"/xml"_s;
  gOptions.iExportCsvDialogInitDir = u"/csv"_s;
  QStringList folders;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool) {
    folders.append(aDialog.InitDir());
    return QString();
  });
  Click(EExport, u"fOkBut"_s);
  Click(ECsvExport, u"fExportBut"_s);
  Click(EExport, u"fXml"_s);
  Click(EExport, u"fOkBut"_s);
  EXPECT_EQ(folders, (QStringList{u"/csv"_s, u"/xml"_s}));
}

TEST_F(CVelumExportOptionsTest, TheDialogsAskForTheirFiles) {
  OpenCsv();
  QStringList asked;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool aSave) {
    EXPECT_TRUE(aSave);
    const QStringList filters = aDialog.NameFilters();
    asked.append(QStringList({aDialog.Title(), aDialog.ExtensionFor({}), filters.join(u';')}).join(u'|'));
    return QString();
  });
  Click(ECsvExport, u"fExportBut"_s);
  Click(EExport, u"fXml"_s);
  Click(EExport, u"fOkBut"_s);
  EXPECT_EQ(asked, QStringList({u"CSV Export File Name|csv|CSV Files (*.csv);All Files (*)"_s,
                                u"XML Export File Name|csv|XML Files (*.xml);All Files (*)"_s}));
}

TEST_F(CVelumExportOptionsTest, CancelInTheFileDialogIsSilent) {
  OpenCsv();
  iPath.clear();
  Click(ECsvExport, u"fExportBut"_s);
  Click(EExport, u"fXml"_s);
  Click(EExport, u"fOkBut"_s);
  EXPECT_EQ(iDialogs, 2);
  EXPECT_TRUE(IsLoaded(EExport));
  EXPECT_TRUE(IsLoaded(ECsvExport));
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_TRUE(gOptions.iExportXmlDialogInitDir.isEmpty());
}

TEST_F(CVelumExportOptionsTest, WritesForOtherProgramsAtFirst) {
  OpenExport();
  SetText(u"say \"x\"\n\u042F"_s);
  Click(EExport, u"fOkBut"_s);
  EXPECT_TRUE(Checked(u"fPlain"_s));
  EXPECT_TRUE(Checked(u"fUtf8"_s));
  EXPECT_FALSE(Find<QCheckBox>(ECsvExport, u"fUtf8"_s).isEnabled()) << "no other coding";
  Click(ECsvExport, u"fSemiColon"_s);
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_TRUE(Written().contains("\"say \"\"x\"\"\n\u042F\"")) << Written().toStdString();
  EXPECT_FALSE(Written().startsWith('"')) << "quotes only where they are needed";
  EXPECT_TRUE(Report().startsWith(u"Exported "_s) && Report().endsWith(u" to out"_s));
  EXPECT_FALSE(IsLoaded(EExport));
}

TEST_F(CVelumExportOptionsTest, TellsWhichFieldsHaveNoTextForOtherPrograms) {
  OpenExport();
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(first, index));
  first->AddControl(MakeRef<CVelumControl>(gStack->IdGen().NextId(), u"Portrait"_s, EConPicture), ENoInt);
  first->AddControl(MakeRef<CVelumControl>(gStack->IdGen().NextId(), u"More"_s, EConText), ENoInt);
  Click(EExport, u"fOkBut"_s);
  Click(ECsvExport, u"fSemiColon"_s);
  Click(ECsvExport, u"fExportBut"_s);
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_TRUE(iPresenter.Told().first().contains(u"Portrait"_s));
  const QByteArray head = Written().left(Written().indexOf("\r\n"));
  EXPECT_TRUE(head.endsWith(";More")) << head.toStdString();
  EXPECT_FALSE(head.contains("Portrait"));
}

TEST_F(CVelumExportOptionsTest, WritesCsvAndGoes) {
  OpenClassic();
  EXPECT_TRUE(Checked(u"fComma"_s));
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_TRUE(Written().startsWith('"'));
  EXPECT_TRUE(Written().contains("\",\"") || Written().count('"') > 0);
  EXPECT_TRUE(Report().startsWith(u"Exported "_s) && Report().endsWith(u" to out"_s))
      << Report().toStdString();
  EXPECT_FALSE(IsLoaded(ECsvExport));
  EXPECT_FALSE(IsLoaded(EExport));
  EXPECT_EQ(gOptions.iExportCsvDialogInitDir, iFolder.Path());
  EXPECT_EQ(gOptions.iCsvExportDelimiter, u","_s);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
}

TEST_F(CVelumExportOptionsTest, TheSelectedBackgroundIsExported) {
  OpenExport();
  auto& form = dynamic_cast<CVelumExportOptions&>(Form(EExport));
  const Ref<CVelumControlSet> first = form.Background();
  QTest::keyClick(&Background(), Qt::Key_Down);
  const Ref<CVelumControlSet> second = form.Background();
  ASSERT_NE(second, first);
  const qsizetype lines = gStack->NumBackgroundCards(second->Id()) + 1;
  Click(EExport, u"fOkBut"_s);
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_EQ(Written().count("\r\n"), lines);
}

TEST_F(CVelumExportOptionsTest, TheDelimiterIsRemembered) {
  Start(CopyStack(u"a.Orvelle"_s));
  for (const auto& [button, delimiter] :
       {std::pair{u"fSemiColon"_s, u";"_s}, {u"fTab"_s, u"\t"_s}, {u"fComma"_s, u","_s}}) {
    Choose(u"fExport"_s);
    Click(EExport, u"fOkBut"_s);
    Click(ECsvExport, button);
    Click(ECsvExport, u"fCancelBut"_s);
    EXPECT_EQ(gOptions.iCsvExportDelimiter, delimiter) << "also of a window that was cancelled";
    EXPECT_TRUE(IsLoaded(EExport));
    Click(EExport, u"fOkBut"_s);
    EXPECT_TRUE(Checked(button));
    Click(ECsvExport, u"fCancelBut"_s);
    Click(EExport, u"fCancelBut"_s);
  }
}

TEST_F(CVelumExportOptionsTest, AnUnknownDelimiterShowsComma) {
  OpenExport();
  gOptions.iCsvExportDelimiter = u"|"_s;
  Click(EExport, u"fOkBut"_s);
  EXPECT_TRUE(Checked(u"fComma"_s));
  Click(ECsvExport, u"fCancelBut"_s);
  EXPECT_EQ(gOptions.iCsvExportDelimiter, u","_s);
}

TEST_F(CVelumExportOptionsTest, TellsWhatTheCodePageLacksAndOffersUtf8) {
  OpenExport();
  SetText(QString::fromUtf8("é Я 你"));
  Click(EExport, u"fOkBut"_s);
  EXPECT_FALSE(Find<QLabel>(ECsvExport, u"fLacking"_s).isVisible()) << "nothing lacks in UTF-8";
  Click(ECsvExport, u"fClassic"_s);
  const auto& lacking = Find<QLabel>(ECsvExport, u"fLacking"_s);
  EXPECT_TRUE(lacking.isVisible());
  EXPECT_TRUE(lacking.text().startsWith(u"2 characters are not in"_s)) << lacking.text().toStdString();
  EXPECT_TRUE(Checked(u"fUtf8"_s)) << "proposed where the usual coding loses something";
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_TRUE(Written().contains("é Я 你"));
  EXPECT_EQ(iPresenter.Told().size(), 0);
}

TEST_F(CVelumExportOptionsTest, WithoutUtf8TheyBecomeQuestionMarks) {
  OpenExport();
  SetText(QString::fromUtf8("a Я"));
  Click(EExport, u"fOkBut"_s);
  Click(ECsvExport, u"fClassic"_s);
  Click(ECsvExport, u"fUtf8"_s);
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_TRUE(Written().contains("\"a ?\""));
  EXPECT_EQ(iPresenter.Told().size(), 0) << "was said before";
}

TEST_F(CVelumExportOptionsTest, NothingIsSaidWhereNothingLacks) {
  OpenClassic();
  EXPECT_FALSE(Find<QLabel>(ECsvExport, u"fLacking"_s).isVisible());
  EXPECT_FALSE(Checked(u"fUtf8"_s));
}

TEST_F(CVelumExportOptionsTest, AFailureIsShownAndTheWindowsStay) {
  OpenCsv();
  iPath = iFolder.Path(u"no/folder/out"_s);
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
  EXPECT_TRUE(IsLoaded(ECsvExport));
  Click(EExport, u"fXml"_s);
  Click(EExport, u"fOkBut"_s);
  EXPECT_EQ(iPresenter.Count(), 2);
  EXPECT_TRUE(IsLoaded(EExport));
}

TEST_F(CVelumExportOptionsTest, TheOpenStackIsNoTarget) {
  OpenCsv();
  const QByteArray before = iFolder.Read(u"a.Orvelle"_s);
  iPath = gStack->Filename();
  Click(ECsvExport, u"fExportBut"_s);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iFolder.Read(u"a.Orvelle"_s), before);
}

TEST_F(CVelumExportOptionsTest, BothGoWithTheStack) {
  OpenCsv();
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(IsLoaded(ECsvExport));
  EXPECT_FALSE(IsLoaded(EExport));
}

TEST_F(CVelumExportOptionsTest, TheListFollowsTheStackAndKeepsItsSelection) {
  OpenExport();
  auto& form = dynamic_cast<CVelumExportOptions&>(Form(EExport));
  QTest::keyClick(&Background(), Qt::Key_Down);
  const Ref<CVelumControlSet> second = form.Background();
  gStack->AddBackground(MakeRef<CVelumControlSet>(u"A new one"_s, gStack->IdGen().NextId()));
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(form.Background(), second);
  gStack->DeleteBackground(second, false);
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_TRUE(form.Background());
  EXPECT_NE(form.Background(), second);
}

TEST_F(CVelumExportOptionsTest, EscapeClosesAndWritesNothing) {
  OpenCsv();
  QTest::keyClick(Form(ECsvExport).Widget(), Qt::Key_Escape);
  EXPECT_FALSE(IsLoaded(ECsvExport));
  QTest::keyClick(Form(EExport).Widget(), Qt::Key_Escape);
  EXPECT_FALSE(IsLoaded(EExport));
  EXPECT_FALSE(iFolder.Has(u"out"_s));
}
