#include "shell/dialogs/CVelumImportOptions.h"

#include "core/CVelumMsg.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "support/Assertions.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

namespace {

const QString EForm = u"CVelumImportOptions"_s;

class CVelumImportOptionsTest : public ShellTest {
protected:
  ~CVelumImportOptionsTest() override {
    // What the next test would find chosen.
    if (!IsOpen()) return;
    Button(u"fCsv"_s).click();
    if (Button(u"fIntoCurStack"_s).isChecked()) Button(u"fIntoCurStack"_s).click();
  }
  static CVelumImportOptions& OpenForm() {
    Choose(u"fImport"_s);
    return dynamic_cast<CVelumImportOptions&>(*CVelumWinMan::NameToForm(EForm));
  }
  static bool IsOpen() { return CVelumWinMan::FormIsLoaded(EForm); }
  static QAbstractButton& Button(const QString& aName) {
    return *CVelumWinMan::NameToForm(EForm)->Widget()->findChild<QAbstractButton*>(aName);
  }
  static CVelumListWidget& Box() {
    return *CVelumWinMan::NameToForm(EForm)->Widget()->findChild<CVelumListWidget*>(u"fBackgroundBox"_s);
  }
  // Which of the target's controls can be used, and whether the open stack is the target: "into box set".
  static QString Target() {
    QStringList parts;
    if (Button(u"fIntoCurStack"_s).isEnabled()) parts.append(u"into"_s);
    if (Box().isEnabled()) parts.append(u"box"_s);
    if (Button(u"fIntoCurStack"_s).isChecked()) parts.append(u"set"_s);
    return parts.join(u' ');
  }
  // The same after a click on a format.
  static QString TargetOf(const QString& aFormat) {
    Button(aFormat).click();
    return Target();
  }
};

} // namespace

TEST_F(CVelumImportOptionsTest, WithoutAStackOnlyTwoFormatsCanBeChosen) {
  Start();
  static_cast<void>(OpenForm());
  for (const QString& format : {u"fCsv"_s, u"fPdb"_s}) EXPECT_TRUE(Button(format).isEnabled());
  for (const QString& format : {u"fXml"_s, u"fOrvelle"_s, u"fText"_s})
    EXPECT_FALSE(Button(format).isEnabled());
  EXPECT_TRUE(Button(u"fCsv"_s).isChecked());
}

TEST_F(CVelumImportOptionsTest, EachFormatHasItsTarget) {
  Start(CopyStack(u"a.Orvelle"_s));
  static_cast<void>(OpenForm());
  EXPECT_EQ(Target(), u"into"_s);
  Button(u"fIntoCurStack"_s).click();
  EXPECT_EQ(Target(), u"into box set"_s);
  EXPECT_EQ(TargetOf(u"fPdb"_s), QString()) << "forced off";
  EXPECT_EQ(TargetOf(u"fXml"_s), u"set"_s) << "forced on";
  EXPECT_EQ(TargetOf(u"fOrvelle"_s), u"set"_s);
  EXPECT_EQ(TargetOf(u"fText"_s), u"box set"_s);
  Button(u"fPdb"_s).click();
  EXPECT_EQ(TargetOf(u"fCsv"_s), u"into"_s) << "disabled until the target is the open stack";
  Button(u"fIntoCurStack"_s).click();
  EXPECT_EQ(Target(), u"into box set"_s);
}

TEST_F(CVelumImportOptionsTest, ListsTheBackgroundsAndSelectsTheFirst) {
  Start(CopyStack(u"a.Orvelle"_s));
  const CVelumImportOptions& form = OpenForm();
  EXPECT_EQ(Box().model()->rowCount(), gStack->NumBackgrounds());
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(first, index));
  EXPECT_EQ(form.Background(), first);
  gStack->AddBackground(MakeRef<CVelumControlSet>(u"New"_s, gStack->IdGen().NextId()));
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(Box().model()->rowCount(), gStack->NumBackgrounds());
  EXPECT_EQ(form.Background(), first);
}

