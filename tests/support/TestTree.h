// Where the project's own files lie for the tests. The paths stand in one object only, so that a checkout
// elsewhere compiles the same tests from the compiler's cache.
#pragma once

#include <QString>

namespace TestTree {

// tests/data, and the root of the source tree, without a slash at the end.
QString Data();
QString Source();

} // namespace TestTree
