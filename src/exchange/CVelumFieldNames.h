// Names of fields that are told apart by them.
#pragma once

#include <QStringList>

namespace CVelumImports {

// The names, in their order, of which equal ones get a number: of "a", "a" the second becomes "a 2", or what
// number is free. The second and further ones without any text become "Field n", with their place from 1.
[[nodiscard]] QStringList NumberEqualNames(const QStringList& aNames);

} // namespace CVelumImports
