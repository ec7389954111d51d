// Files dropped on the main window.
#include "shell/frame/CVelumFileDrop.h"

#include "core/CVelumMsg.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/FrameTest.h"
#include "toolkit/CVelumMdiArea.h"
#include "toolkit/CVelumWinMan.h"

#include <QDialog>
#include <QDir>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

namespace {

class CVelumFileDropTest : public FrameTest {
protected:
  // Drags files over a widget as the toolkit does, lets them fall when they are wanted, and lets the program
  // work. Whether they were wanted.
  static bool Drop(QWidget& aOver, const QList<QUrl>& aFiles) {
    QMimeData data;
    data.setUrls(aFiles);
    QStringList names;
    for (const QUrl& url : aFiles) names.append(url.toLocalFile());
    data.setText(names.join(u'\n')); // as file managers do
    const QPoint middle = aOver.rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    QCoreApplication::sendEvent(&aOver, &enter);
    if (!enter.isAccepted()) return false;
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
    QDropEvent drop(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&aOver, &drop);
    EXPECT_TRUE(drop.isAccepted());
    QCoreApplication::processEvents();
    return true;
  }
  static bool Drop(QWidget& aOver, const QString& aPath) { return Drop(aOver, {QUrl::fromLocalFile(aPath)}); }
  static QLineEdit* LineBox() {
    return gStackView->CardView()->ViewForm().findChild<QLineEdit*>(u"fGenTextBox0"_s);
  }
};

} // namespace

TEST_F(CVelumFileDropTest, AStackOpens) {
  Start();
  EXPECT_TRUE(gFrame->acceptDrops());
  const QString path = CopyStack(u"a b.Orvelle"_s);
  EXPECT_TRUE(Drop(*gFrame, path));
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->Filename(), path);
  // Also over a field, which would take the path as a text.
  const QString other = CopyStack(u"b.ORVELLE"_s);
  const QString before = LineBox()->text();
  EXPECT_TRUE(Drop(*LineBox(), other));
  EXPECT_EQ(gStack->Filename(), other);
  EXPECT_EQ(LineBox()->text(), before);
}

TEST_F(CVelumFileDropTest, AChangedStackIsAskedAboutFirst) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(path);
  Change();
  AnswerSave(u"fBackBut"_s);
  EXPECT_TRUE(Drop(*gFrame, CopyStack(u"b.Orvelle"_s)));
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(gStack->Filename(), path);
}

TEST_F(CVelumFileDropTest, ATableLeadsToTheImport) {
  Start();
  const QString path = iFolder.Write(u"books.csv"_s, "Title,Year\nOdyssey,1614\n");
  EXPECT_TRUE(Drop(*gFrame->findChild<CVelumMdiArea*>(), path));
  ASSERT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumImportOptions"_s));
  ASSERT_TRUE(CVelumWinMan::FormIsLoaded(u"CVelumCsvImportOptions"_s));
  QWidget* settings = CVelumWinMan::NameToForm(u"CVelumCsvImportOptions"_s)->Widget();
  EXPECT_TRUE(settings->isVisible());
  QTest::mouseClick(settings->findChild<QPushButton*>(u"fImportBut"_s), Qt::LeftButton);
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->NumCards(), 1);
  EXPECT_EQ(gFrame->windowTitle(), u"books[*] - Orvelles"_s);
  EXPECT_TRUE(gFrame->isWindowModified());
}

TEST_F(CVelumFileDropTest, ABadFileSaysSoAndLeavesTheOpenStack) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(path);
  EXPECT_TRUE(Drop(*gFrame, iFolder.Write(u"b.Orvelle"_s, "no stack")));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgNotAOrvelle);
}

TEST_F(CVelumFileDropTest, WhatIsNoSingleStackOrTableOfThisComputerIsNotTaken) {
  Start(CopyStack(u"a.Orvelle"_s));
  const QString stack = CopyStack(u"b.Orvelle"_s);
  QDir(iFolder.Path()).mkdir(u"folder.Orvelle"_s);
  EXPECT_FALSE(Drop(*gFrame, {QUrl::fromLocalFile(stack), QUrl::fromLocalFile(stack)}));
  EXPECT_FALSE(Drop(*gFrame, {QUrl(u"https://example.org/b.Orvelle"_s)}));
  EXPECT_FALSE(Drop(*gFrame, iFolder.Path(u"folder.Orvelle"_s)));
  EXPECT_FALSE(Drop(*gFrame, iFolder.Write(u"a.pdf"_s, "x")));
  EXPECT_FALSE(Drop(*gFrame, QList<QUrl>()));
  EXPECT_EQ(gStack->Filename(), iFolder.Path(u"a.Orvelle"_s));
  // A field still takes the text of other drags.
  EXPECT_TRUE(Drop(*LineBox(), iFolder.Path(u"a.pdf"_s)));
}

TEST_F(CVelumFileDropTest, AQuestionThatWaitsComesFirst) {
  Start();
  const QString path = CopyStack(u"a.Orvelle"_s);
  {
    QDialog question(gFrame);
    question.setModal(true);
    question.show();
    EXPECT_FALSE(Drop(*gFrame, path));
  }
  EXPECT_FALSE(gStack);
  EXPECT_TRUE(Drop(*gFrame, path));
  EXPECT_TRUE(gStack);
}

TEST_F(CVelumFileDropTest, OtherWindowsKeepTheirDrops) {
  Start();
  QLineEdit other;
  EXPECT_TRUE(Drop(other, CopyStack(u"a.Orvelle"_s))); // the entry takes the text
  EXPECT_FALSE(gStack);
}
