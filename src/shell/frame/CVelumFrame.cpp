#include "shell/frame/CVelumFrame.h"

#include "core/CVelumLog.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "runtime/CVelumIcons.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "script/CVelumInterpreter.h"
#include "shell/dialogs/CVelumImportOptions.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumCommandTable.h"
#include "shell/frame/CVelumFormCommands.h"
#include "shell/frame/CVelumStackName.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumFrame.h"

#include <QAbstractEventDispatcher>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QRegularExpression>
#include <QShortcut>
#include <QToolButton>
#include <algorithm>

CVelumFrame* gFrame = nullptr;

namespace {

constexpr int ENumHistory = 7;
constexpr int ENumGenFunc = 10;
// The screen of a phone, at 20 units a pixel.
constexpr QSizeF EPhoneSize(208 * 20, 255 * 20);

// Where the toolkit puts the mark of a changed document; doubled, it is the text.
const QString EChangeMark = u"[*]"_s;

QString Literal(QString aCaption) {
  return aCaption.replace(EChangeMark, EChangeMark + EChangeMark);
}

} // namespace

CVelumFrame::CVelumFrame()
    : CVelumForm(u"CVelumFrame"_s, true), iUi(new Ui::CVelumFrame), iChangeMark(*this), iCommands(*this),
      iEditCommands(*this), iPictureCommands(*this), iEndProcess([] { QCoreApplication::exit(0); }) {
  iUi->setupUi(this);
  setAnimated(false);
  // All windows of the program have it.
  QApplication::setWindowIcon(CVelumIcons::AppIcon());
  ConnectMenus();
  ConnectToolbar();
  ConnectEditMenu();
  ConnectKeys();
  ConnectChildKeys();
  AddReport();
  TakeDrops();
  iScriptBar = new CVelumScriptBar(this);
  iUi->fStatusBar->addPermanentWidget(iScriptBar);
  iScriptBar->hide();
  AddCardListButton();
  gFrame = this;
  gFrameHost = this;
}

CVelumFrame::~CVelumFrame() {
  gFrame = nullptr;
  gFrameHost = nullptr;
}

void CVelumFrame::AddReport() {
  iReport = new QLabel(this);
  iReport->setObjectName(u"fReport"_s);
  iReport->setTextFormat(Qt::PlainText);
  // A long text is cut and does not widen the window.
  iReport->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  iUi->fStatusBar->addWidget(iReport, 1);
}

void CVelumFrame::Report(const QString& aText) {
  iReport->setText(aText);
  iReport->setToolTip(aText);
}

void CVelumFrame::AddCardListButton() {
  iShowCardList = new QAction(CVelumIcons::Icon(u"ShowCardList"_s), tr("Show Card List"), this);
  iShowCardList->setObjectName(u"fShowCardList"_s);
  connect(iShowCardList, &QAction::triggered, this, [] {
    CVelumGuard::Run(u"CVelumFrame.fShowCardList"_s, [] {
      if (gStackView) gStackView->ShowCardList();
    });
  });
  auto* button = new QToolButton(this);
  button->setDefaultAction(iShowCardList);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::TabFocus);
  iUi->fStatusBar->addPermanentWidget(button);
}

