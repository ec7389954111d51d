// Who follows an import: hears its messages, sees how far it is, and can cancel it.
#pragma once

#include "core/CVelumMsg.h"

class CVelumImportWatch {
public:
  // What Progress counts up to.
  static constexpr int EAll = 1000;

  virtual ~CVelumImportWatch() = default;

  // A message of class Exclamation, whose only parameter is aP0. Some come once for each line at fault, so
  // the one who shows them should offer to stay silent. With EMsgTooManyItems aP0 tells the place of the
  // first item that is left out, and stands behind the text.
  virtual void Message(qint32 aMsg, const QString& aP0);
  // A quoted cell that begins in this line (from 1) is never closed: it and what follows is left out.
  virtual void Unclosed(qint32 aLineNum) { static_cast<void>(aLineNum); }
  // aDone of EAll is done, in rising order. False cancels the import, which then changes nothing.
  [[nodiscard]] virtual bool Progress(int aDone) {
    static_cast<void>(aDone);
    return true;
  }
};
