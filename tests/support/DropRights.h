// A test, or a part of one, as a user without special rights.
#pragma once

#include "support/TempFolder.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

// Whoever runs the tests as root is nobody while this exists; anybody else stays who he is.
class DropRights {
public:
  DropRights() : iRoot(::geteuid() == 0) { iWorks = !iRoot || ::seteuid(65534) == 0; }
  ~DropRights() {
    if (iRoot && iWorks && ::seteuid(0) != 0) std::abort();
  }
  DropRights(const DropRights&) = delete;
  DropRights& operator=(const DropRights&) = delete;
  [[nodiscard]] bool Works() const { return iWorks; }

  // Lets everybody into a folder, or at a file.
  static void SetMode(const QString& aPath, unsigned aMode) {
    static_cast<void>(::chmod(QFile::encodeName(aPath).constData(), aMode));
  }

private:
  bool iRoot;
  bool iWorks = false;
};
