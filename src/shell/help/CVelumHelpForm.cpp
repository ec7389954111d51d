#include "shell/help/CVelumHelpForm.h"

#include "shell/help/CVelumHelpSearch.h"
#include "toolkit/CVelumToolkitLib.h"
#include "ui_CVelumHelpForm.h"

#include <QApplication>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpLink>
#include <QPointer>
#include <QTabBar>

namespace {

constexpr int EContentsWidth = 230;
constexpr int EPageWidth = 560;

QPointer<CVelumHelpForm> gHelpForm;

} // namespace

CVelumHelpForm::CVelumHelpForm() : iUi(new Ui::CVelumHelpForm) {
  iUi->setupUi(this);
  setWindowFlags(Qt::Window);
  setAttribute(Qt::WA_DeleteOnClose);
  iUi->fSplitter->setSizes({EContentsWidth, EPageWidth});
  iUi->fPage->SetBook(&iBook);
  ConnectButtons();
  ConnectTabs();
  if (iBook.IsOpen()) AddBook();
}

CVelumHelpForm::~CVelumHelpForm() = default;

void CVelumHelpForm::ConnectButtons() {
  CVelumHelpPage* page = iUi->fPage;
  connect(iUi->fCloseBut, &QPushButton::clicked, this, &QWidget::close);
  connect(iUi->fBackBut, &QPushButton::clicked, page, &QTextBrowser::backward);
  connect(iUi->fForwBut, &QPushButton::clicked, page, &QTextBrowser::forward);
  connect(iUi->fHomeBut, &QPushButton::clicked, this, [this] { SetPage({}); });
  connect(page, &QTextBrowser::backwardAvailable, iUi->fBackBut, &QWidget::setEnabled);
  connect(page, &QTextBrowser::forwardAvailable, iUi->fForwBut, &QWidget::setEnabled);
  connect(page, &QTextBrowser::sourceChanged, this, &CVelumHelpForm::FollowPage);
}

void CVelumHelpForm::ConnectTabs() {
  // Not while the arrow keys go from tab to tab.
  connect(iUi->fTabs, &QTabWidget::currentChanged, this, [this] {
    if (!iUi->fTabs->tabBar()->hasFocus()) FocusTab();
  });
  // The press that chooses the tab is still to be handled.
  connect(iUi->fTabs, &QTabWidget::tabBarClicked, this, &CVelumHelpForm::FocusTab, Qt::QueuedConnection);
}

void CVelumHelpForm::FocusTab() {
  const QWidget* tab = iUi->fTabs->currentWidget();
  if (tab == iUi->fIndexTab) return iUi->fIndexText->setFocus();
  if (tab == iUi->fSearchTab) return iUi->fSearchText->setFocus();
  if (iContents) iContents->setFocus();
}

void CVelumHelpForm::AddBook() {
  QHelpEngine& engine = iBook.Engine();
  AddContents(engine.contentWidget());
  AddIndex(engine.indexWidget());
  iSearch = std::make_unique<CVelumHelpSearch>(*engine.searchEngine());
  connect(iSearch.get(), &CVelumHelpSearch::Found, this, &CVelumHelpForm::ShowResults);
  connect(iUi->fSearchText, &QLineEdit::textEdited, iSearch.get(), &CVelumHelpSearch::Search);
  connect(iUi->fResults, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* aItem) {
    if (aItem) iUi->fPage->setSource(aItem->data(Qt::UserRole).toUrl());
  });
}

void CVelumHelpForm::AddContents(QHelpContentWidget* aContents) {
  iContents = aContents;
  aContents->setObjectName(u"fContents"_s);
  aContents->setAccessibleName(tr("Contents"));
  iUi->fContentsLayout->addWidget(aContents);
  const auto go = [this](const QModelIndex& aIndex) {
    const QHelpContentItem* item = iBook.Engine().contentModel()->contentItemAt(aIndex);
    if (item) iUi->fPage->setSource(item->url());
  };
  connect(aContents, &QAbstractItemView::clicked, this, go);
  connect(aContents, &QAbstractItemView::activated, this, go);
  connect(iBook.Engine().contentModel(), &QHelpContentModel::contentsCreated, this,
          [this] { FollowPage(iUi->fPage->source()); });
}

void CVelumHelpForm::AddIndex(QHelpIndexWidget* aIndex) {
  aIndex->setObjectName(u"fIndex"_s);
  aIndex->setAccessibleName(tr("Index"));
  iUi->fIndexLayout->addWidget(aIndex);
  const auto go = [this](const QUrl& aUrl) { iUi->fPage->setSource(aUrl); };
  connect(aIndex, &QAbstractItemView::clicked, aIndex, &QHelpIndexWidget::activateCurrentItem);
  connect(aIndex, &QHelpIndexWidget::documentActivated, this,
          [go](const QHelpLink& aLink) { go(aLink.url); });
  // Of several pages with one title the first.
  connect(aIndex, &QHelpIndexWidget::documentsActivated, this, [go](const QList<QHelpLink>& aLinks) {
    if (!aLinks.isEmpty()) go(aLinks.first().url);
  });
  const auto filter = [this, aIndex] { aIndex->filterIndices(iUi->fIndexText->text()); };
  connect(iUi->fIndexText, &QLineEdit::textEdited, aIndex, filter);
  // The words come a moment later than the window, and all of them.
  connect(iBook.Engine().indexModel(), &QHelpIndexModel::indexCreated, this, filter);
  connect(iUi->fIndexText, &QLineEdit::returnPressed, aIndex, &QHelpIndexWidget::activateCurrentItem);
}

CVelumHelpForm* CVelumHelpForm::Instance() {
  return gHelpForm;
}

void CVelumHelpForm::ShowPage(const QString& aPage) {
  if (!gHelpForm) gHelpForm = new CVelumHelpForm;
  gHelpForm->SetOwner(QApplication::activeModalWidget());
  gHelpForm->SetPage(aPage);
  CVelumLib::BringUp(*gHelpForm);
}

void CVelumHelpForm::Release(const QWidget* aOwner) {
  if (!gHelpForm || gHelpForm->parentWidget() != aOwner) return;
  const bool visible = gHelpForm->isVisible();
  gHelpForm->SetOwner(nullptr);
  gHelpForm->setVisible(visible);
}

void CVelumHelpForm::SetOwner(QWidget* aOwner) {
  // A child of a modal window is not blocked by it.
  if (aOwner != this && parentWidget() != aOwner) setParent(aOwner, windowFlags());
}

void CVelumHelpForm::SetPage(const QString& aPage) {
  iPage = aPage;
  if (iBook.IsOpen())
    iUi->fPage->setSource(iBook.Find(aPage));
  else
    iUi->fPage->setHtml(tr("<h2>%1</h2><p>The help file orvelles.qch is not there, so that the page "
                           "<b>%1</b> cannot be shown. Please install the program again.</p>")
                            .arg(aPage.toHtmlEscaped()));
}

void CVelumHelpForm::FollowPage(const QUrl& aPage) {
  if (!iContents) return;
  const QModelIndex index = iContents->indexOf(aPage);
  if (!index.isValid()) return;
  iContents->setCurrentIndex(index);
  iContents->scrollTo(index);
}

void CVelumHelpForm::ShowResults(const QList<QHelpSearchResult>& aPages) {
  const QSignalBlocker quiet(iUi->fResults);
  iUi->fResults->clear();
  for (const QHelpSearchResult& page : aPages) {
    auto* item = new QListWidgetItem(page.title(), iUi->fResults);
    item->setData(Qt::UserRole, page.url());
  }
}
