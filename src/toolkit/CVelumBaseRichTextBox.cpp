#include "toolkit/CVelumBaseRichTextBox.h"

#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumRtfDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolTip>
#include <algorithm>

namespace {

// With the frame's pixel these make the 120 twips by which a field is higher than its lines.
constexpr double EMargin = 3.0;

bool IsKey(const QEvent& aEvent, std::initializer_list<int> aKeys, Qt::KeyboardModifier aModifier) {
  if (aEvent.type() != QEvent::KeyPress) return false;
  const auto& key = static_cast<const QKeyEvent&>(aEvent);
  const Qt::KeyboardModifiers held = key.modifiers() & ~Qt::KeypadModifier;
  return held == aModifier && std::find(aKeys.begin(), aKeys.end(), key.key()) != aKeys.end();
}

} // namespace

CVelumBaseRichTextBox::CVelumBaseRichTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseRichTextBox, aName, new QTextEdit(aParent), aSink),
      iEdit(static_cast<QTextEdit*>(Widget())), iViewport(iEdit->viewport()) {
  iEdit->setAcceptRichText(false);
  iEdit->setTabChangesFocus(true);
  iEdit->document()->setDocumentMargin(EMargin);
  iViewport->installEventFilter(this);
  RefreshColors();
  connect(iEdit, &QTextEdit::textChanged, this, [this] {
    if (iSetting) return;
    const int surplus = HoldLimit();
    Notify(EBaseChange);
    if (surplus > 0) TellNotFitting(surplus, iLimit);
  });
}

QString CVelumBaseRichTextBox::Text() const {
  // The document's plain text turns no-break blanks into blanks; the raw text keeps them.
  QString text = iEdit->document()->toRawText();
  text.replace(QChar::ParagraphSeparator, u"\r\n"_s);
  return text;
}

void CVelumBaseRichTextBox::SetText(const QString& aText) {
  LeaveRtf();
  const bool same = aText == Text();
  if (same && !iEdit->document()->isModified()) return;
  const int cursor = same ? Cursor() : 0;
  {
    const QScopedValueRollback setting(iSetting, true);
    // Also for the same text: what was typed before must not come back by undo.
    iEdit->setPlainText(aText);
  }
  iLimit = std::max(iMaxChar, StoredLen());
  SetCursor(cursor);
  Notify(EBaseChange);
}

void CVelumBaseRichTextBox::SetRtf(const QString& aRtf, TVelumLinkFinder aLinks) {
  iLinks = std::move(aLinks);
  if (iIsRtf && aRtf == iRtf) return;
  iIsRtf = true;
  iRtf = aRtf;
  iShown = CVelumRtf::Read(aRtf);
  ShowRtf();
  iEdit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  iEdit->viewport()->setMouseTracking(true);
  SetCursor(0);
  iEdit->verticalScrollBar()->setValue(0);
  Notify(EBaseChange);
}

void CVelumBaseRichTextBox::ShowRtf() {
  const QScopedValueRollback setting(iSetting, true);
  const QColor back = iEdit->palette().color(QPalette::Base);
  CVelumRtfDocument::Show(*iEdit->document(), iShown, iEdit->font().pointSizeF(),
                          [this, &back](qint32 aColor) {
                            if (aColor == ENoInt) return QColor();
                            // The text's own colour is shown as in every other box.
                            if (aColor == ForeColor())
                              return CVelumBaseColor::Resolve(aColor, BackColor(), back).iText;
                            return CVelumBaseColor::Readable(CVelumBaseColor::ToColor(aColor), back);
                          });
}

void CVelumBaseRichTextBox::LeaveRtf() {
  if (!iIsRtf) return;
  iIsRtf = false;
  iRtf.clear();
  iShown = {};
  iLinks = {};
  const QScopedValueRollback setting(iSetting, true);
  iEdit->document()->clear();
  // A text that is set next would take over the looks at the cursor.
  iEdit->setCurrentCharFormat(QTextCharFormat());
  iEdit->viewport()->setMouseTracking(false);
  iEdit->viewport()->setCursor(Qt::IBeamCursor);
  // Brings back the keys of plain text.
  iEdit->setReadOnly(iEdit->isReadOnly());
}

void CVelumBaseRichTextBox::RefreshColors() {
  CVelumBaseControl::RefreshColors();
  if (!iIsRtf) return;
  const int cursor = Cursor();
  const int scroll = iEdit->verticalScrollBar()->value();
  ShowRtf();
  SetCursor(cursor);
  iEdit->verticalScrollBar()->setValue(scroll);
}

