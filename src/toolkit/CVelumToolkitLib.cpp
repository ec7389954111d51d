#include "toolkit/CVelumToolkitLib.h"

#include "core/CVelumLib.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumFileDialog.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <algorithm>

namespace CVelumLib {

QFont MakeToolkitFont(const QString& aFaceName, double aPointSize, bool aBold, bool aItalic,
                      bool aUnderline) {
  QFont font(aFaceName);
  font.setPointSizeF(std::clamp(aPointSize, 1.0, 1000.0));
  font.setBold(aBold);
  font.setItalic(aItalic);
  font.setUnderline(aUnderline);
  return font;
}

QString GetClipboardText() {
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  QString text = data && data->hasText() ? data->text() : QString();
  if (text.endsWith(u"\r\n"_s))
    text.chop(2);
  else if (text.endsWith(u'\n'))
    text.chop(1);
  return text;
}

QString BrowseForFolder(QWidget* aOwner, const QString& aTitle, const QString& aStart) {
  CVelumFileDialog dialog(aTitle, {}, {});
  dialog.SetInitDir(aStart);
  return dialog.ShowFolder(aOwner) ? dialog.FileName() : QString();
}

void SetComboDropWidth(QComboBox& aCombo, const QWidget& aForm) {
  QAbstractItemView* view = aCombo.view();
  const QFontMetrics metrics = view->fontMetrics();
  int wanted = 0;
  for (int i = 0; i < aCombo.count(); ++i)
    wanted = std::max(wanted, metrics.horizontalAdvance(aCombo.itemText(i)));
  // Room for the margins of a line and for the scroll bar.
  wanted += metrics.height() + view->verticalScrollBar()->sizeHint().width();
  view->setMinimumWidth(std::min(wanted, aForm.screen()->availableSize().width()));
}

void ColorLinks(QTextEdit& aBox) {
  const QPalette palette = aBox.palette();
  const QColor color =
      CVelumBaseColor::Readable(palette.color(QPalette::Link), palette.color(QPalette::Base));
  aBox.document()->setDefaultStyleSheet(u"a { color: %1; }"_s.arg(color.name()));
}

void CentreOver(QWidget& aForm, const QWidget* aOver) {
  if (!aOver) return;
  const QRect over = aOver->frameGeometry();
  aForm.move(over.x() + (over.width() - aForm.frameSize().width()) / 2,
             over.y() + (over.height() - aForm.frameSize().height()) / 2);
}

void BringUp(QWidget& aForm) {
  aForm.setWindowState(aForm.windowState() & ~Qt::WindowMinimized);
  aForm.show();
  aForm.raise();
  aForm.activateWindow();
}

QSize ChildFrameSize() {
  // Only a laid out child knows; asking it once is enough, as the style stays.
  static const QSize size = [] {
    constexpr QSize outer(400, 300);
    QMdiArea area;
    QWidget content;
    QMdiSubWindow* child = area.addSubWindow(&content);
    child->resize(outer);
    child->layout()->activate();
    const QSize inner = content.size();
    area.removeSubWindow(&content);
    delete child;
    return outer - inner;
  }();
  return size;
}

QSizeF ClientSizeToWindow(const QSizeF& aClientSize) {
  return aClientSize + QSizeF(ChildFrameSize()) * PixelsToTwips(1);
}

} // namespace CVelumLib
