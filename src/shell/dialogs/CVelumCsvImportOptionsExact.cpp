// What the window of the CSV settings does for the exact way, and about the target.
#include "core/CVelumMsg.h"
#include "exchange/CVelumCsvText.h"
#include "shell/dialogs/CVelumCsvImportOptions.h"
#include "shell/dialogs/CVelumCsvPreviewBox.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCsvImportOptions.h"

#include <QHeaderView>
#include <QMenu>
#include <QScopedValueRollback>

namespace {

// Entries in front of the columns, and of the fields.
constexpr int EFirstNames = 0;
constexpr int ENumberNames = 1;
constexpr int ENameColumns = 2;
constexpr int EFieldByName = 0;
constexpr int ENoField = 1;

QString EncodingText(ECsvEncoding aEncoding) {
  switch (aEncoding) {
  case ECsvEncoding::Utf8:
    return QStringLiteral("UTF-8");
  case ECsvEncoding::Utf16Le:
  case ECsvEncoding::Utf16Be:
    return QStringLiteral("UTF-16");
  case ECsvEncoding::Windows1252:
    return QStringLiteral("Windows");
  }
  return {};
}

} // namespace

std::optional<ECsvEncoding> CVelumCsvImportOptions::Encoding() const {
  if (iUi->fLatin1->isChecked()) return ECsvEncoding::Windows1252;
  if (iUi->fUtf8->isChecked()) return ECsvEncoding::Utf8;
  if (iUi->fUtf16->isChecked()) return ECsvEncoding::Utf16Le;
  return {};
}

TCsvReading CVelumCsvImportOptions::Reading() const {
  return {Delim(), iUi->fHeaderLine->isChecked(), iUi->fSkipLines->value()};
}

TCsvChoice CVelumCsvImportOptions::Choice() const {
  TCsvChoice choice;
  choice.iDetectTypes = iUi->fDetectTypes->isChecked();
  choice.iProposeKey = iUi->fGuessKey->isChecked();
  choice.iDrop = iUi->fDrop->isChecked();
  choice.iAdd = iUi->fAddCards->isChecked();
  choice.iTypes = iTypes;
  choice.iFields = iFields;
  const int naming = iUi->fNaming->currentIndex();
  if (naming == ENumberNames) choice.iNaming = ECsvNaming::Numbers;
  if (naming >= ENameColumns) {
    choice.iNaming = ECsvNaming::Column;
    choice.iNameColumn = naming - ENameColumns;
  }
  return choice;
}

Ref<CVelumControlSet> CVelumCsvImportOptions::Target() const {
  return iImport.iInto && iImport.iInto() ? iImport.iBackground() : nullptr;
}

void CVelumCsvImportOptions::ShowTarget() {
  const Ref<CVelumControlSet> target = Target();
  const bool exact = IsExact();
  QString text;
  if (target) {
    const QString cards = CVelumReport::Cards(target->NumCards());
    text = exact && iUi->fAddCards->isChecked() ? tr("Adds to the %1 of “%2”.").arg(cards, target->Name())
                                                : tr("Replaces the %1 of “%2”.").arg(cards, target->Name());
  }
  iUi->fTarget->setText(text);
  iUi->fTarget->setVisible(static_cast<bool>(target));
  for (QWidget* choice : std::initializer_list<QWidget*>{iUi->fReplace, iUi->fAddCards,
                                                         iUi->fColumnFieldLabel, iUi->fColumnField})
    choice->setVisible(exact && static_cast<bool>(target));
  for (QWidget* only : std::initializer_list<QWidget*>{iUi->fAutoCoding, iUi->fUtf16, iUi->fBar, iUi->fOther,
                                                       iUi->fOtherDelim, iUi->fSkipLines, iUi->fSkipLabel})
    only->setEnabled(exact);
  iUi->fNaming->setVisible(exact);
  iUi->fNamingLabel->setVisible(exact);
  iUi->fTryCardName->setVisible(!exact);
}

