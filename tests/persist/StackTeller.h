// Tells a stack in the shape of the JSON descriptions beside the test files.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

#include <QJsonObject>

namespace StackTeller {

// What the stack holds ("canonical" of a description).
[[nodiscard]] QJsonObject Tell(CVelumStack& aStack, const CVelumViewState& aView);
// Where the blobs stand ("layout").
[[nodiscard]] QJsonObject TellLayout(const CVelumBlobStore& aStore);
// The first place where aTold, which may leave members out, says something else than aExpected; empty when
// there is none.
[[nodiscard]] QString Difference(const QJsonValue& aExpected, const QJsonValue& aTold, const QString& aPath);

} // namespace StackTeller
