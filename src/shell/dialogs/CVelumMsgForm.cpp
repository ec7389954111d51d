#include "shell/dialogs/CVelumMsgForm.h"

#include "runtime/CVelumIcons.h"
#include "toolkit/CVelumToolkitLib.h"
#include "ui_CVelumMsgForm.h"

#include <QKeyEvent>
#include <QPointer>
#include <array>
#include <cmath>

namespace {

constexpr int EPictureSize = 48;
// The box is as wide as its text, within these bounds, and scrolls a text that is higher.
constexpr int EMinTextWidth = 220;
constexpr int EMaxTextWidth = 480;
constexpr int EMaxTextHeight = 360;
// Keeps a text that is just as wide from wrapping.
constexpr int ETextSlack = 4;

QString ImageKey(EMsgClass aClass) {
  static const std::array<QString, 4> keys{u"Critical"_s, u"Exclamation"_s, u"Question"_s, u"Info"_s};
  return keys[static_cast<size_t>(aClass)];
}

// The beginning of a text that is too long to show. No half of a pair is left at its end.
QString CutText(const QString& aText) {
  const qsizetype len =
      CVelumMsgForm::EMaxText - (aText.at(CVelumMsgForm::EMaxText - 1).isHighSurrogate() ? 1 : 0);
  return aText.left(len) + CVelumMsgForm::tr("\n\n(The text has %L1 characters; the first %L2 are shown.)")
                               .arg(aText.size())
                               .arg(len);
}

} // namespace

CVelumMsgForm::CVelumMsgForm(QWidget* aOwner) : QDialog(aOwner), iUi(new Ui::CVelumMsgForm) {
  iUi->setupUi(this);
  QPalette clear = palette();
  clear.setColor(QPalette::Base, Qt::transparent);
  iUi->fText->setPalette(clear);
  iUi->fText->document()->setDocumentMargin(0);
  iUi->fSilent->hide();
  iUi->fStop->hide();
  connect(iUi->fYes, &QPushButton::clicked, this, [this] {
    iResult = true;
    hide();
  });
  connect(iUi->fNo, &QPushButton::clicked, this, &QDialog::reject);
  connect(iUi->fStop, &QPushButton::clicked, this, [this] {
    iStopped = true;
    reject();
  });
  connect(iUi->fOk, &QPushButton::clicked, this, &QDialog::reject);
  connect(iUi->fHelp0, &QPushButton::clicked, this, &CVelumMsgForm::Help);
  connect(iUi->fHelp1, &QPushButton::clicked, this, &CVelumMsgForm::Help);
}

CVelumMsgForm::~CVelumMsgForm() = default;

void CVelumMsgForm::SetClass(EMsgClass aClass) {
  const bool question = aClass == EMsgQuestion;
  for (QPushButton* button : {iUi->fYes, iUi->fNo, iUi->fHelp0}) button->setVisible(question);
  for (QPushButton* button : {iUi->fOk, iUi->fHelp1}) button->setVisible(!question);
  QPushButton* standard = question ? iUi->fNo : iUi->fOk;
  standard->setDefault(true);
  standard->setFocus();
  iUi->fClass->setPixmap(
      CVelumIcons::Icon(ImageKey(aClass)).pixmap(QSize(EPictureSize, EPictureSize), devicePixelRatio()));
  iUi->fClass->setAccessibleName(ImageKey(aClass));
}

void CVelumMsgForm::SetPlain() {
  for (QWidget* widget :
       std::initializer_list<QWidget*>{iUi->fClass, iUi->fYes, iUi->fNo, iUi->fHelp0, iUi->fHelp1})
    widget->hide();
  iUi->fOk->setDefault(true);
  iUi->fOk->setFocus();
}

void CVelumMsgForm::OfferStop() {
  iUi->fStop->show();
}

void CVelumMsgForm::SetText(const QString& aText) {
  const QString text = aText.size() <= EMaxText ? aText : CutText(aText);
  iUi->fText->setPlainText(text);
  setAccessibleDescription(text);
  FitText();
}

void CVelumMsgForm::OfferSilence() {
  iUi->fSilent->show();
}

bool CVelumMsgForm::Silenced() const {
  return iUi->fSilent->isChecked();
}

void CVelumMsgForm::FitText() {
  // A copy, as the text box lays out its own document for the size that it has now.
  const std::unique_ptr<QTextDocument> document(iUi->fText->document()->clone());
  const int wanted = fontMetrics().size(0, document->toPlainText()).width() + ETextSlack;
  const int width = std::clamp(wanted, EMinTextWidth, EMaxTextWidth);
  document->setTextWidth(width);
  const int height = static_cast<int>(std::ceil(document->size().height()));
  iUi->fText->setFixedSize(width, std::min(height, EMaxTextHeight));
  iUi->fText->setVerticalScrollBarPolicy(height > EMaxTextHeight ? Qt::ScrollBarAlwaysOn
                                                                 : Qt::ScrollBarAlwaysOff);
}

bool CVelumMsgForm::Ask(const QWidget* aFrame) {
  iResult = false;
  adjustSize();
  CVelumLib::CentreOver(*this, aFrame);
  const QPointer<CVelumMsgForm> self(this);
  exec();
  return self && iResult;
}

void CVelumMsgForm::keyPressEvent(QKeyEvent* aEvent) {
  if (aEvent->key() == Qt::Key_F1)
    Help();
  else
    QDialog::keyPressEvent(aEvent);
}

void CVelumMsgForm::Help() {
  CVelumSeams::Presenter().HelpPage(u"MsgForm"_s + iMsgName);
}