void CVelumBaseRichTextBox::AddColors(QPalette& ioPalette, const QPalette& aNatural) const {
  const QColor back = aNatural.color(QPalette::Base);
  const QColor text = aNatural.color(QPalette::Text);
  const auto mix = [](int aBack, int aText) { return (4 * aBack + aText) / 5; };
  ioPalette.setColor(
      QPalette::Inactive, QPalette::Highlight,
      QColor(mix(back.red(), text.red()), mix(back.green(), text.green()), mix(back.blue(), text.blue())));
  ioPalette.setColor(QPalette::Inactive, QPalette::HighlightedText, text);
}

void CVelumBaseRichTextBox::SetFont(const QFont& aFont) {
  const QScopedValueRollback setting(iSetting, true);
  CVelumBaseControl::SetFont(aFont);
}

void CVelumBaseRichTextBox::SetMaxChar(qint16 aMax) {
  iMaxChar = EffMaxChar(aMax);
  iLimit = std::max(iMaxChar, StoredLen());
}

void CVelumBaseRichTextBox::SetLocked(bool aLocked) {
  iEdit->setReadOnly(aLocked);
}

void CVelumBaseRichTextBox::SetPlaceholder(const QString& aText) {
  iEdit->setPlaceholderText(aText);
}

int CVelumBaseRichTextBox::Cursor() const {
  return iEdit->textCursor().position();
}

void CVelumBaseRichTextBox::SetCursor(int aPos) {
  QTextCursor cursor = iEdit->textCursor();
  cursor.setPosition(std::clamp(aPos, 0, iEdit->document()->characterCount() - 1));
  iEdit->setTextCursor(cursor);
}

int CVelumBaseRichTextBox::SelStart() const {
  return CVelumRtfDocument::ToCount(*iEdit->document(), iEdit->textCursor().selectionStart(), iShown.iHidden);
}

int CVelumBaseRichTextBox::SelLen() const {
  return CVelumRtfDocument::ToCount(*iEdit->document(), iEdit->textCursor().selectionEnd(), iShown.iHidden) -
         SelStart();
}

void CVelumBaseRichTextBox::Select(int aStart, int aLen) {
  QTextCursor cursor = iEdit->textCursor();
  cursor.setPosition(CVelumRtfDocument::FromCount(*iEdit->document(), aStart));
  cursor.setPosition(CVelumRtfDocument::FromCount(*iEdit->document(), aStart + aLen),
                     QTextCursor::KeepAnchor);
  iEdit->setTextCursor(cursor);
}

bool CVelumBaseRichTextBox::Surround(int aStart, int aLen, const QString& aBefore, const QString& aBehind) {
  if (iIsRtf || StoredLen() + aBefore.size() + aBehind.size() > iLimit) return false;
  QTextCursor cursor = iEdit->textCursor();
  cursor.setPosition(CVelumRtfDocument::FromCount(*iEdit->document(), aStart));
  QTextCursor behind = cursor;
  behind.setPosition(CVelumRtfDocument::FromCount(*iEdit->document(), aStart + aLen));
  cursor.beginEditBlock();
  // What stands in front comes first, so that it does not move the place behind an empty part.
  cursor.insertText(aBefore);
  behind.insertText(aBehind);
  cursor.endEditBlock();
  iEdit->setTextCursor(behind);
  return true;
}

void CVelumBaseRichTextBox::Clear() {
  LeaveRtf();
  const QScopedValueRollback setting(iSetting, true);
  iEdit->clear();
}

int CVelumBaseRichTextBox::StoredLen() const {
  // The document counts one unit for each paragraph's end, the last one included; CR LF are two.
  return iEdit->document()->characterCount() - 1 + iEdit->document()->blockCount() - 1;
}

int CVelumBaseRichTextBox::HoldLimit() {
  const int over = StoredLen() - iLimit;
  if (over <= 0) return 0;
  int surplus = over;
  // What was typed or pasted ends at the cursor, and is at least as long as the surplus.
  const QString text = iEdit->document()->toRawText();
  QTextCursor cursor = iEdit->textCursor();
  const int end = cursor.position();
  int from = end;
  while (from > 0 && (surplus > 0 || (from < end && text.at(from).isLowSurrogate())))
    surplus -= text.at(--from) == QChar::ParagraphSeparator ? 2 : 1;
  const QScopedValueRollback setting(iSetting, true);
  cursor.setPosition(from, QTextCursor::KeepAnchor);
  cursor.joinPreviousEditBlock();
  cursor.removeSelectedText();
  cursor.endEditBlock();
  return over;
}

