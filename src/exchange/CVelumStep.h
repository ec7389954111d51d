// Progress of long work.
#pragma once

#include <QtGlobal>
#include <functional>

// Rows of a table from one report of the progress to the next.
inline constexpr qint32 ERowsAStep = 2048;

// Told now and then how far the work is (aTotal 0: its end is not known). False gives the work up. An empty
// one is never asked.
using TVelumStep = std::function<bool(qint64 aDone, qint64 aTotal)>;
