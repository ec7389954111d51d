// Which commands of the main window can be used when.
#pragma once

#include "model/fields/CVelumControl.h"

#include <span>

// What a command needs.
enum class EVelumNeed {
  Nothing,
  Stack,
  Step, // something to take back or to make again: the main window looks itself
  CurCard,
  Field,
  Picture,
  CardAbove, // a card before the one on show
  CardBelow,
  CardBack, // another card visited before
  CardForw
};

// What the window that a command opens is told to show.
enum class EVelumShows { Nothing, Background, Card, Field, NewCard, CardChoice, About };

struct TVelumCommand {
  QStringView iAction; // name of the menu item
  EVelumNeed iNeed;
  QStringView iForm = u""; // the window that the command opens, empty for none
  EVelumShows iShows = EVelumShows::Nothing;
};

namespace CVelumCommandTable {

// The items of the menus but those of "fCmd" and the recent files, in menu order.
[[nodiscard]] std::span<const TVelumCommand> Menus();
// The toolbar buttons in order, by key. But for those that leaf, a button does what the menu item with an "f"
// before the key does.
[[nodiscard]] std::span<const TVelumCommand> Toolbar();
// Whether a button has that key; exact.
[[nodiscard]] bool IsToolbarKey(QStringView aKey);
// The field that has the focus in the card window, or nothing.
[[nodiscard]] Ref<CVelumControl> FocusedControl();
// Whether what the command needs is there.
[[nodiscard]] bool IsMet(EVelumNeed aNeed);

} // namespace CVelumCommandTable
