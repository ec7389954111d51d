// A test with a QApplication on the offscreen platform, and settings in a folder of its own.
#pragma once

#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <QApplication>
#include <gtest/gtest.h>

class WidgetTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    if (qApp) return;
    // Tests never touch the desktop of whoever runs them.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "tests";
    static char* argv[] = {name, nullptr};
    // Lives to the end of the process: widgets in static storage may go later.
    new QApplication(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
};
