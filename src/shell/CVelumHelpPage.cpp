#include "shell/CVelumHelpPage.h"

#include "shell/CVelumHelpBook.h"

#include <QDesktopServices>

CVelumHelpPage::CVelumHelpPage(QWidget* aParent) : QTextBrowser(aParent) {}

QVariant CVelumHelpPage::loadResource(int, const QUrl& aUrl) {
  return iBook ? QString::fromUtf8(iBook->Data(aUrl)) : QVariant();
}

void CVelumHelpPage::doSetSource(const QUrl& aUrl, QTextDocument::ResourceType) {
  if (aUrl.scheme().startsWith(u"http"_s))
    QDesktopServices::openUrl(aUrl);
  else
    QTextBrowser::doSetSource(source().resolved(aUrl), QTextDocument::HtmlResource);
}
