#include "toolkit/CVelumFileDialog.h"

#include "support/WidgetTest.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

namespace {

class CVelumFileDialogTest : public WidgetTest {
protected:
  CVelumFileDialogTest() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  ~CVelumFileDialogTest() override { CVelumFileDialog::SetAnswer({}); }

  // Types aName into the dialog that opens next, and closes it.
  static void Type(const QString& aName, bool aAccept) {
    QTimer::singleShot(0, qApp, [aName, aAccept] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      auto* edit = dialog->findChild<QLineEdit*>();
      ASSERT_NE(edit, nullptr);
      edit->setText(aName);
      QTest::keyClick(edit, aAccept ? Qt::Key_Return : Qt::Key_Escape);
      if (dialog->isVisible() && !aAccept) dialog->reject();
    });
  }

  // Looks at the dialog that opens next, and cancels it.
  template <class T> static void Look(T aLook) {
    QTimer::singleShot(0, qApp, [aLook] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      aLook(*dialog);
      dialog->reject();
    });
  }

  CVelumFileDialog iDialog{u"Open Stack"_s, u"orv"_s, u"Orvelle (*.Orvelle)|*.Orvelle|All Files (*.*)|*"_s};
};

} // namespace

TEST_F(CVelumFileDialogTest, FiltersAreTurnedIntoTheToolkitsForm) {
  EXPECT_EQ(iDialog.NameFilters(), (QStringList{u"Orvelle (*.Orvelle)"_s, u"All Files (*)"_s}));
  const CVelumFileDialog pictures(u"Import Picture"_s, u"gif"_s,
                                  u"Pictures (*.gif;*.jpg;*.bmp)|*.gif;*.jpg;*.bmp|All Files (*.*)|*"_s);
  EXPECT_EQ(pictures.NameFilters(), (QStringList{u"Pictures (*.gif *.jpg *.bmp)"_s, u"All Files (*)"_s}));
}

TEST_F(CVelumFileDialogTest, FilterGivesTheExtensionAndElseTheDefault) {
  EXPECT_EQ(iDialog.ExtensionFor(u"Orvelle (*.Orvelle)"_s), u"Orvelle"_s);
  EXPECT_EQ(iDialog.ExtensionFor(u"Pictures (*.gif *.jpg)"_s), u"gif"_s);
  EXPECT_EQ(iDialog.ExtensionFor(u"All Files (*)"_s), u"orv"_s);
}

TEST_F(CVelumFileDialogTest, CancelLeavesAllAsItWas) {
  iDialog.SetInitDir(iFolder.Path());
  Type(u"x"_s, false);
  EXPECT_FALSE(iDialog.ShowOpen(nullptr));
  EXPECT_EQ(iDialog.FileName(), QString());
  EXPECT_EQ(iDialog.InitDir(), iFolder.Path());
}

TEST_F(CVelumFileDialogTest, SaveAddsTheExtensionOfTheFilter) {
  iDialog.SetInitDir(iFolder.Path());
  Type(u"mine"_s, true);
  ASSERT_TRUE(iDialog.ShowSave(nullptr));
  EXPECT_EQ(iDialog.FileName(), iFolder.Path(u"mine.Orvelle"_s));
  Type(u"mine.xml"_s, true);
  ASSERT_TRUE(iDialog.ShowSave(nullptr));
  EXPECT_EQ(iDialog.FileName(), iFolder.Path(u"mine.xml"_s));
}

TEST_F(CVelumFileDialogTest, NextDialogStartsWhereTheLastFileWas) {
  iFolder.Write(u"a.Orvelle"_s, "x");
  iDialog.SetInitDir(iFolder.Path());
  Type(u"a.Orvelle"_s, true);
  ASSERT_TRUE(iDialog.ShowOpen(nullptr));
  EXPECT_EQ(iDialog.FileName(), iFolder.Path(u"a.Orvelle"_s));
  CVelumFileDialog::SetAnswer([](const CVelumFileDialog&, bool) { return u"/elsewhere/b.Orvelle"_s; });
  ASSERT_TRUE(iDialog.ShowOpen(nullptr));
  EXPECT_EQ(iDialog.InitDir(), u"/elsewhere"_s);
  CVelumFileDialog::SetAnswer([](const CVelumFileDialog&, bool) { return QString(); });
  EXPECT_FALSE(iDialog.ShowOpen(nullptr));
}

TEST_F(CVelumFileDialogTest, FolderIsAskedForAndKept) {
  iDialog.SetInitDir(iFolder.Path());
  Type(iFolder.Path(), true);
  ASSERT_TRUE(iDialog.ShowFolder(nullptr));
  EXPECT_EQ(iDialog.FileName(), iFolder.Path());
  EXPECT_EQ(iDialog.InitDir(), iFolder.Path());
  Type(u"x"_s, false);
  EXPECT_FALSE(iDialog.ShowFolder(nullptr));
}

TEST_F(CVelumFileDialogTest, SaveBeginsWithTheProposedNameAndOpenWithNone) {
  iDialog.SetInitDir(iFolder.Path());
  iDialog.SetProposedName(u"My books.Orvelle"_s);
  QString name;
  const auto look = [&name](const QFileDialog& aDialog) { name = aDialog.findChild<QLineEdit*>()->text(); };
  Look(look);
  EXPECT_FALSE(iDialog.ShowSave(nullptr));
  EXPECT_EQ(name, u"My books.Orvelle"_s);
  Look(look);
  EXPECT_FALSE(iDialog.ShowOpen(nullptr));
  EXPECT_EQ(name, QString());
}
