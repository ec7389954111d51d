#include "shell/frame/CVelumCommandTable.h"

#include "runtime/view/CVelumStackView.h"

#include <algorithm>

namespace {

using enum EVelumNeed;

constexpr TVelumCommand EMenus[] = {
    {u"fOpenStack", Nothing},
    {u"fOpenRecent", Nothing},
    {u"fSaveStack", Stack},
    {u"fSaveStackAs", Stack},
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
    {u"fCloseStack", Stack},
    {u"fUndo", Step},
    {u"fRedo", Step},
    {u"fEditBackground", CurCard, u"CVelumBackgroundEdit", EVelumShows::Background},
    {u"fEditBackgroundControls", CurCard, u"CVelumControlEdit", EVelumShows::Background},
    {u"fSelectCard", Stack, u"CVelumCardSelect", EVelumShows::CardChoice},
    {u"fNewCard", Stack, u"CVelumCardEdit", EVelumShows::NewCard},
    {u"fDeleteCard", Stack},
    {u"fEmptyStack", Stack},
    {u"fEditCard", Stack, u"CVelumCardEdit", EVelumShows::Card},
    {u"fPicture", Picture},
    {u"fImportPicFile", Stack},
    {u"fShowPicture", Picture},
    {u"fEditField", Field, u"CVelumControlEdit", EVelumShows::Field},
    {u"fOptions", Nothing, u"CVelumOptionEdit"},
    {u"fHelp", Nothing},
    {u"fAbout", Nothing, u"CVelumWelcome", EVelumShows::About},
    {u"fClose", Nothing},
};

constexpr TVelumCommand EToolbar[] = {
    {u"NewStack", Nothing},
    {u"OpenStack", Nothing},
    {u"SaveStack", Stack},
    {u"FirstCard", CardAbove},
    {u"PrevCard", CardAbove},
    {u"NextCard", CardBelow},
    {u"LastCard", CardBelow},
    {u"BackInHistory", CardBack},
    {u"ForwInHistory", CardForw},
    {u"EditStack", Stack},
    {u"EditBackgrounds", Stack},
    {u"EditCards", Stack},
    {u"EditControls", Stack},
    {u"Undo", Step},
    {u"Redo", Step},
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

bool CVelumCommandTable::IsToolbarKey(QStringView aKey) {
  return std::any_of(std::begin(EToolbar), std::end(EToolbar),
                     [aKey](const TVelumCommand& aCommand) { return aCommand.iAction == aKey; });
}

bool CVelumCommandTable::IsMet(EVelumNeed aNeed) {
  if (aNeed == Nothing || aNeed == Step) return true;
  if (!gStack) return false;
  const Ref<CVelumStackView> view = gStackView;
  switch (aNeed) {
  case Stack:
    return true;
  case CurCard:
    return view && view->CurCard();
  case CardAbove:
    return view && view->CanGoUp();
  case CardBelow:
    return view && view->CanGoDown();
  case CardBack:
    return view && view->CanGoBack();
  case CardForw:
    return view && view->CanGoForw();
  default: {
    const Ref<CVelumControl> field = FocusedControl();
    return field && (aNeed == Field || field->ConType() == EConPicture);
  }
  }
}
