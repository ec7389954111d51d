// The pictures of the program.
#pragma once

#include <QIcon>

namespace CVelumIcons {

// The picture of a key of the main window's image list: a toolbar key ("NewStack" to "EditControls"),
// "ShowCardList", "SelectCard", or a message class ("Critical", "Exclamation", "Question", "Info"). A null
// icon for any other key.
[[nodiscard]] QIcon Icon(const QString& aKey);
// The picture of the program itself.
[[nodiscard]] QIcon AppIcon();

} // namespace CVelumIcons