void CVelumFrame::ConnectMenus() {
  const auto on = [this](QAction* aAction, auto aCommand) {
    connect(aAction, &QAction::triggered, this, [aAction, aCommand] {
      qCDebug(gLogShell) << "command" << aAction->objectName();
      CVelumGuard::Run(u"CVelumFrame"_s, aCommand);
    });
  };
  // These close, replace or empty the stack: a running script ends first.
  const auto onIdle = [&on](QAction* aAction, auto aCommand) {
    on(aAction, [aCommand] { CVelumDialogLib::WhenNoScriptRuns(aCommand); });
  };
  onIdle(iUi->fOpenStack, [this] { iCommands.OpenStack(); });
  on(iUi->fSaveStack, [this] { iCommands.SaveStack(); });
  on(iUi->fSaveStackAs, [this] { iCommands.SaveStackAs(); });
  onIdle(iUi->fCloseStack, [this] { iCommands.CloseStack(); });
  onIdle(iUi->fDeleteCard, [this] { iCommands.DeleteCard(); });
  onIdle(iUi->fEmptyStack, [this] { iCommands.EmptyStack(); });
  on(iUi->fImportPicFile, [this] { iPictureCommands.ImportPicFile(); });
  on(iUi->fShowPicture, [this] { ShowPicture(); });
  on(iUi->fHelp, [this] { CVelumMsg::ShowHelp(Name(), {}); });
  on(iUi->fClose, [this] { close(); });
  // There is no transfer server yet.
  on(iUi->fHttpServer, [this] { CVelumNotBuilt::Tell(CaptionOf(*iUi->fHttpServer), this); });
  on(iUi->fSize, [this] { SetPhoneSize(); });
  for (int i = 0; i < ENumHistory; ++i) {
    QAction* item = findChild<QAction*>(u"fHistory"_s + QString::number(i));
    onIdle(item, [this, item] { iCommands.OpenRecent(item->data().toString()); });
  }
  for (int i = 0; i < ENumGenFunc; ++i) {
    QAction* item = FindAction(u"fGenFunc"_s + QString::number(i));
    on(item, [item] {
      if (gStackView) gStackView->BaseObjClick(item);
    });
  }
  for (const TVelumCommand& command : CVelumCommandTable::Menus()) {
    if (command.iForm.isEmpty()) continue;
    auto* item = findChild<QAction*>(command.iAction.toString());
    on(item, [this, command, item] { CVelumFormCommands::Show(command, CaptionOf(*item), this); });
  }
  for (QMenu* menu : findChildren<QMenu*>())
    connect(menu, &QMenu::aboutToShow, this, &CVelumFrame::UpdateMenus);
  connect(iUi->fOpenRecent, &QMenu::aboutToShow, this, &CVelumFrame::FillHistory);
  iUi->fDevelopment->menuAction()->setVisible(false);
}

QString CVelumFrame::CaptionOf(const QAction& aItem) const {
  const auto plain = [](QString aText) {
    return aText.remove(u"..."_s).replace(u"&&"_s, u"\n"_s).remove(u'&').replace(u'\n', u'&');
  };
  for (const QMenu* menu : findChildren<QMenu*>())
    if (menu->actions().contains(&aItem)) return tr("%1, %2").arg(plain(menu->title()), plain(aItem.text()));
  return plain(aItem.text());
}

void CVelumFrame::ConnectEditMenu() {
  const auto on = [this](QAction* aAction, auto aCommand) {
    connect(aAction, &QAction::triggered, this,
            [aCommand] { CVelumGuard::Run(u"CVelumFrame.fEdit"_s, aCommand); });
  };
  on(iUi->fUndo, [this] { iEditCommands.Undo(); });
  on(iUi->fRedo, [this] { iEditCommands.Redo(); });
  on(iUi->fCut, [this] { iEditCommands.Cut(); });
  on(iUi->fCopy, [this] { iEditCommands.Copy(); });
  on(iUi->fPaste, [this] { iEditCommands.Paste(); });
  on(iUi->fSelectAll, [this] { iEditCommands.SelectAll(); });
  on(iUi->fDelete, [this] {
    if (!iEditCommands.Delete() && CVelumEditCommands::InCardList()) iUi->fDeleteCard->trigger();
  });
  // Entries, lists and pictures have these keys of their own: the menu only names them.
  for (QAction* action : {iUi->fCut, iUi->fCopy, iUi->fPaste, iUi->fDelete, iUi->fSelectAll})
    action->setShortcutContext(Qt::WidgetShortcut);
  iUi->fUndo->setShortcut(Qt::CTRL | Qt::Key_Z);
  iUi->fRedo->setShortcuts({Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y});
  qApp->installEventFilter(&iUndoKeys);
  // The focus and the clipboard decide, at the time when the menu is opened.
  connect(iUi->fEdit, &QMenu::aboutToShow, this, &CVelumFrame::UpdateEditMenu);
  connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
          &CVelumFrame::ShowSteps);
}