TEST_F(CVelumImportOptionsTest, KeepsTheChosenBackgroundUntilItIsDeleted) {
  Start(CopyStack(u"a.Orvelle"_s));
  const auto chosen = MakeRef<CVelumControlSet>(u"New"_s, gStack->IdGen().NextId());
  gStack->AddBackground(chosen);
  const CVelumImportOptions& form = OpenForm();
  Box().SetSelLine(Box().model()->rowCount() - 1);
  ASSERT_EQ(form.Background(), chosen);
  CVelumSeams::ChangeNotify(EChangeStructure);
  EXPECT_EQ(form.Background(), chosen);
  CVelumSeams::ChangeNotify(EChangeBackgroundGoes, chosen.Get());
  ASSERT_TRUE(form.Background());
  EXPECT_NE(form.Background(), chosen);
  EXPECT_EQ(Box().model()->rowCount(), gStack->NumBackgrounds() - 1);
}

TEST_F(CVelumImportOptionsTest, KeepsTheTargetForTheRun) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm();
  Button(u"fIntoCurStack"_s).click();
  Button(u"fCancelBut"_s).click();
  EXPECT_FALSE(IsOpen());
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(OpenForm().IntoCurStack());
}

TEST_F(CVelumImportOptionsTest, GoesWithTheStack) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm();
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumImportOptionsTest, ACancelledFileDialogChangesNothing) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm();
  for (const QString& format : {u"fCsv"_s, u"fXml"_s, u"fText"_s}) {
    Button(format).click();
    Button(u"fOkBut"_s).click();
  }
  EXPECT_EQ(iDialogs, 3);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(gStack->NumCards(), 13);
}

TEST_F(CVelumImportOptionsTest, SaysWhatIsNotBuiltYet) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm();
  for (const QString& format : {u"fPdb"_s, u"fOrvelle"_s}) {
    Button(format).click();
    Button(u"fOkBut"_s).click();
    EXPECT_TRUE(iPresenter.Told().last().contains(u"not built yet"_s));
  }
  EXPECT_EQ(iDialogs, 0);
}

TEST_F(CVelumImportOptionsTest, ImportsATextIntoTheChosenBackground) {
  Start(CopyStack(u"a.Orvelle"_s));
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(first, index));
  const qint32 others = gStack->NumCards() - first->NumCards();
  iPath = iFolder.Write(u"a.txt"_s, "one\ntwo\n");
  OpenForm();
  Button(u"fText"_s).click();
  Button(u"fOkBut"_s).click();
  EXPECT_EQ(iPresenter.LastMsg(), EMsgControlMissing) << "no field Text yet";
  EXPECT_EQ(gStack->NumCards(), 13);
  EXPECT_TRUE(IsOpen());
  EXPECT_EQ(gOptions.iImportTextDialogInitDir, QString()) << "of a file that came in";
  first->AddControl(MakeRef<CVelumControl>(gStack->IdGen().NextId(), u"Text"_s, EConText), ENoInt);
  Button(u"fOkBut"_s).click();
  EXPECT_EQ(gStack->NumCards(), others + 1);
  EXPECT_EQ(Report(), u"Imported 1 card from a.txt"_s);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(gOptions.iImportTextDialogInitDir, iFolder.Path());
}

