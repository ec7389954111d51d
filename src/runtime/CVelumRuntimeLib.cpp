#include "runtime/CVelumRuntimeLib.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumLib.h"
#include "core/CVelumLog.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "persist/CVelumStackFile.h"
#include "runtime/CVelumRuntimeCompanions.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/lists/CVelumCardSelect.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "runtime/wiki/CVelumWikiTextEdit.h"
#include "toolkit/CVelumBaseMeasure.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"

namespace {

// Loads before anything of the open stack is touched: a failure leaves stack and windows as they are.
void LoadStack(const QString& aPath) {
  CVelumLib::CheckFile(aPath, u"HandleLoadStack"_s);
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> state;
  CVelumStackFile(aPath).LoadStack(stack, state);
  CVelumLib::ReplaceStack(stack, MakeRef<CVelumStackView>(state, stack));
}

} // namespace

namespace CVelumLib {

void InitRuntime() {
  static CVelumRuntimeCompanions companions;
  CVelumCompanions::SetFactory(&companions);
  CVelumWinMan::SetFactory(u"CVelumGenForm"_s, [] { return new CVelumGenForm; });
  CVelumWinMan::SetFactory(u"CVelumCardListForm"_s, [] { return new CVelumCardListForm; });
  CVelumWinMan::SetFactory(u"CVelumCardSelect"_s, [] { return new CVelumCardSelect; });
  CVelumWinMan::SetFactory(u"CVelumWikiTextEdit"_s, [] { return new CVelumWikiTextEdit; });
  CVelumFont font;
  font.SetDefaults();
  CVelumScreenMeasure::InstallMetrics(MakeToolkitFont(font, false));
}

QFont MakeToolkitFont(const CVelumFont& aFont, bool aExact) {
  const auto flag = [&aFont](qint32 aMask) { return (aFont.Flags() & aMask) != 0; };
  return MakeToolkitFont(aFont.FaceName(), static_cast<double>(aFont.HostPointSize(aExact)), flag(EFntBold),
                         flag(EFntItalic), flag(EFntUnderline));
}

void ReplaceStack(const Ref<CVelumStack>& aStack, const Ref<CVelumStackView>& aView) {
  qCDebug(gLogRuntime) << "show stack" << aStack->Name() << "of" << aStack->Filename();
  const Ref<CVelumStack> oldStack = gStack;
  const Ref<CVelumStackView> oldView = gStackView;
  if (oldView) oldView->Release();
  gStack = aStack;
  gStackView = aView;
  try {
    aView->OpenViews();
  } catch (...) {
    aView->Release();
    gStack = oldStack;
    gStackView = oldView;
    if (oldView) oldView->OpenViews();
    throw;
  }
}

bool HandleLoadStack(const QString& aPath) {
  CVelumDialogLib::BeginWait();
  try {
    LoadStack(aPath);
  } catch (...) {
    CVelumError::CatchError(u"CVelumLib.HandleLoadStack"_s);
    CVelumDialogLib::EndWait();
    CVelumMsg::ShowLastError();
    return false;
  }
  CVelumDialogLib::EndWait();
  CVelumSeams::ChangeNotify(EChangeStack);
  if (gStack && gStack->OrderCorrections() > 0)
    CVelumMsg::Show(EMsgOrderCorrections, EMsgExclamation, QString::number(gStack->OrderCorrections()));
  if (gFrameHost) gFrameHost->AddToFileHistory(aPath);
  return true;
}

} // namespace CVelumLib
