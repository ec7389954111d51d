#include "cli/CVelumCommands.h"

const QList<const TVelumCommand*>& CVelumCommands::All() {
  static const QList<const TVelumCommand*> all{&Info(),       &Check(),         &Convert(),    &Search(),
                                               &Cards(),      &Compile(),       &RunMessage(), &Render(),
                                               &Wiki(),       &ImportPicture(), &ImportCsv(),  &ImportXml(),
                                               &ImportText(), &ExportCsv(),     &ExportXml()};
  return all;
}

const TVelumCommand* CVelumCommands::Find(const QString& aName) {
  for (const TVelumCommand* command : All()) {
    if (command->iName == aName) return command;
  }
  return nullptr;
}