TEST_F(CVelumImportOptionsTest, ImportsContentAndShowsTheFirstCard) {
  Start(CopyStack(u"a.Orvelle"_s));
  Action(u"LastCard"_s)->trigger();
  ASSERT_NE(CardName(), u"card 00"_s);
  Ref<CVelumControlSet> first;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(first, index));
  iPath = iFolder.Write(u"a.xml"_s, "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<orvelle version=\"1.0\">"
                                    "<card name=\"new\" background=\"" +
                                        first->Name().toUtf8() + "\"></card></orvelle>\r\n");
  OpenForm();
  Button(u"fXml"_s).click();
  Button(u"fOkBut"_s).click();
  EXPECT_EQ(iPresenter.Count(), 0) << iPresenter.LastText().toStdString();
  EXPECT_EQ(gStack->NumCards(), 14);
  EXPECT_EQ(Report(), u"Imported 1 card from a.xml"_s);
  EXPECT_EQ(CardName(), u"card 00"_s);
  EXPECT_EQ(gOptions.iImportXmlDialogInitDir, iFolder.Path());
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumImportOptionsTest, TheDialogsAskForTheirFiles) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm();
  QStringList asked;
  gOptions.iImportXmlDialogInitDir = u"/xml"_s;
  gOptions.iImportTextDialogInitDir = u"/text"_s;
  CVelumFileDialog::SetAnswer([&](const CVelumFileDialog& aDialog, bool aSave) {
    EXPECT_FALSE(aSave);
    asked.append(QStringList({aDialog.Title(), aDialog.ExtensionFor({}), aDialog.NameFilters().join(u';'),
                              aDialog.InitDir()})
                     .join(u'|'));
    return QString();
  });
  for (const QString& format : {u"fCsv"_s, u"fXml"_s, u"fText"_s}) {
    Button(format).click();
    Button(u"fOkBut"_s).click();
  }
  EXPECT_EQ(asked, QStringList({u"Import CSV File|csv|CSV Files (*.csv);All Files (*)|"_s,
                                u"Import XML File|xml|XML Files (*.xml);All Files (*)|/xml"_s,
                                u"Import Pure Text File|csv|All Files (*)|/text"_s}));
}

TEST_F(CVelumImportOptionsTest, NoFormatIsAnAssertion) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm();
  auto& csv = dynamic_cast<QRadioButton&>(Button(u"fCsv"_s));
  csv.setAutoExclusive(false);
  csv.setChecked(false);
  Button(u"fIntoCurStack"_s).click();
  EXPECT_TRUE(iPresenter.Shown().value(0).iText.contains(u"HandleDisables value"_s));
}

TEST_F(CVelumImportOptionsTest, StayingStopsAnImportOfContent) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  iPath = iFolder.Write(u"a.xml"_s, "no xml at all");
  OpenForm();
  Button(u"fXml"_s).click();
  AnswerSave(u"fBackBut"_s);
  Button(u"fOkBut"_s).click();
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(iPresenter.Count(), 0) << "nothing was read";
  EXPECT_TRUE(IsOpen());
}

TEST_F(CVelumImportOptionsTest, TheWindowsOfImportAndExportStayAboveTheMainWindow) {
  Start(CopyStack(u"a.Orvelle"_s));
  EXPECT_EQ(OpenForm().parentWidget(), gFrame);
  EXPECT_TRUE(OpenForm().isWindow());
  iFolder.Write(u"t.csv"_s, "a,b\n1,2\n");
  iPath = iFolder.Path(u"t.csv"_s);
  Button(u"fOkBut"_s).click();
  for (const auto& name : {u"CVelumImportOptions"_s, u"CVelumCsvImportOptions"_s}) {
    ASSERT_TRUE(CVelumWinMan::FormIsLoaded(name));
    const QWidget* window = CVelumWinMan::NameToForm(name)->Widget();
    EXPECT_TRUE(window->isVisible());
    while (window->parentWidget()) window = window->parentWidget();
    EXPECT_EQ(window, gFrame) << name.toStdString();
  }
  Choose(u"fExport"_s);
  EXPECT_EQ(CVelumWinMan::NameToForm(u"CVelumExportOptions"_s)->Widget()->parentWidget(), gFrame);
}

TEST_F(CVelumImportOptionsTest, TheMainWindowSaysWhatWasImported) {
  Start();
  iFolder.Write(u"t.csv"_s, "a,b\nx,2\ny,3\n");
  iPath = iFolder.Path(u"t.csv"_s);
  OpenForm();
  Button(u"fOkBut"_s).click();
  QWidget* csv = CVelumWinMan::NameToForm(u"CVelumCsvImportOptions"_s)->Widget();
  csv->findChild<QPushButton*>(u"fImportBut"_s)->click();
  ASSERT_TRUE(gStack);
  EXPECT_EQ(Report(), u"Imported 2 cards from t.csv"_s);
}
