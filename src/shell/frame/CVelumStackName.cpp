#include "shell/frame/CVelumStackName.h"

#include "persist/CVelumAccess.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

// Long enough for a name that says something, and short enough for any file system.
constexpr qsizetype EMaxName = 60;
// The name that every stack made by hand has.
const QString EPlainName = u"Orvelle"_s;

QString Tr(const char* aText) {
  return QCoreApplication::translate("CVelumStackName", aText);
}

QString FirstLine(const QString& aText) {
  const QString text = aText.trimmed();
  return text.left(text.indexOf(u'\n')).simplified().left(EMaxName).trimmed();
}

} // namespace

QString CVelumStackName::Title(const CVelumStack& aStack) {
  const QString file = QFileInfo(aStack.Filename()).fileName();
  if (!file.isEmpty()) return file;
  if (const QString descr = FirstLine(aStack.Descr()); !descr.isEmpty()) return descr;
  // An imported stack has the path of what was imported for its name.
  const QString name = FirstLine(QFileInfo(aStack.Name()).completeBaseName());
  return name.isEmpty() || name == EPlainName ? Tr("New stack") : name;
}

QString CVelumStackName::FileName(const CVelumStack& aStack) {
  if (!aStack.Filename().isEmpty()) return Title(aStack);
  QString name = Title(aStack).replace(u'/', u'-').remove(QChar::Null);
  while (name.startsWith(u'.')) name.remove(0, 1); // such files are hidden
  return (name.isEmpty() ? Tr("New stack") : name) + u".Orvelle"_s;
}

QString CVelumStackName::Caption(const CVelumStack& aStack) {
  if (aStack.Filename().isEmpty()) return Title(aStack);
  const bool readOnly = !CVelumAccess::WhyReadOnly(aStack.Filename()).isEmpty();
  return readOnly ? Tr("%1 (read only)").arg(aStack.Filename()) : aStack.Filename();
}
