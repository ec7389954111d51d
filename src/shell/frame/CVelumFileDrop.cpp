#include "shell/frame/CVelumFileDrop.h"

#include "core/CVelumObject.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

CVelumFileDrop::CVelumFileDrop(QWidget& aWindow, TTake aStack, TTake aTable)
    : iWindow(aWindow), iStack(std::move(aStack)), iTable(std::move(aTable)) {
  // Whatever part of the window takes no drops itself hands them up.
  aWindow.setAcceptDrops(true);
  qApp->installEventFilter(this);
}

CVelumFileDrop::EKind CVelumFileDrop::KindOf(const QMimeData* aData, QString& aPath) {
  const QList<QUrl> urls = aData ? aData->urls() : QList<QUrl>();
  if (urls.size() != 1 || !urls.first().isLocalFile()) return EKind::None;
  aPath = urls.first().toLocalFile();
  const QFileInfo file(aPath);
  if (file.isDir()) return EKind::None;
  const QString ending = file.suffix().toLower();
  if (QStringList{u"orvelle"_s, u"orv"_s, u"xml"_s}.contains(ending)) return EKind::Stack;
  return QStringList{u"csv"_s, u"tsv"_s}.contains(ending) ? EKind::Table : EKind::None;
}

bool CVelumFileDrop::eventFilter(QObject* aObject, QEvent* aEvent) {
  const QEvent::Type type = aEvent->type();
  if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
  const auto* widget = qobject_cast<const QWidget*>(aObject);
  if (!widget || widget->window() != &iWindow) return false;
  auto* drop = static_cast<QDropEvent*>(aEvent);
  QString path;
  const EKind kind = KindOf(drop->mimeData(), path);
  if (kind == EKind::None) return false;
  // A question that waits for its answer comes first.
  if (QApplication::activeModalWidget()) {
    drop->ignore();
    return true;
  }
  // The file is only read: the other program must not think that it was moved here.
  drop->setDropAction(Qt::CopyAction);
  drop->accept();
  if (type == QEvent::Drop) Take(kind, path);
  return true;
}

void CVelumFileDrop::Take(EKind aKind, const QString& aPath) {
  const TTake& take = aKind == EKind::Stack ? iStack : iTable;
  QMetaObject::invokeMethod(
      this, [take, aPath] { take(aPath); }, Qt::QueuedConnection);
}
