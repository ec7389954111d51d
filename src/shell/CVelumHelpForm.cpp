#include "shell/CVelumHelpForm.h"

#include "core/CVelumObject.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QPointer>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

QPointer<CVelumHelpForm> gHelpForm;

} // namespace

CVelumHelpForm::CVelumHelpForm() : fPage(new QTextBrowser(this)) {
  setWindowFlags(Qt::Window);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Orvelles Help"));
  fPage->setObjectName(u"fPage"_s);
  fPage->setAccessibleName(tr("Help page"));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(fPage);
  layout->addWidget(buttons);
  resize(560, 420);
}

CVelumHelpForm* CVelumHelpForm::Instance() {
  return gHelpForm;
}

void CVelumHelpForm::ShowPage(const QString& aPage) {
  if (!gHelpForm) gHelpForm = new CVelumHelpForm;
  gHelpForm->SetOwner(QApplication::activeModalWidget());
  gHelpForm->SetPage(aPage);
  gHelpForm->show();
  gHelpForm->raise();
  gHelpForm->activateWindow();
}

void CVelumHelpForm::Release(const QWidget* aOwner) {
  if (!gHelpForm || gHelpForm->parentWidget() != aOwner) return;
  const bool visible = gHelpForm->isVisible();
  gHelpForm->SetOwner(nullptr);
  gHelpForm->setVisible(visible);
}

void CVelumHelpForm::SetOwner(QWidget* aOwner) {
  // A child of a modal window is not blocked by it.
  if (parentWidget() != aOwner) setParent(aOwner, windowFlags());
}

void CVelumHelpForm::SetPage(const QString& aPage) {
  iPage = aPage;
  fPage->setHtml(tr("<h2>%1</h2><p>This will be the help page <b>%1</b>.</p>").arg(aPage.toHtmlEscaped()));
}
