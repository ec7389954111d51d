// Which commands of the main window can be used when.
#pragma once

#include "model/CVelumControl.h"

#include <span>

// What a command needs.
enum class EVelumNeed { Nothing, Stack, CurCard, Field, Picture };

struct TVelumCommand {
  QStringView iAction; // name of the menu item
  EVelumNeed iNeed;
  QStringView iForm; // window that the command works with, empty for none; disabled while there is none
};

namespace CVelumCommandTable {

// The items of the menus but those of "fCmd" and the recent files, in menu order.
[[nodiscard]] std::span<const TVelumCommand> Menus();
// The toolbar buttons in order, by key.
[[nodiscard]] std::span<const TVelumCommand> Toolbar();
// The field that has the focus in the card window, or nothing.
[[nodiscard]] Ref<CVelumControl> FocusedControl();
// Whether what the command needs is there.
[[nodiscard]] bool IsMet(EVelumNeed aNeed);
// Whether the window that the command works with exists in this program.
[[nodiscard]] bool IsBuilt(const TVelumCommand& aCommand);

} // namespace CVelumCommandTable
