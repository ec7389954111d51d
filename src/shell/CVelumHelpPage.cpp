#include "shell/CVelumHelpPage.h"

#include "shell/CVelumHelpBook.h"

#include "toolkit/CVelumBaseColor.h"

#include <QDesktopServices>
#include <QEvent>

CVelumHelpPage::CVelumHelpPage(QWidget* aParent) : QTextBrowser(aParent) {
  ColorLinks();
}

void CVelumHelpPage::ColorLinks() {
  const QColor color =
      CVelumBaseColor::Readable(palette().color(QPalette::Link), palette().color(QPalette::Base));
  document()->setDefaultStyleSheet(u"a { color: %1; }"_s.arg(color.name()));
}

void CVelumHelpPage::changeEvent(QEvent* aEvent) {
  QTextBrowser::changeEvent(aEvent);
  if (aEvent->type() != QEvent::PaletteChange) return;
  ColorLinks();
  if (!source().isEmpty()) reload();
}

QVariant CVelumHelpPage::loadResource(int, const QUrl& aUrl) {
  return iBook ? QString::fromUtf8(iBook->Data(aUrl)) : QVariant();
}

void CVelumHelpPage::doSetSource(const QUrl& aUrl, QTextDocument::ResourceType) {
  if (aUrl.scheme().startsWith(u"http"_s))
    QDesktopServices::openUrl(aUrl);
  else
    QTextBrowser::doSetSource(source().resolved(aUrl), QTextDocument::HtmlResource);
}