void CVelumFrame::ShowSteps() {
  const auto show = [](QAction& aItem, QAction& aButton, bool aCan, const QString& aText) {
    aItem.setEnabled(aCan);
    aButton.setEnabled(aCan);
    if (aItem.text() == aText) return;
    aItem.setText(aText);
    aButton.setToolTip(QString(aText).remove(QRegularExpression(u"&(?!&)"_s)).replace(u"&&"_s, u"&"_s));
  };
  show(*iUi->fUndo, *iUi->Undo, iEditCommands.CanUndo(), iEditCommands.UndoText());
  show(*iUi->fRedo, *iUi->Redo, iEditCommands.CanRedo(), iEditCommands.RedoText());
}

void CVelumFrame::UpdateEditMenu() {
  ShowSteps();
  iUi->fCut->setEnabled(iEditCommands.CanCut());
  iUi->fCopy->setEnabled(iEditCommands.CanCopy());
  iUi->fPaste->setEnabled(iEditCommands.CanPaste());
  iUi->fDelete->setEnabled(iEditCommands.CanDelete());
  iUi->fSelectAll->setEnabled(iEditCommands.CanSelectAll());
}

void CVelumFrame::ConnectToolbar() {
  for (const TVelumCommand& command : CVelumCommandTable::Toolbar()) {
    const QString key = command.iAction.toString();
    QAction* button = findChild<QAction*>(key);
    iButtons.append({button, command.iNeed});
    button->setIcon(CVelumIcons::Icon(key));
    connect(button, &QAction::triggered, this, [this, key] {
      CVelumGuard::Run(u"CVelumFrame.fToolbar_ButtonClick"_s, [&] { ButtonClick(key); });
    });
  }
}

// Page Up and Page Down alone belong to the text box that has the focus; with Ctrl they leaf from everywhere.
// No entry has a use for Alt with an arrow, but lists would take it for the arrow alone.
void CVelumFrame::ConnectKeys() {
  const auto leaf = [](QAction* aButton, Qt::Key aKey) {
    aButton->setShortcut(Qt::CTRL | aKey);
    aButton->setShortcutContext(Qt::ApplicationShortcut);
  };
  leaf(iUi->PrevCard, Qt::Key_PageUp);
  leaf(iUi->NextCard, Qt::Key_PageDown);
  iUi->BackInHistory->setShortcut(Qt::ALT | Qt::Key_Left);
  iUi->ForwInHistory->setShortcut(Qt::ALT | Qt::Key_Right);
}

void CVelumFrame::ConnectChildKeys() {
  const auto on = [this](Qt::KeyboardModifiers aModifiers, Qt::Key aKey, void (QMdiArea::*aDo)()) {
    auto* key = new QShortcut(aModifiers | aKey, this);
    connect(key, &QShortcut::activated, this,
            [this, aDo] { CVelumGuard::Run(u"CVelumFrame"_s, [&] { (iUi->fArea->*aDo)(); }); });
  };
  on(Qt::ControlModifier, Qt::Key_F6, &QMdiArea::activateNextSubWindow);
  on(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_F6, &QMdiArea::activatePreviousSubWindow);
  on(Qt::ControlModifier, Qt::Key_F4, &QMdiArea::closeActiveSubWindow);
}

// Both may close or replace the stack: a running script ends first.
void CVelumFrame::TakeDrops() {
  const auto onIdle = [](auto aUse) {
    return [aUse](const QString& aPath) {
      CVelumGuard::Run(u"CVelumFrame.Drop"_s,
                       [&] { CVelumDialogLib::WhenNoScriptRuns([aUse, aPath] { aUse(aPath); }); });
    };
  };
  iFileDrop = std::make_unique<CVelumFileDrop>(
      *this, onIdle([this](const QString& aPath) { iCommands.OpenRecent(aPath); }),
      onIdle([](const QString& aPath) { CVelumImportOptions::ShowCsvImport(aPath); }));
}

