#include "toolkit/CVelumBasePictureBox.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <algorithm>

namespace {

// A label that shows when it has the focus.
class CPictureLabel final : public QLabel {
public:
  using QLabel::QLabel;

protected:
  void paintEvent(QPaintEvent* aEvent) override {
    QLabel::paintEvent(aEvent);
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(QPen(palette().highlight(), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
  }
};

} // namespace

CVelumBasePictureBox::CVelumBasePictureBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBasePictureBox, aName, new CPictureLabel(aParent), aSink),
      iLabel(static_cast<QLabel*>(Widget())) {
  iLabel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  iLabel->setTextFormat(Qt::PlainText);
  iLabel->setWordWrap(true);
  iLabel->setAlignment(Qt::AlignCenter);
  iLabel->setBackgroundRole(QPalette::Base);
  iLabel->setForegroundRole(QPalette::Text);
  iLabel->setAutoFillBackground(true);
}

void CVelumBasePictureBox::SetPicture(const QPixmap& aPicture) {
  iPicture = aPicture;
  ShowContent();
}

void CVelumBasePictureBox::SetPlaceholder(const QString& aText) {
  iPlaceholder = aText;
  ShowContent();
}

void CVelumBasePictureBox::ShowContent() {
  iLabel->setAlignment(iPicture.isNull() ? Qt::AlignCenter : Qt::AlignLeft | Qt::AlignTop);
  if (iPicture.isNull())
    iLabel->setText(iPlaceholder);
  else
    iLabel->setPixmap(iPicture);
}

QSize CVelumBasePictureBox::InnerSize() const {
  return iLabel->contentsRect().size();
}

void CVelumBasePictureBox::SetFrame(bool aOn) {
  iLabel->setFrameStyle(aOn ? QFrame::StyledPanel | QFrame::Sunken : QFrame::NoFrame);
  iLabel->setAutoFillBackground(aOn);
}

void CVelumBasePictureBox::SetInteractive() {
  iLabel->setFocusPolicy(Qt::StrongFocus);
  iLabel->setAcceptDrops(true);
}

bool CVelumBasePictureBox::CanHoldPicture(const QMimeData& aData) {
  const QList<QUrl> urls = aData.urls();
  if (std::any_of(urls.begin(), urls.end(), [](const QUrl& aUrl) { return aUrl.isLocalFile(); })) return true;
  const QStringList formats = aData.formats();
  return aData.hasImage() || std::any_of(formats.begin(), formats.end(), [](const QString& aFormat) {
           return aFormat.startsWith(u"image/"_s);
         });
}

void CVelumBasePictureBox::Offer(const QMimeData* aData) {
  if (aData && CanHoldPicture(*aData)) Q_EMIT Offered(*aData);
}

bool CVelumBasePictureBox::MouseDone(QEvent& aEvent) {
  const auto& mouse = static_cast<const QMouseEvent&>(aEvent);
  if (mouse.button() != Qt::LeftButton) return false;
  const bool pressed = iPressed;
  iPressed = aEvent.type() != QEvent::MouseButtonRelease;
  if (aEvent.type() == QEvent::MouseButtonDblClick) Notify(EBaseDblClick);
  if (aEvent.type() == QEvent::MouseButtonRelease && pressed &&
      iLabel->rect().contains(mouse.position().toPoint()))
    Notify(EBaseClick);
  return true; // a box around this one would get the same click
}

bool CVelumBasePictureBox::KeyDone(QEvent& aEvent) {
  auto& key = static_cast<QKeyEvent&>(aEvent);
  if (key.matches(QKeySequence::Paste)) {
    Offer(QGuiApplication::clipboard()->mimeData());
    return true;
  }
  const bool plain = (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (plain && key.key() == Qt::Key_Space)
    Notify(EBaseClick);
  else if (plain && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter))
    Notify(EBaseDblClick);
  else
    return false;
  return true;
}

bool CVelumBasePictureBox::DropDone(QEvent& aEvent) {
  auto& drop = static_cast<QDropEvent&>(aEvent);
  if (!drop.mimeData() || !CanHoldPicture(*drop.mimeData())) return false;
  drop.setDropAction(Qt::CopyAction); // the file stays where it is
  drop.accept();
  if (aEvent.type() == QEvent::Drop) {
    iLabel->setFocus(Qt::OtherFocusReason);
    Offer(drop.mimeData());
  }
  return true;
}

bool CVelumBasePictureBox::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched != iLabel) return CVelumBaseControl::eventFilter(aWatched, aEvent);
  const bool interactive = iLabel->focusPolicy() != Qt::NoFocus;
  switch (aEvent->type()) {
  case QEvent::MouseButtonPress:
    // The press goes on, since it is what gives the focus.
    static_cast<void>(MouseDone(*aEvent));
    break;
  case QEvent::MouseButtonRelease:
  case QEvent::MouseButtonDblClick:
    if (MouseDone(*aEvent)) return true;
    break;
  case QEvent::KeyPress:
    if (interactive && KeyDone(*aEvent)) return true;
    break;
  case QEvent::DragEnter:
  case QEvent::DragMove:
  case QEvent::Drop:
    if (interactive && DropDone(*aEvent)) return true;
    break;
  case QEvent::FocusIn:
  case QEvent::FocusOut:
    iLabel->update();
    break;
  default:
    break;
  }
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}
