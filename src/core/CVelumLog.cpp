#include "core/CVelumLog.h"

Q_LOGGING_CATEGORY(gLogCore, "orvelles.core", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogModel, "orvelles.model", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogPersist, "orvelles.persist", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogScript, "orvelles.script", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogExchange, "orvelles.exchange", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogToolkit, "orvelles.toolkit", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogRuntime, "orvelles.runtime", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogShell, "orvelles.shell", QtWarningMsg)
Q_LOGGING_CATEGORY(gLogCli, "orvelles.cli", QtWarningMsg)