void CVelumFrame::ButtonClick(const QString& aKey) {
  using TMove = bool (CVelumStackView::*)(Ref<CVelumCard>&);
  static const QHash<QString, TMove> moves{{u"FirstCard"_s, &CVelumStackView::OrderFirst},
                                           {u"PrevCard"_s, &CVelumStackView::OrderPrev},
                                           {u"NextCard"_s, &CVelumStackView::OrderNext},
                                           {u"LastCard"_s, &CVelumStackView::OrderLast},
                                           {u"BackInHistory"_s, &CVelumStackView::HistoryPrev},
                                           {u"ForwInHistory"_s, &CVelumStackView::HistoryNext}};
  Ref<CVelumCard> card;
  if (const TMove step = moves.value(aKey)) {
    // The view must live until it is done, whatever a script does.
    const Ref<CVelumStackView> view = gStackView;
    if (view) static_cast<void>((view.Get()->*step)(card));
    return;
  }
  const bool known = CVelumCommandTable::IsToolbarKey(aKey);
  CVelumError::Assert(known, u"fToolbar_ButtonClick Button.Key "_s + aKey);
  if (!known) return;
  UpdateMenus();
  findChild<QAction*>(u"f"_s + aKey)->trigger();
}

void CVelumFrame::Load() {
  iTitle = windowTitle();
  CVelumForm::Load();
  UpdateToolbar();
}

void CVelumFrame::Unload() {
  CVelumOptions::SaveOptions();
  CVelumForm::Unload();
}

void CVelumFrame::closeEvent(QCloseEvent* aEvent) {
  if (gInterpreter && gInterpreter->Running()) {
    aEvent->ignore();
    return CVelumDialogLib::WhenNoScriptRuns([this] { close(); });
  }
  bool stillOpen = false;
  CVelumGuard::Run(u"CVelumFrame.QueryUnload"_s, [&] {
    stillOpen = true;
    CVelumDialogLib::CloseStackStep(stillOpen);
  });
  aEvent->setAccepted(!stillOpen);
  if (stillOpen) return;
  // Settings that cannot be written must not keep the window open.
  CVelumGuard::Run(u"CVelumFrame.Unload"_s, [this] { Unload(); });
  iEndProcess();
}

void CVelumFrame::ChangeNotify(int aKind, CVelumObject*, CVelumObject*) {
  switch (aKind) {
  case EChangeStack:
    ShowStackName();
    UpdateToolbar();
    if (gStackView) gStackView->ExecScript(nullptr, u"openStack"_s);
    break;
  case EChangeStructure:
  case EChangeCards:
  case EChangeCardGoes:
    if (gStackView) gStackView->RefreshViews(true, true);
    break;
  case EChangeStackClosed:
    iChangeMark.Check();
    setWindowTitle(iTitle);
    UpdateToolbar();
    Report({});
    break;
  default:
    break;
  }
}

void CVelumFrame::ShowStackName() {
  if (!gStack) return;
  setWindowTitle(Literal(CVelumStackName::Caption(*gStack)) + EChangeMark + u" - "_s + iTitle);
  iChangeMark.Check();
}

void CVelumFrame::CardShown() {
  for (const auto& [button, need] : iButtons) button->setEnabled(CVelumCommandTable::IsMet(need));
  ShowSteps();
}

void CVelumFrame::UpdateToolbar() {
  CardShown();
  iUi->fCmd->setEnabled(bool(gStack));
  iShowCardList->setEnabled(bool(gStack));
  UpdateMenus();
}

void CVelumFrame::UpdateMenus() {
  for (const TVelumCommand& command : CVelumCommandTable::Menus()) {
    // A submenu is switched by its own action.
    const auto* menu = findChild<QMenu*>(command.iAction.toString());
    QAction* action = menu ? menu->menuAction() : findChild<QAction*>(command.iAction.toString());
    action->setEnabled(CVelumCommandTable::IsMet(command.iNeed));
  }
  ShowSteps();
}

