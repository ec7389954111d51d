// What a command of orvelles-cli is made of. Each command lives in a file of its own; CVelumCommands lists
// them.
#pragma once

#include "core/CVelumObject.h"

#include <QHash>
#include <QList>
#include <QStringList>

class CVelumTerminal;

// Exit statuses.
enum EExit : int { EExitDone = 0, EExitFailed = 1, EExitUsage = 2 };

struct TVelumOption {
  QString iName;      // without the two dashes
  QString iValueName; // empty: a switch
  QString iHelp;
  QString iShort = {}; // a letter that means the same, or empty
};

// What a command was called with. The operands are as many as the command names, but for those that may be
// missing.
struct TVelumArgs {
  QStringList iOperands;
  QHash<QString, QString> iOptions;   // given options by name; a switch has an empty text
  QHash<QString, QStringList> iLists; // the values of an option that was given, in their order
  bool iJson = false;

  [[nodiscard]] bool Has(const QString& aOption) const { return iOptions.contains(aOption); }
  [[nodiscard]] QString Value(const QString& aOption, const QString& aDefault = {}) const {
    return iOptions.value(aOption, aDefault);
  }
  // All values of an option that may be given more than once.
  [[nodiscard]] QStringList Values(const QString& aOption) const { return iLists.value(aOption); }
  // Empty where the operand is missing.
  [[nodiscard]] QString Operand(qsizetype aIndex) const { return iOperands.value(aIndex); }
};

struct TVelumCliCommand {
  QString iName;
  QStringList iOperands; // such as STACK, TEXT; the last ones in brackets when they may be missing: [OUT]
  QString iSummary;      // one line
  QString iDetails;      // what --help adds; lines of at most 78 characters
  QList<TVelumOption> iOptions;
  bool iWithJson; // whether --json has a meaning
  // Does the work; returns an exit status. Failures are exceptions, wrong usage is a TVelumUsage.
  int (*iRun)(const TVelumArgs& aArgs, CVelumTerminal& aTerminal);
};

// Thrown when a command is used wrongly: the text goes to standard error, the exit status is 2.
struct TVelumUsage {
  QString iText;
};
