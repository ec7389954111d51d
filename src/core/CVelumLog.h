// What the rooms do, for those who look for a fault. Each room has a category, which is silent unless the
// environment switches it on: QT_LOGGING_RULES="orvelles.persist.debug=true", or "orvelles.*=true" for all.
// No text that a user reads comes from here, and nothing may depend on it.
#pragma once

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(gLogCore)
Q_DECLARE_LOGGING_CATEGORY(gLogModel)
Q_DECLARE_LOGGING_CATEGORY(gLogPersist)
Q_DECLARE_LOGGING_CATEGORY(gLogScript)
Q_DECLARE_LOGGING_CATEGORY(gLogExchange)
Q_DECLARE_LOGGING_CATEGORY(gLogToolkit)
Q_DECLARE_LOGGING_CATEGORY(gLogRuntime)
Q_DECLARE_LOGGING_CATEGORY(gLogShell)
Q_DECLARE_LOGGING_CATEGORY(gLogCli)