void CVelumCsvImportOptions::ShowExact() {
  if (!IsExact() || !iWork.IsOpen()) return;
  iPreviewStale = false;
  ShowRecords();
  ShowNaming();
  ShowNote();
  ShowFaults(iWork.IsKnown() ? iWork.Run().Faults() : CVelumCsvFaults());
  ShowColumnType();
  ShowColumnField();
}

QString CVelumCsvImportOptions::NameOf(int aColumn) const {
  if (iWork.IsKnown()) return iWork.Run().Plan()[static_cast<size_t>(aColumn)].iName;
  const QString name = iWork.Sample().iHeader.value(aColumn);
  return name.isEmpty() ? u"Field "_s + QString::number(aColumn + 1) : name;
}

// Name and type, and how many cells of the whole file do not come back from it.
QString CVelumCsvImportOptions::TitleOf(int aColumn) const {
  QString title = NameOf(aColumn) + u'\n';
  const bool known = iWork.IsKnown();
  if (known && Target()) {
    const CVelumControl* field =
        Target()->FindControl(iWork.Run().Plan()[static_cast<size_t>(aColumn)].iField);
    if (!field) return title + tr("(no field)");
    if (field->Name() != NameOf(aColumn)) title += u"→ "_s + field->Name() + u": "_s;
  }
  title += CVelumCsvPreviewBox::TypeNames().value(iWork.FormOf(aColumn).iType, tr("Text"));
  if (iWork.FormOf(aColumn).iType == EConText && iWork.Column(aColumn).IsAmbiguous()) title += u" ?"_s;
  if (!known) return title;
  const CVelumCsvCheck& check = iWork.Run().Check();
  return title + CVelumCsvPreviewBox::Counts(check.NumChanged(aColumn), check.NumRefused(aColumn));
}

ECsvFit CVelumCsvImportOptions::FitOf(int aRow, int aColumn) const {
  const QString& text = iWork.Sample().iRecords.at(aRow).at(aColumn);
  if (text.isEmpty()) return ECsvFit::Same;
  if (iWork.IsKnown() && Target() && iWork.Run().Plan()[static_cast<size_t>(aColumn)].iField == ENoInt)
    return ECsvFit::Refused;
  std::string utf8;
  CVelumCsvText::AppendUtf8(text, utf8);
  TVelumValue value;
  return CVelumCsvForms::Read(utf8, iWork.FormOf(aColumn), value);
}

void CVelumCsvImportOptions::ShowRecords() {
  const QScopedValueRollback showing(iShowing, true);
  // Without a header line the widest record of the whole file counts.
  const auto columns = iWork.IsKnown() ? iWork.Run().Plan().size() : iWork.Sample().iColumns.size();
  QStringList titles;
  for (int i = 0; i < static_cast<int>(columns); ++i) titles.append(TitleOf(i));
  CVelumCsvPreviewBox::Fill(*iUi->fPreviewBox, titles, iWork.Sample().iRecords,
                            [this](int aRow, int aColumn) { return FitOf(aRow, aColumn); });
  for (int i = 0; i < static_cast<int>(columns); ++i)
    if (iWork.Column(i).IsAmbiguous())
      iUi->fPreviewBox->horizontalHeaderItem(i)->setToolTip(
          tr("The separator could part thousands (Integer) or decimals (Float)."));
}

void CVelumCsvImportOptions::ShowNote() {
  if (!IsExact()) return;
  QString note;
  if (!iWork.Failure().isEmpty())
    note = iWork.Failure();
  else if (!iWork.IsKnown())
    note = tr("Types by the first records; looking through the file… %1 %").arg(iWork.Percent());
  else
    note = tr("%1 in the file").arg(CVelumReport::Cards(iWork.Run().Scan().NumRecords()));
  iUi->fPreviewNote->setText(note);
  iUi->fAutoCoding->setText(tr("As the &file has it: %1").arg(EncodingText(iWork.Encoding())));
  ShowUsable();
}

