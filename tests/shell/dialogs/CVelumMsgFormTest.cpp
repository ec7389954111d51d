#include "shell/dialogs/CVelumMsgForm.h"

#include "core/CVelumMsg.h"
#include "runtime/CVelumIcons.h"
#include "shell/frame/CVelumShellPresenter.h"
#include "shell/help/CVelumHelpForm.h"
#include "support/WidgetTest.h"
#include "toolkit/CVelumWinMan.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <functional>

namespace {

class TestFrame final : public QWidget, public CVelumForm {
public:
  TestFrame() : CVelumForm(u"CVelumFrame"_s, true) {}
  QWidget* Widget() override { return this; }
  void Load() override {}
};

class CVelumMsgFormTest : public WidgetTest {
protected:
  CVelumMsgFormTest() {
    CVelumSeams::SetPresenter(&iShell);
    CVelumWinMan::LoadForm(iFrame);
    iFrame.setGeometry(60, 40, 700, 600);
    iFrame.show();
  }
  ~CVelumMsgFormTest() override {
    delete CVelumHelpForm::Instance();
    CVelumSeams::SetPresenter(nullptr);
  }

  // Runs aUse on the box that opens next.
  static void WhenOpen(std::function<void(QDialog&)> aUse) {
    QTimer::singleShot(0, qApp, [use = std::move(aUse)] {
      auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      ASSERT_TRUE(QTest::qWaitForWindowActive(box));
      use(*box);
      // A box that no test closes would wait for ever.
      if (box->isVisible()) box->reject();
    });
  }
  // A button pressed by its key acts a moment later.
  static void PressAccessKey(QDialog& aBox, Qt::Key aKey) {
    QTest::keyClick(&aBox, aKey, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !aBox.isVisible(); }));
  }
  static QPushButton& Button(const QDialog& aBox, const QString& aName) {
    auto* button = aBox.findChild<QPushButton*>(aName);
    EXPECT_NE(button, nullptr) << aName.toStdString();
    return *button;
  }
  static void Click(const QDialog& aBox, const QString& aName) {
    QTest::mouseClick(&Button(aBox, aName), Qt::LeftButton);
  }

  CVelumShellPresenter iShell;
  TestFrame iFrame;
};

} // namespace

TEST_F(CVelumMsgFormTest, ShowsTheTextWithItsParameters) {
  QString text;
  WhenOpen([&](QDialog& aBox) { text = aBox.findChild<QTextEdit*>(u"fText"_s)->toPlainText(); });
  CVelumMsg::Show(EMsgEmptyName, EMsgCritical, u"card"_s, u"<undef>"_s, u"<undef>"_s);
  EXPECT_EQ(text, u"An empty name is not allowed for a card."_s);
}

TEST_F(CVelumMsgFormTest, KeepsLineBreaksAndBlankCharacters) {
  CVelumMsgForm form(&iFrame);
  form.SetText(u"one\r\ntwo  three\r\n"_s);
  EXPECT_EQ(form.findChild<QTextEdit*>(u"fText"_s)->toPlainText(), u"one\ntwo  three\n"_s);
}

TEST_F(CVelumMsgFormTest, NumberWithoutEntryShowsAnEmptyBox) {
  bool seen = false;
  WhenOpen([&](QDialog& aBox) {
    seen = aBox.findChild<QTextEdit*>(u"fText"_s)->toPlainText().isEmpty();
    Click(aBox, u"fOk"_s);
  });
  CVelumMsg::Show(32, EMsgInfo, {});
  EXPECT_TRUE(seen);
}

TEST_F(CVelumMsgFormTest, EachClassHasItsButtonsAndPicture) {
  QList<QByteArray> pictures;
  for (const EMsgClass cls : {EMsgCritical, EMsgExclamation, EMsgQuestion, EMsgInfo}) {
    CVelumMsgForm form(&iFrame);
    form.SetClass(cls);
    form.SetText(u"text"_s);
    form.show();
    const bool question = cls == EMsgQuestion;
    for (const QString& name : {u"fYes"_s, u"fNo"_s, u"fHelp0"_s})
      EXPECT_EQ(Button(form, name).isVisible(), question) << name.toStdString();
    for (const QString& name : {u"fOk"_s, u"fHelp1"_s})
      EXPECT_EQ(Button(form, name).isVisible(), !question) << name.toStdString();
    EXPECT_EQ(Button(form, u"fNo"_s).isDefault(), question);
    EXPECT_EQ(Button(form, u"fOk"_s).isDefault(), !question);
    const QPixmap picture = form.findChild<QLabel*>(u"fClass"_s)->pixmap();
    EXPECT_EQ(picture.deviceIndependentSize(), QSizeF(48, 48));
    QByteArray bits(reinterpret_cast<const char*>(picture.toImage().constBits()),
                    picture.toImage().sizeInBytes());
    EXPECT_FALSE(pictures.contains(bits));
    pictures.append(bits);
  }
}

