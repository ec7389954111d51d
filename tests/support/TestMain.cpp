// The main of every test program. Tests see the locale en_US unless they set another.
#include "core/text/CVelumLocale.h"

#include <QString>
#include <gtest/gtest.h>

int main(int aArgc, char** aArgv) {
  testing::InitGoogleTest(&aArgc, aArgv);
  CVelumLocale::Init(QStringLiteral("en_US"));
  return RUN_ALL_TESTS();
}
