#include "shell/CVelumMain.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "exchange/CVelumExports.h"
#include "model/CVelumStack.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/CVelumStackView.h"
#include "runtime/CVelumViewScriptHost.h"
#include "script/CVelumCompiler.h"
#include "shell/CVelumFrame.h"
#include "shell/CVelumHelpKeys.h"
#include "shell/CVelumOptions.h"
#include "shell/CVelumShellForms.h"
#include "shell/CVelumShellPresenter.h"
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
  CVelumMsg::InitMessages();
  CVelumOptions::LoadOptions();
  CVelumExports::InitExports();
  CVelumWinMan::InitWinMan();
  CVelumLib::InitRuntime();
  CVelumShellForms::Register();
  gCompiler = MakeRef<CVelumCompiler>();
  // Whoever starts the program may have put another one in.
  if (!gScriptRunner) gInstalled->iScripts = std::make_unique<CVelumViewScriptHost>();
}

void ShowFrame() {
  gInstalled->iFrame = std::make_unique<CVelumFrame>();
  CVelumWinMan::SetFactory(u"CVelumFrame"_s, [] { return gFrame; });
  CVelumWinMan::ShowDialog(*gInstalled->iFrame);
}

// The stack of the command line, or else the one of the settings.
void OpenFirstStack(const QString& aCommandLine) {
  const QString path = CVelumMain::StackPath(aCommandLine);
  const QString name = path.isEmpty() ? gOptions.iAutoLoadName : path;
  if (!name.isEmpty()) CVelumLib::HandleLoadStack(name);
}

} // namespace

QString CVelumMain::StackPath(const QString& aCommandLine) {
  QString path = aCommandLine.trimmed();
  if (path.startsWith(u'"') && path.endsWith(u'"')) {
    if (path.size() < 2) CVelumError::RaiseHost(EHostBadCall);
    path = path.sliced(1, path.size() - 2);
  }
  const QFileInfo file(path);
  return path.isEmpty() || !file.exists() ? path : file.absoluteFilePath();
}

void CVelumMain::Main(const QString& aCommandLine, CVelumPresenter* aPresenter) {
  InstallSeams(aPresenter);
  InitLibraries();
  ShowFrame();
  // A failure here leaves the main window without a stack.
  CVelumGuard::Run(u"Main"_s, [&] { OpenFirstStack(aCommandLine); });
  CVelumSeams::EventPump().Pump();
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
