#include "shell/CVelumCommandTable.h"

#include "runtime/CVelumStackView.h"
#include "toolkit/CVelumWinMan.h"

namespace {

using enum EVelumNeed;

constexpr TVelumCommand EMenus[] = {
    {u"fOpenStack", Nothing, u""},
    {u"fSaveStack", Stack, u""},
    {u"fSaveStackAs", Stack, u""},
    {u"fNewStack", Nothing, u"CVelumNewStackForm"},
    {u"fImport", Nothing, u"CVelumImportOptions"},
    {u"fExport", Stack, u"CVelumExportOptions"},
    {u"fEditStack", Stack, u"CVelumStackEdit"},
    {u"fSearch", Stack, u"CVelumSearchForm"},
    {u"fEditBackgrounds", Stack, u"CVelumBackgroundEdit"},
    {u"fEditCards", Stack, u"CVelumCardEdit"},
    {u"fEditControls", Stack, u"CVelumControlEdit"},
    {u"fEditSortKeys", Stack, u"CVelumSortKeyEdit1"},
    {u"fEditValues", Stack, u"CVelumValueEdit"},
    {u"fCloseStack", Stack, u""},
    {u"fEditBackground", CurCard, u"CVelumBackgroundEdit"},
    {u"fEditBackgroundControls", CurCard, u"CVelumControlEdit"},
    {u"fSelectCard", Stack, u"CVelumCardSelect"},
    {u"fNewCard", Stack, u"CVelumCardEdit"},
    {u"fDeleteCard", Stack, u""},
    {u"fEmptyStack", Stack, u""},
    {u"fEditCard", Stack, u"CVelumCardEdit"},
    {u"fPicture", Picture, u""},
    {u"fImportPicFile", Stack, u""},
    {u"fShowPicture", Picture, u""},
    {u"fEditField", Field, u"CVelumControlEdit"},
    {u"fOptions", Nothing, u"CVelumOptionEdit"},
    {u"fHelp", Nothing, u""},
    {u"fAbout", Nothing, u"CVelumWelcome"},
    {u"fClose", Nothing, u""},
};

constexpr TVelumCommand EToolbar[] = {
    {u"NewStack", Nothing, u"CVelumNewStackForm"},
    {u"OpenStack", Nothing, u""},
    {u"SaveStack", Stack, u""},
    {u"FirstCard", Stack, u""},
    {u"PrevCard", Stack, u""},
    {u"NextCard", Stack, u""},
    {u"LastCard", Stack, u""},
    {u"BackInHistory", Stack, u""},
    {u"ForwInHistory", Stack, u""},
    {u"EditStack", Stack, u"CVelumStackEdit"},
    {u"EditBackgrounds", Stack, u"CVelumBackgroundEdit"},
    {u"EditCards", Stack, u"CVelumCardEdit"},
    {u"EditControls", Stack, u"CVelumControlEdit"},
};

} // namespace

Ref<CVelumControl> CVelumCommandTable::FocusedControl() {
  const CVelumCardView* view = gStackView ? gStackView->CardView() : nullptr;
  return view ? view->FocusControl() : nullptr;
}

std::span<const TVelumCommand> CVelumCommandTable::Menus() {
  return EMenus;
}

std::span<const TVelumCommand> CVelumCommandTable::Toolbar() {
  return EToolbar;
}

bool CVelumCommandTable::IsMet(EVelumNeed aNeed) {
  if (aNeed == Nothing) return true;
  if (!gStack) return false;
  if (aNeed == Stack) return true;
  if (aNeed == CurCard) return gStackView && gStackView->CurCard();
  const Ref<CVelumControl> field = FocusedControl();
  return field && (aNeed == Field || field->ConType() == EConPicture);
}

bool CVelumCommandTable::IsBuilt(const TVelumCommand& aCommand) {
  return aCommand.iForm.isEmpty() || CVelumWinMan::HasForm(aCommand.iForm.toString());
}
