// The one QApplication of a test program with widgets, on the offscreen platform.
#pragma once

#include <QApplication>
#include <QFont>
#include <QStyleFactory>

// Made on first use and kept to the end of the process. The same style and font on every machine.
inline QApplication& WidgetApp() {
  static QApplication* app = [] {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "tests";
    static char* argv[] = {name, nullptr};
    auto* made = new QApplication(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    return made;
  }();
  return *app;
}
