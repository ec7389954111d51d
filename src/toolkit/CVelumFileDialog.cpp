#include "toolkit/CVelumFileDialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

CVelumFileDialog::TVelumAnswer& Answer() {
  static CVelumFileDialog::TVelumAnswer answer;
  return answer;
}

QString AskFolder(const CVelumFileDialog& aSettings, const QString& aTitle, QWidget* aOwner) {
  if (Answer()) return Answer()(aSettings, false);
  return QFileDialog::getExistingDirectory(aOwner, aTitle, aSettings.InitDir());
}

QString AskFile(const CVelumFileDialog& aSettings, const QString& aTitle, QWidget* aOwner, bool aSave) {
  if (Answer()) return Answer()(aSettings, aSave);
  QFileDialog dialog(aOwner, aTitle, aSettings.InitDir());
  dialog.setAcceptMode(aSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(aSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog.setNameFilters(aSettings.NameFilters());
  // The suffix has to be known before the dialog asks about a file that exists.
  const auto follow = [&](const QString& aFilter) {
    dialog.setDefaultSuffix(aSettings.ExtensionFor(aFilter));
  };
  QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
  if (aSave) {
    follow(dialog.selectedNameFilter());
    dialog.selectFile(aSettings.ProposedName());
  }
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.selectedFiles().value(0);
}

} // namespace

CVelumFileDialog::CVelumFileDialog(QString aTitle, QString aDefaultExt, QString aFilter)
    : iTitle(std::move(aTitle)), iDefaultExt(std::move(aDefaultExt)), iFilter(std::move(aFilter)) {}

void CVelumFileDialog::SetAnswer(TVelumAnswer aAnswer) {
  Answer() = std::move(aAnswer);
}

bool CVelumFileDialog::ShowOpen(QWidget* aOwner) {
  return Take(AskFile(*this, iTitle, aOwner, false));
}

bool CVelumFileDialog::ShowSave(QWidget* aOwner) {
  return Take(AskFile(*this, iTitle, aOwner, true));
}

bool CVelumFileDialog::ShowFolder(QWidget* aOwner) {
  if (!Take(AskFolder(*this, iTitle, aOwner))) return false;
  iInitDir = iFileName;
  return true;
}

bool CVelumFileDialog::Take(const QString& aPath) {
  if (aPath.isEmpty()) return false;
  iFileName = aPath;
  iInitDir = QFileInfo(aPath).path();
  return true;
}

QStringList CVelumFileDialog::NameFilters() const {
  static const QRegularExpression brackets(u"\\s*\\(.*\\)\\s*$"_s);
  const QStringList items = iFilter.split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < items.size(); i += 2) {
    QString label = items[i];
    QString patterns = items[i + 1];
    filters.append(u"%1 (%2)"_s.arg(label.remove(brackets), patterns.replace(u';', u' ')));
  }
  return filters;
}

QString CVelumFileDialog::ExtensionFor(const QString& aNameFilter) const {
  static const QRegularExpression first(u"\\(\\*\\.(\\w+)[ )]"_s);
  const QRegularExpressionMatch match = first.match(aNameFilter);
  return match.hasMatch() ? match.captured(1) : iDefaultExt;
}