TEST_F(CVelumMsgFormTest, OnlyYesAnswersYes) {
  const auto ask = [](std::function<void(QDialog&)> aUse) {
    WhenOpen(std::move(aUse));
    return CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"Andorra"_s);
  };
  EXPECT_TRUE(ask([](QDialog& aBox) { Click(aBox, u"fYes"_s); }));
  EXPECT_FALSE(ask([](QDialog& aBox) { Click(aBox, u"fNo"_s); }));
  EXPECT_FALSE(ask([](QDialog& aBox) { aBox.close(); }));
  EXPECT_FALSE(ask([](QDialog& aBox) { QTest::keyClick(&aBox, Qt::Key_Escape); }));
  EXPECT_FALSE(ask([](QDialog& aBox) { QTest::keyClick(&aBox, Qt::Key_Return); }));
  EXPECT_TRUE(ask([](QDialog& aBox) { PressAccessKey(aBox, Qt::Key_Y); }));
  EXPECT_FALSE(ask([](QDialog& aBox) { PressAccessKey(aBox, Qt::Key_N); }));
}

TEST_F(CVelumMsgFormTest, ReturnPressesOk) {
  bool closed = false;
  WhenOpen([&](QDialog& aBox) {
    QTest::keyClick(&aBox, Qt::Key_Return);
    closed = !aBox.isVisible();
  });
  CVelumMsg::Show(EMsgEmptyFile, EMsgExclamation, {});
  EXPECT_TRUE(closed);
}

TEST_F(CVelumMsgFormTest, StandsInTheMiddleOfTheMainWindow) {
  QPoint expected;
  QPoint pos;
  WhenOpen([&](QDialog& aBox) {
    pos = aBox.pos();
    expected = QPoint(60 + (700 - aBox.width()) / 2, 40 + (600 - aBox.height()) / 2);
    EXPECT_EQ(aBox.parentWidget(), &iFrame);
    EXPECT_TRUE(aBox.isModal());
  });
  CVelumMsg::Show(EMsgEmptyFile, EMsgExclamation, {});
  EXPECT_LE((pos - expected).manhattanLength(), 2);
}

TEST_F(CVelumMsgFormTest, HelpOpensThePageOfTheMessageAndTheBoxStays) {
  WhenOpen([&](QDialog& aBox) {
    Click(aBox, u"fHelp0"_s);
    EXPECT_TRUE(aBox.isVisible());
    ASSERT_NE(CVelumHelpForm::Instance(), nullptr);
    EXPECT_TRUE(CVelumHelpForm::Instance()->isVisible());
    EXPECT_EQ(CVelumHelpForm::Instance()->Page(), u"MsgFormEMsgDeleteCardOk"_s);
    // Not blocked by the box.
    EXPECT_EQ(CVelumHelpForm::Instance()->parentWidget(), &aBox);
    Click(aBox, u"fYes"_s);
  });
  EXPECT_TRUE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"x"_s));
  // The page can be read on.
  ASSERT_NE(CVelumHelpForm::Instance(), nullptr);
  EXPECT_TRUE(CVelumHelpForm::Instance()->isVisible());
  EXPECT_EQ(CVelumHelpForm::Instance()->parentWidget(), nullptr);

  WhenOpen([](QDialog& aBox) { Click(aBox, u"fHelp1"_s); });
  CVelumMsg::Show(EMsgEmptyFile, EMsgExclamation, {});
  EXPECT_EQ(CVelumHelpForm::Instance()->Page(), u"MsgFormEMsgEmptyFile"_s);
}

TEST_F(CVelumMsgFormTest, F1IsAboutTheMessageOfTheBox) {
  WhenOpen([](QDialog& aBox) {
    // Another box, closed again, is not what this one is about.
    WhenOpen([](QDialog& aInner) { Click(aInner, u"fOk"_s); });
    CVelumMsg::Show(EMsgEmptyFile, EMsgExclamation, {});
    QTest::keyClick(&Button(aBox, u"fNo"_s), Qt::Key_F1);
    ASSERT_NE(CVelumHelpForm::Instance(), nullptr);
    EXPECT_EQ(CVelumHelpForm::Instance()->Page(), u"MsgFormEMsgDeleteCardOk"_s);
    EXPECT_TRUE(aBox.isVisible());
  });
  EXPECT_FALSE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"x"_s));
}