// Files of one name are told apart by their folders.
QString CVelumFrame::HistoryCaption(const QString& aPath) {
  const QFileInfo file(aPath);
  const auto same = [&](const QString& aOther) { return QFileInfo(aOther).fileName() == file.fileName(); };
  const bool alone =
      aPath.isEmpty() || std::count_if(gFileHistory.begin(), gFileHistory.begin() + ENumHistory, same) < 2;
  const QString caption = alone ? file.fileName() : tr("%1 in %2").arg(file.fileName(), file.path());
  return QString(caption).replace(u'&', u"&&"_s);
}

void CVelumFrame::FillHistory() {
  int last = ENumHistory - 1;
  while (last >= 0 && gFileHistory[static_cast<size_t>(last)].isEmpty()) --last;
  // The oldest stands first.
  for (int i = 0; i < ENumHistory; ++i) {
    const QString path = i <= last ? gFileHistory[static_cast<size_t>(last - i)] : QString();
    auto* item = findChild<QAction*>(u"fHistory"_s + QString::number(i));
    item->setText(HistoryCaption(path));
    item->setToolTip(path);
    item->setData(path);
    item->setVisible(i <= last);
  }
}

void CVelumFrame::SetPhoneSize() {
  if (!CVelumWinMan::FormIsLoaded(u"CVelumGenForm"_s)) return;
  CVelumForm* form = CVelumWinMan::NameToForm(u"CVelumGenForm"_s);
  form->SetPlace(QRectF(form->Place().topLeft(), CVelumLib::ClientSizeToWindow(EPhoneSize)), true);
}

QMenu* CVelumFrame::createPopupMenu() {
  return nullptr;
}

void CVelumFrame::keyPressEvent(QKeyEvent* aEvent) {
  const bool plain = (aEvent->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (plain && aEvent->key() == Qt::Key_PageUp)
    iUi->PrevCard->trigger();
  else if (plain && aEvent->key() == Qt::Key_PageDown)
    iUi->NextCard->trigger();
  else if (plain && aEvent->key() == Qt::Key_Delete && CVelumEditCommands::InCardList())
    iUi->fDeleteCard->trigger();
  else
    QMainWindow::keyPressEvent(aEvent);
}

QAction* CVelumFrame::FindAction(const QString& aName) {
  if (aName == u"fCmd"_s) return iUi->fCmd->menuAction();
  const bool isCommand = iUi->fCmd->actions().contains(findChild<QAction*>(aName));
  return isCommand ? findChild<QAction*>(aName) : nullptr;
}

QMenu* CVelumFrame::CmdMenu() {
  return iUi->fCmd;
}

QIcon CVelumFrame::ToolbarIcon(const QString& aKey) {
  return CVelumIcons::Icon(aKey);
}

void CVelumFrame::AddChild(QWidget* aForm) {
  iUi->fArea->AddChild(aForm);
}

void CVelumFrame::RemoveChild(QWidget* aForm) {
  iUi->fArea->RemoveChild(aForm);
}

void CVelumFrame::ShowChild(QWidget* aForm, bool aRaise) {
  iUi->fArea->ShowChild(aForm, aRaise);
}

void CVelumFrame::HideChild(QWidget* aForm) {
  iUi->fArea->HideChild(aForm);
}

bool CVelumFrame::CloseStack() {
  if (gInterpreter && gInterpreter->Running()) {
    CVelumDialogLib::WhenNoScriptRuns([this] { static_cast<void>(CloseStack()); });
    return false;
  }
  bool stillOpen = false;
  CVelumDialogLib::CloseStackStep(stillOpen);
  return !stillOpen;
}

QWidget* CVelumFrame::ShowForm(const QString& aName) {
  CVelumForm* form = CVelumWinMan::NameToForm(aName);
  if (!form) return nullptr;
  CVelumWinMan::ShowDialog(*form);
  return form->Widget();
}

void CVelumFrame::ShowPicture() {
  iPictureCommands.ShowPicture();
}

void CVelumFrame::AddToFileHistory(const QString& aPath) {
  CVelumOptions::AddToFileHistory(aPath);
}