bool CVelumBaseRichTextBox::FindLink(int aPos, QString& aTarget) const {
  return iIsRtf && iLinks && aPos >= 0 && iLinks(aPos, aTarget);
}

int CVelumBaseRichTextBox::PosAt(const QPoint& aPoint) const {
  const QPointF point =
      aPoint + QPoint(iEdit->horizontalScrollBar()->value(), iEdit->verticalScrollBar()->value());
  const QTextDocument& document = *iEdit->document();
  const int hit = document.documentLayout()->hitTest(point, Qt::ExactHit);
  const QTextBlock block = document.findBlock(hit);
  if (hit < 0 || !block.isValid()) return -1;
  const QPointF inBlock = point - document.documentLayout()->blockBoundingRect(block).topLeft();
  const QTextLayout& layout = *block.layout();
  for (int i = 0; i < layout.lineCount(); ++i) {
    const QTextLine line = layout.lineAt(i);
    if (!line.naturalTextRect().contains(inBlock)) continue;
    const int pos = block.position() + line.xToCursor(inBlock.x(), QTextLine::CursorOnCharacter);
    return CVelumRtfDocument::ToCount(document, pos, iShown.iHidden);
  }
  return -1;
}

void CVelumBaseRichTextBox::Hover(const QPoint& aPoint) {
  if (!iIsRtf) return;
  QString target;
  iEdit->viewport()->setCursor(FindLink(PosAt(aPoint), target) ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void CVelumBaseRichTextBox::ShowTip(const QHelpEvent& aEvent) {
  QString target;
  if (FindLink(PosAt(aEvent.pos()), target))
    // Not to be taken for markup.
    QToolTip::showText(aEvent.globalPos(), Qt::convertFromPlainText(target), iEdit->viewport());
  else
    QToolTip::hideText();
}

void CVelumBaseRichTextBox::Release(const QMouseEvent& aEvent) {
  if (aEvent.button() != Qt::LeftButton) return;
  iClickPos = PosAt(aEvent.position().toPoint());
  QString target;
  iOnLink = SelLen() == 0 && FindLink(iClickPos, target);
  Notify(EBaseClick);
}

void CVelumBaseRichTextBox::ClickByKey() {
  const int pos = SelStart();
  QString target;
  if (SelLen() > 0 || !FindLink(pos, target)) return;
  iClickPos = pos;
  Notify(EBaseClick);
}

bool CVelumBaseRichTextBox::eventFilter(QObject* aWatched, QEvent* aEvent) {
  // Events still come while the edit is being destroyed: only the viewport is asked for anything.
  if (aWatched == iViewport) {
    // Filters see the mouse even where the widget itself takes no notice of it.
    if (iViewport->isEnabled()) ViewportEvent(*aEvent);
    // A tip that is no link's is not shown at all.
    return iIsRtf && aEvent->type() == QEvent::ToolTip;
  }
  if (aWatched == iEdit && KeyEvent(*aEvent)) return true;
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}

void CVelumBaseRichTextBox::ViewportEvent(QEvent& aEvent) {
  switch (aEvent.type()) {
  case QEvent::MouseButtonRelease:
    return Release(static_cast<const QMouseEvent&>(aEvent));
  case QEvent::MouseButtonDblClick:
    // The second click on a link meets what the first one brought up.
    if (!iOnLink) Notify(EBaseDblClick);
    return;
  case QEvent::MouseMove:
    return Hover(static_cast<const QMouseEvent&>(aEvent).position().toPoint());
  case QEvent::ToolTip:
    if (iIsRtf) ShowTip(static_cast<const QHelpEvent&>(aEvent));
    return;
  default:
    return;
  }
}

bool CVelumBaseRichTextBox::KeyEvent(const QEvent& aEvent) {
  if (iIsRtf && IsKey(aEvent, {Qt::Key_U}, Qt::ControlModifier)) {
    Notify(EBasePaste);
    return true;
  }
  if (IsKey(aEvent, {Qt::Key_Return, Qt::Key_Enter}, Qt::ShiftModifier)) {
    // The widget would put in a line separator, which no other program takes for a line's end.
    if (!iEdit->isReadOnly()) iEdit->insertPlainText(u"\n"_s);
    return true;
  }
  if (iIsRtf && IsKey(aEvent, {Qt::Key_Return, Qt::Key_Enter}, Qt::NoModifier)) {
    ClickByKey();
    return true;
  }
  return false;
}
