// make-help CONTENTS FOLDER: writes the pages and the project of the help file into FOLDER.
#include "HelpBook.h"
#include "HelpWriter.h"

#include <iostream>

int main(int aArgc, char** aArgv) {
  if (aArgc != 3) {
    std::cerr << "Usage: make-help CONTENTS FOLDER\n";
    return 2;
  }
  HelpBook book;
  if (!book.Read(QString::fromLocal8Bit(aArgv[1]))) {
    std::cerr << "make-help: " << book.Error().toStdString() << '\n';
    return 1;
  }
  if (HelpWriter(book, QString::fromLocal8Bit(aArgv[2])).Write()) return 0;
  std::cerr << "make-help: cannot write to " << aArgv[2] << '\n';
  return 1;
}
