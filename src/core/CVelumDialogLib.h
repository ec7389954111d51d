// The counted wait cursor.
#pragma once

namespace CVelumDialogLib {
void BeginWait();
// Safe to call in surplus: the count never goes below 0.
void EndWait();
[[nodiscard]] int WaitCount();
} // namespace CVelumDialogLib
