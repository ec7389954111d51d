// The windows of this room, as the window manager makes them.
#pragma once

namespace CVelumShellForms {

// Tells the window manager how each is made; the main window and those of the open stack come from elsewhere.
// Called once at start, after InitWinMan.
void Register();

} // namespace CVelumShellForms
