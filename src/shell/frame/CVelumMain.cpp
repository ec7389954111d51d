#include "shell/frame/CVelumMain.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "exchange/CVelumExports.h"
#include "model/CVelumStack.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/script/CVelumViewScriptHost.h"
#include "runtime/view/CVelumStackView.h"
#include "script/CVelumCompiler.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumWelcome.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumShellForms.h"
#include "shell/frame/CVelumShellPresenter.h"
#include "shell/help/CVelumHelpKeys.h"
#include "toolkit/CVelumComboAccess.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumToolkitPump.h"
#include "toolkit/CVelumWinMan.h"

#include <QFileInfo>

namespace {

// What Main puts into the seams; lives from Main to End.
struct TInstalled {
  CVelumToolkitPump iPump;
  CVelumShellPresenter iPresenter;
  CVelumHelpKeys iHelpKeys;
  std::unique_ptr<CVelumViewScriptHost> iScripts;
  std::unique_ptr<CVelumFrame> iFrame;
};

std::unique_ptr<TInstalled> gInstalled;

void InstallSeams(CVelumPresenter* aPresenter) {
  gInstalled = std::make_unique<TInstalled>();
  CVelumSeams::SetEventPump(&gInstalled->iPump);
  CVelumSeams::SetPresenter(aPresenter ? aPresenter : &gInstalled->iPresenter);
}

void InitLibraries() {
  CVelumModel::Install();
  CVelumLib::InitLib();
  CVelumLib::InitRuntime();
  CVelumComboAccess::Install();
  CVelumMsg::InitMessages();
  CVelumOptions::LoadOptions();
  CVelumExports::InitExports();
  CVelumWinMan::InitWinMan();
  CVelumShellForms::Register();
}

void MakeScripts() {
  gCompiler = MakeRef<CVelumCompiler>();
  // Whoever starts the program may have put another runner in. The interpreter seeds its random numbers.
  if (!CVelumScriptRunner::Installed()) gInstalled->iScripts = std::make_unique<CVelumViewScriptHost>();
}

void ShowFrame(std::function<void()> aEndProcess) {
  gInstalled->iFrame = std::make_unique<CVelumFrame>();
  if (aEndProcess) gFrame->SetEndProcess(std::move(aEndProcess));
  CVelumWinMan::SetFactory(u"CVelumFrame"_s, [] { return gFrame; });
  CVelumWinMan::ShowDialog(*gFrame);
}

// The stack of the command line, or else the one of the options.
void OpenFirstStack(const QString& aCommandLine) {
  if (!CVelumLib::TrimBlanks(aCommandLine).isEmpty())
    CVelumLib::HandleLoadStack(CVelumMain::StackPath(aCommandLine));
  else if (!gOptions.iAutoLoadName.isEmpty())
    CVelumLib::HandleLoadStack(gOptions.iAutoLoadName);
}

// The box goes by itself after a while.
void Greet() {
  auto* box = dynamic_cast<CVelumWelcome*>(CVelumWinMan::NameToForm(u"CVelumWelcome"_s));
  if (!box) return;
  CVelumWinMan::ShowDialog(*box);
  box->Stay();
}

} // namespace

QString CVelumMain::StackPath(const QString& aCommandLine) {
  // A file name may begin or end with other white space than blanks.
  QString path = CVelumLib::TrimBlanks(aCommandLine).toString();
  if (path.startsWith(u'"') && path.endsWith(u'"')) {
    if (path.size() < 2) CVelumError::RaiseHost(EHostBadCall);
    path = path.sliced(1, path.size() - 2);
  }
  const QFileInfo file(path);
  return path.isEmpty() || !file.exists() ? path : file.absoluteFilePath();
}

QString CVelumMain::CommandLine(const QStringList& aArguments) {
  const bool isFile = aArguments.size() == 1 && QFileInfo(aArguments.first()).isFile();
  return isFile ? u"\"%1\""_s.arg(aArguments.first()) : aArguments.join(u' ');
}

void CVelumMain::Main(const QString& aCommandLine, CVelumPresenter* aPresenter,
                      std::function<void()> aEndProcess) {
  InstallSeams(aPresenter);
  InitLibraries();
  MakeScripts();
  ShowFrame(std::move(aEndProcess));
  // A failure here leaves the main window without a stack.
  CVelumGuard::Run(u"Main"_s, [&] { OpenFirstStack(aCommandLine); });
  // The transfer server is to be made here, behind the first stack.
  CVelumSeams::EventPump().Pump();
  const bool showWelcome = CVelumLib::TrimBlanks(aCommandLine).isEmpty();
  if (showWelcome && gOptions.iShowWelcome) Greet();
  static_cast<void>(CVelumLib::GetDocDir());
}

void CVelumMain::End() {
  if (gStackView) gStackView->Release();
  gStackView = nullptr;
  gStack = nullptr;
  gCompiler = nullptr;
  CVelumSeams::SetChangeSink(nullptr);
  CVelumWinMan::SetFactory(u"CVelumFrame"_s, {});
  CVelumSeams::SetEventPump(nullptr);
  CVelumSeams::SetPresenter(nullptr);
  gInstalled.reset();
}