TEST_F(CVelumMsgFormTest, HelpShowsThePageAndClosesByEscape) {
  CVelumMsg::ShowHelp(u"CVelumFrame"_s, {});
  CVelumHelpForm* help = CVelumHelpForm::Instance();
  ASSERT_NE(help, nullptr);
  EXPECT_EQ(help->Page(), u"Frame"_s);
  EXPECT_TRUE(help->findChild<QTextEdit*>(u"fPage"_s)->toPlainText().contains(u"The main window"_s));
  QTest::keyClick(help, Qt::Key_Escape);
  EXPECT_FALSE(help->isVisible());
}

TEST_F(CVelumMsgFormTest, AMessageCanShowAnother) {
  WhenOpen([](QDialog& aBox) {
    WhenOpen([&](QDialog& aInner) {
      EXPECT_NE(&aInner, &aBox);
      Click(aInner, u"fOk"_s);
    });
    CVelumMsg::Show(EMsgEmptyFile, EMsgExclamation, {});
    EXPECT_TRUE(aBox.isVisible());
    Click(aBox, u"fYes"_s);
  });
  EXPECT_TRUE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"x"_s));
}

TEST_F(CVelumMsgFormTest, LongTextScrollsInABoxThatFitsTheScreen) {
  CVelumMsgForm form(&iFrame);
  form.SetClass(EMsgCritical);
  form.SetText(QString(u"word "_s).repeated(5000) + QString(3000, u'x'));
  form.adjustSize();
  EXPECT_LT(form.width(), 640);
  EXPECT_LT(form.height(), 480);
}

TEST_F(CVelumMsgFormTest, TellShowsPlainText) {
  WhenOpen([](QDialog& aBox) {
    EXPECT_EQ(aBox.windowTitle(), u"Orvelles"_s);
    EXPECT_EQ(aBox.findChild<QTextEdit*>(u"fText"_s)->toPlainText(), u"<b>Read-only!</b>"_s);
    for (const QString& name : {u"fYes"_s, u"fNo"_s, u"fHelp0"_s, u"fHelp1"_s, u"fStop"_s})
      EXPECT_FALSE(Button(aBox, name).isVisible()) << name.toStdString();
    EXPECT_FALSE(aBox.findChild<QLabel*>(u"fClass"_s)->isVisible());
    EXPECT_TRUE(Button(aBox, u"fOk"_s).isDefault());
    QTest::keyClick(&aBox, Qt::Key_Return);
    EXPECT_FALSE(aBox.isVisible());
  });
  CVelumSeams::Presenter().Tell(u"<b>Read-only!</b>"_s);
}

TEST_F(CVelumMsgFormTest, ChooseOffersAButtonForEachFile) {
  const auto choose = [](const QString& aButton) {
    WhenOpen([&aButton](QDialog& aBox) {
      const auto* box = qobject_cast<QMessageBox*>(&aBox);
      ASSERT_NE(box, nullptr);
      EXPECT_EQ(box->text(), u"<b>Which?</b>"_s);
      EXPECT_EQ(box->textFormat(), Qt::PlainText);
      for (QAbstractButton* button : box->buttons())
        if (button->text().remove(u'&') == aButton) return button->click();
      ADD_FAILURE() << "no button " << aButton.toStdString();
    });
    return CVelumSeams::Presenter().Choose(u"<b>Which?</b>"_s, {u"/a/one.Orvelle"_s, u"/a/two.Orvelle"_s});
  };
  EXPECT_EQ(choose(u"one.Orvelle"_s), 0);
  EXPECT_EQ(choose(u"two.Orvelle"_s), 1);
  EXPECT_EQ(choose(u"Cancel"_s), -1);
}

TEST_F(CVelumMsgFormTest, ALongAnswerScrolls) {
  const QString lines = QList<QString>(300, u"a line"_s).join(u"\r\n"_s);
  WhenOpen([](QDialog& aBox) {
    EXPECT_LT(aBox.height(), 480);
    auto* text = aBox.findChild<QTextEdit*>(u"fText"_s);
    EXPECT_GT(text->verticalScrollBar()->maximum(), 1000);
    EXPECT_TRUE(aBox.rect().contains(Button(aBox, u"fOk"_s).geometry()));
    text->verticalScrollBar()->setValue(text->verticalScrollBar()->maximum());
    EXPECT_TRUE(text->verticalScrollBar()->isVisible());
  });
  EXPECT_FALSE(CVelumSeams::Presenter().Answer(lines));
}

TEST_F(CVelumMsgFormTest, AnAnswerCanStopItsScript) {
  WhenOpen([](QDialog& aBox) {
    EXPECT_FALSE(Button(aBox, u"fStop"_s).isDefault());
    Click(aBox, u"fStop"_s);
    EXPECT_FALSE(aBox.isVisible());
  });
  EXPECT_TRUE(CVelumSeams::Presenter().Answer(u"1"_s));
  WhenOpen([](QDialog& aBox) { PressAccessKey(aBox, Qt::Key_S); });
  EXPECT_TRUE(CVelumSeams::Presenter().Answer(u"1"_s));
  WhenOpen([](QDialog& aBox) { QTest::keyClick(&aBox, Qt::Key_Escape); });
  EXPECT_FALSE(CVelumSeams::Presenter().Answer(u"1"_s));
  WhenOpen([](QDialog& aBox) { Click(aBox, u"fOk"_s); });
  EXPECT_FALSE(CVelumSeams::Presenter().Answer(u"1"_s));
}

