#include "shell/help/CVelumHelpPage.h"

#include "shell/help/CVelumHelpBook.h"
#include "toolkit/CVelumToolkitLib.h"

#include <QDesktopServices>
#include <QEvent>

CVelumHelpPage::CVelumHelpPage(QWidget* aParent) : QTextBrowser(aParent) {
  CVelumLib::ColorLinks(*this);
}

void CVelumHelpPage::changeEvent(QEvent* aEvent) {
  QTextBrowser::changeEvent(aEvent);
  if (aEvent->type() != QEvent::PaletteChange) return;
  CVelumLib::ColorLinks(*this);
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
