#include "cli/CVelumCommands.h"

const QList<const TVelumCliCommand*>& CVelumCommands::All() {
  static const QList<const TVelumCliCommand*> all{
      &Info(),      &Check(),      &Convert(),    &Search(),    &Cards(),
      &Compile(),   &RunMessage(), &Render(),     &Wiki(),      &ImportPicture(),
      &ImportCsv(), &ImportXml(),  &ImportText(), &ExportCsv(), &ExportXml()};
  return all;
}

const TVelumCliCommand* CVelumCommands::Find(const QString& aName) {
  for (const TVelumCliCommand* command : All()) {
    if (command->iName == aName) return command;
  }
  return nullptr;
}