TEST_F(CVelumMsgFormTest, AVeryLongTextIsCutWithANote) {
  const auto shown = [this](const QString& aText) {
    CVelumMsgForm form(&iFrame);
    form.SetClass(EMsgCritical);
    form.SetText(aText);
    EXPECT_EQ(form.accessibleDescription(), form.findChild<QTextEdit*>(u"fText"_s)->toPlainText());
    return form.findChild<QTextEdit*>(u"fText"_s)->toPlainText();
  };
  EXPECT_EQ(shown(QString(100000, u'x')), QString(100000, u'x'));
  EXPECT_EQ(shown(QString(1000000, u'x')),
            QString(100000, u'x') +
                u"\n\n(The text has 1,000,000 characters; the first 100,000 are shown.)"_s);
  const QString pairs = QString(99999, u'x') + QString::fromUcs4(U"\U0001F600") + u'x';
  EXPECT_EQ(shown(pairs),
            QString(99999, u'x') + u"\n\n(The text has 100,002 characters; the first 99,999 are shown.)"_s)
      << "no half of a pair";
}

TEST_F(CVelumMsgFormTest, ThereIsAPictureForEveryKey) {
  for (const char* key :
       {"NewStack", "OpenStack", "SaveStack", "FirstCard", "PrevCard", "NextCard", "LastCard",
        "BackInHistory", "ForwInHistory", "EditStack", "EditBackgrounds", "EditCards", "EditControls",
        "ShowCardList", "SelectCard", "Critical", "Exclamation", "Question", "Info"}) {
    const QIcon icon = CVelumIcons::Icon(QString::fromLatin1(key));
    ASSERT_FALSE(icon.isNull()) << key;
    EXPECT_NE(icon.pixmap(QSize(24, 24), 2.0).toImage(),
              QImage(icon.pixmap(QSize(24, 24), 2.0, QIcon::Disabled).toImage()))
        << key;
  }
  EXPECT_TRUE(CVelumIcons::Icon(u"Nothing"_s).isNull());
  EXPECT_TRUE(CVelumIcons::Icon(u"Orvelles"_s).isNull());
  EXPECT_FALSE(CVelumIcons::AppIcon().isNull());
}

TEST_F(CVelumMsgFormTest, BoxIsAsLargeAsItsText) {
  QList<QSize> sizes;
  for (const QString& text :
       {u"one line"_s, u"one line\r\ntwo"_s, u"one line that is so long that it has to be \
broken, since no box gets wider than a good part of the screen"_s}) {
    CVelumMsgForm form(&iFrame);
    form.SetText(text);
    const auto* box = form.findChild<QTextEdit*>(u"fText"_s);
    EXPECT_EQ(box->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    sizes.append(box->size());
  }
  const int line = QFontMetrics(QApplication::font()).height();
  EXPECT_NEAR(sizes[0].height(), line, 2);
  EXPECT_NEAR(sizes[1].height(), 2 * line, 3);
  EXPECT_NEAR(sizes[2].height(), 2 * line, 3);
  EXPECT_GT(sizes[2].width(), sizes[0].width());
}

TEST_F(CVelumMsgFormTest, MessagesBelongToTheWindowThatIsActive) {
  QDialog other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  const auto owner = [&](const std::function<void()>& aShow) {
    const QWidget* found = nullptr;
    WhenOpen([&](QDialog& aBox) { found = aBox.parentWidget(); });
    aShow();
    return found;
  };
  EXPECT_EQ(owner([] { CVelumMsg::Show(EMsgEmptyName, EMsgCritical, u"card"_s); }), &other);
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_EQ(owner([] { CVelumSeams::Presenter().Tell(u"x"_s); }), &other);
  other.hide();
  iFrame.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&iFrame));
  EXPECT_EQ(owner([] { CVelumMsg::Show(EMsgEmptyName, EMsgCritical, u"card"_s); }), &iFrame);
}

TEST_F(CVelumMsgFormTest, AQuestionWhoseOwnerGoesIsAnsweredNo) {
  auto* other = new QDialog;
  other->show();
  other->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(other));
  QTimer::singleShot(50, other, [other] {
    ASSERT_TRUE(other->findChild<CVelumMsgForm*>());
    delete other;
  });
  EXPECT_FALSE(CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, u"x"_s));
}
