#include "shell/dialogs/CVelumOptions.h"

#include "core/CVelumLib.h"
#include "toolkit/CVelumReg.h"

#include <QFileInfo>
#include <variant>

TVelumOptions gOptions;
std::array<QString, 8> gFileHistory;

namespace {

const QString EOptions = u"Options"_s;
constexpr int ENumHistory = 7;

struct TOption {
  QString iName;
  std::variant<QString TVelumOptions::*, bool TVelumOptions::*> iMember;
};

// All settings but the history, in the order in which they are read and written. The defaults are those of
// the record.
const std::array<TOption, 17>& Table() {
  using T = TVelumOptions;
  static const std::array<TOption, 17> table{{
      {u"AutoLoadName"_s, &T::iAutoLoadName},
      {u"StackFolder"_s, &T::iStackFolder},
      {u"ShowWelcome"_s, &T::iShowWelcome},
      {u"LoadDialogInitDir"_s, &T::iLoadDialogInitDir},
      {u"ImportCsvDialogInitDir"_s, &T::iImportCsvDialogInitDir},
      {u"ImportXmlDialogInitDir"_s, &T::iImportXmlDialogInitDir},
      {u"ImportHandBaseDialogInitDir"_s, &T::iImportHandBaseDialogInitDir},
      {u"ImportOrvelleDialogInitDir"_s, &T::iImportOrvelleDialogInitDir},
      {u"ImportTextDialogInitDir"_s, &T::iImportTextDialogInitDir},
      {u"ImportPicDialogInitDir"_s, &T::iImportPicDialogInitDir},
      {u"ExportCsvDialogInitDir"_s, &T::iExportCsvDialogInitDir},
      {u"CsvExportDelimiter"_s, &T::iCsvExportDelimiter},
      {u"ExportXmlDialogInitDir"_s, &T::iExportXmlDialogInitDir},
      {u"CsvDetectTypes"_s, &T::iCsvDetectTypes},
      {u"CsvGuessKey"_s, &T::iCsvGuessKey},
      {u"CsvTryCardName"_s, &T::iCsvTryCardName},
      {u"SuppressFontInfo"_s, &T::iSuppressFontInfo},
  }};
  return table;
}

QString HistoryName(int aIndex) {
  return u"FileHistory"_s + QString::number(aIndex);
}

QString ReadText(const QString& aName) {
  QString val;
  bool found = false;
  CVelumReg::GetVal(EOptions, aName, val, found, false);
  return val;
}

void Read(const TOption& aOption, TVelumOptions& aOptions) {
  if (const auto* text = std::get_if<QString TVelumOptions::*>(&aOption.iMember)) {
    aOptions.*(*text) = ReadText(aOption.iName);
  } else {
    bool& val = aOptions.*std::get<bool TVelumOptions::*>(aOption.iMember);
    CVelumReg::GetBoolVal(aOption.iName, val, val);
  }
}

QString TextOf(const TOption& aOption) {
  if (const auto* text = std::get_if<QString TVelumOptions::*>(&aOption.iMember)) return gOptions.*(*text);
  return CVelumReg::BoolText(gOptions.*std::get<bool TVelumOptions::*>(aOption.iMember));
}

} // namespace

namespace CVelumOptions {

void LoadOptions() {
  TVelumOptions options;
  for (const TOption& option : Table()) Read(option, options);
  if (options.iStackFolder.isEmpty()) options.iStackFolder = CVelumLib::GetDocDir();
  if (options.iLoadDialogInitDir.isEmpty()) options.iLoadDialogInitDir = options.iStackFolder;
  gOptions = options;
  gFileHistory.fill({});
  for (int i = 0; i < ENumHistory; ++i) gFileHistory[static_cast<size_t>(i)] = ReadText(HistoryName(i));
}

void SaveOptions() {
  QList<QPair<QString, QString>> vals;
  for (const TOption& option : Table()) vals.append({option.iName, TextOf(option)});
  for (int i = 0; i < ENumHistory; ++i) vals.append({HistoryName(i), gFileHistory[static_cast<size_t>(i)]});
  CVelumReg::PutVals(EOptions, vals, false);
}

QString StartFolder(const QString& aDir) {
  for (const QString& dir : {aDir, gOptions.iStackFolder})
    if (!dir.isEmpty() && QFileInfo(dir).isDir()) return dir;
  return CVelumLib::GetDocDir();
}

void AddToFileHistory(const QString& aName) {
  QStringList names(gFileHistory.begin(), gFileHistory.begin() + ENumHistory);
  names.removeAll(aName);
  names.prepend(aName);
  for (int i = 0; i < ENumHistory; ++i) gFileHistory[static_cast<size_t>(i)] = names.value(i);
}

} // namespace CVelumOptions