void CVelumCsvImportOptions::ShowNaming() {
  const QScopedValueRollback showing(iShowing, true);
  const int before = qMax(iUi->fNaming->currentIndex(), 0);
  QStringList entries{tr("the first column, if suitable"), tr("numbers")};
  for (int i = 0; i < iUi->fPreviewBox->columnCount(); ++i) entries.append(NameOf(i));
  iUi->fNaming->clear();
  iUi->fNaming->addItems(entries);
  iUi->fNaming->setCurrentIndex(before < entries.size() ? before : EFirstNames);
}

void CVelumCsvImportOptions::ShowColumnField() {
  const Ref<CVelumControlSet> target = Target();
  const int column = iUi->fPreviewBox->currentColumn();
  if (!target || !IsExact()) return;
  const QScopedValueRollback showing(iShowing, true);
  QComboBox& box = *iUi->fColumnField;
  box.clear();
  box.addItem(tr("Of the same name"));
  box.addItem(tr("None"), ENoInt);
  for (qint32 i = 0; i < target->NumControls(); ++i)
    if (const CVelumControl* field = target->ControlAt(i); field && CVelumCsvPlans::IsUsable(*field))
      box.addItem(field->Name(), field->Id());
  box.setEnabled(column >= 0);
  const int index = iFields.contains(column) ? box.findData(iFields.value(column)) : EFieldByName;
  box.setCurrentIndex(qMax(index, EFieldByName));
}

void CVelumCsvImportOptions::TakeColumnField() {
  const int column = iUi->fPreviewBox->currentColumn();
  if (iShowing || column < 0) return;
  const int index = iUi->fColumnField->currentIndex();
  if (index >= ENoField)
    iFields.insert(column, iUi->fColumnField->currentData().toInt());
  else
    iFields.remove(column);
  TakeChoice();
}

// An entry of the types; for a column whose separator could mean either, with what becomes of its first cell.
QString CVelumCsvImportOptions::TypeText(int aColumn, int aEntry) const {
  const QString name = iUi->fColumnType->itemText(aEntry);
  const qint32 type = aEntry - 1;
  const bool number = type == EConInteger || type == EConReal;
  if (!IsExact() || !number || !iWork.Column(aColumn).IsAmbiguous()) return name;
  for (const QStringList& record : iWork.Sample().iRecords) {
    TVelumValue value;
    std::string utf8;
    CVelumCsvText::AppendUtf8(record.value(aColumn), utf8);
    if (!utf8.empty() &&
        CVelumCsvForms::Read(utf8, iWork.Column(aColumn).FormFor(type), value) != ECsvFit::Refused)
      return tr("%1: “%2” is %3").arg(name, record.at(aColumn), CVelumCsvForms::PlainText(value));
  }
  return name;
}

// A click on the title of a column offers its types.
void CVelumCsvImportOptions::ChooseTypeAt(int aColumn) {
  if (iUi->fPreviewBox->rowCount() > 0) iUi->fPreviewBox->setCurrentCell(0, aColumn);
  if (!iUi->fColumnType->isEnabled()) return;
  iTypeMenu->clear();
  for (int i = 0; i < iUi->fColumnType->count(); ++i)
    iTypeMenu->addAction(TypeText(aColumn, i), this, [this, i] { iUi->fColumnType->setCurrentIndex(i); });
  const QHeaderView& header = *iUi->fPreviewBox->horizontalHeader();
  iTypeMenu->popup(header.mapToGlobal(QPoint(header.sectionViewportPosition(aColumn), header.height())));
}

void CVelumCsvImportOptions::ShowFaults(const CVelumCsvFaults& aFaults) {
  iUi->fFaults->setPlainText(CVelumCsvReports::FaultLines(aFaults).join(u'\n'));
  iUi->fFaults->setVisible(!aFaults.IsEmpty());
  iUi->fDrop->setVisible(!aFaults.IsEmpty());
  ShowUsable();
}

void CVelumCsvImportOptions::ShowUsable() {
  const bool known = !IsExact() || iWork.IsKnown();
  const bool stopped = !iUi->fDrop->isHidden() && !iUi->fDrop->isChecked();
  iUi->fImportBut->setEnabled(known && !stopped);
}
