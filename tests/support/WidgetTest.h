// A test with widgets, a folder of its own and a presenter that answers as told.
#pragma once

#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"
#include "support/WidgetApp.h"

#include <gtest/gtest.h>

class WidgetTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    WidgetApp();
    QApplication::setQuitOnLastWindowClosed(false);
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
};
