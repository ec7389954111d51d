// The facts that the command info prints.
#pragma once

#include "cli/CVelumCliStack.h"

#include <QJsonObject>

namespace CVelumStackFacts {

[[nodiscard]] QJsonObject Of(const TVelumOpenStack& aOpen);
// The same for people; without a line end at the end.
[[nodiscard]] QString AsText(const QJsonObject& aFacts);

} // namespace CVelumStackFacts
