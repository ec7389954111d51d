#include "shell/dialogs/CVelumCsvReport.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumSeams.h"
#include "exchange/CVelumCsvExact.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCsvReport.h"

#include <QHeaderView>

namespace {

const QString EForm = u"CVelumCsvReport"_s;

} // namespace

CVelumCsvReport::CVelumCsvReport() : CVelumDialogForm(EForm, true), iUi(new Ui::CVelumCsvReport) {
  iUi->setupUi(this);
  connect(iUi->fShowCells, &QPushButton::clicked, this, [this] {
    iUi->fCells->setVisible(true);
    iUi->fShowCells->setEnabled(false);
    iUi->fCells->setFocus();
  });
  connect(iUi->fKeepSorted, &QPushButton::clicked, this, [this] {
    CVelumDialogLib::WhenNoScriptRuns(
        [this] { CVelumGuard::Run(u"CVelumCsvReport.fKeepSorted"_s, [this] { KeepSorted(); }); });
  });
  connect(iUi->fCloseBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumCsvReport::~CVelumCsvReport() = default;

void CVelumCsvReport::Load() {
  CVelumDialogLib::StayAboveFrame(*this);
  CVelumDialogForm::Load();
  iUi->fCloseBut->setFocus();
}

void CVelumCsvReport::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject*) {
  if (aKind == EChangeStackCloses) return CVelumWinMan::UnloadForm(*this);
  if (aKind != EChangeBackgroundGoes || aObj1 != iBackground.Get()) return;
  iBackground = nullptr;
  iUi->fKeepSorted->setVisible(false);
}

void CVelumCsvReport::Show(const TCsvReport& aReport, const Ref<CVelumControlSet>& aBackground,
                           qint32 aSortField) {
  auto* form = dynamic_cast<CVelumCsvReport*>(CVelumWinMan::NameToForm(EForm));
  if (!form) return;
  CVelumWinMan::LoadForm(*form);
  form->SetReport(aReport, aBackground, aSortField);
  CVelumWinMan::ShowDialog(*form);
}

void CVelumCsvReport::SetReport(const TCsvReport& aReport, const Ref<CVelumControlSet>& aBackground,
                                qint32 aSortField) {
  iBackground = aBackground;
  iSortField = aSortField;
  iUi->fReport->setPlainText(CVelumCsvReports::Lines(aReport).join(u'\n'));
  FillCells(aReport);
  iUi->fCells->setVisible(false);
  iUi->fShowCells->setVisible(!aReport.iCells.empty());
  iUi->fShowCells->setEnabled(true);
  iUi->fKeepSorted->setVisible(iSortField != ENoInt);
  iUi->fKeepSorted->setEnabled(true);
}

void CVelumCsvReport::FillCells(const TCsvReport& aReport) {
  QTableWidget& box = *iUi->fCells;
  box.clear();
  box.setColumnCount(4);
  box.setRowCount(static_cast<int>(aReport.iCells.size()));
  box.setHorizontalHeaderLabels({tr("Line"), tr("Column"), tr("In the file"), tr("Now")});
  box.verticalHeader()->setVisible(false);
  for (int row = 0; row < box.rowCount(); ++row) {
    const TCsvReportCell& cell = aReport.iCells[static_cast<size_t>(row)];
    const QString column = cell.iColumn < aReport.iColumns.size() ? aReport.iColumns.at(cell.iColumn).iName
                                                                  : QString::number(cell.iColumn + 1);
    box.setItem(row, 0, new QTableWidgetItem(QString::number(cell.iLine)));
    box.setItem(row, 1, new QTableWidgetItem(column));
    box.setItem(row, 2, new QTableWidgetItem(cell.iText));
    box.setItem(row, 3, new QTableWidgetItem(cell.iShown));
  }
  box.horizontalHeader()->setStretchLastSection(true);
}

void CVelumCsvReport::KeepSorted() {
  if (!iBackground || !gStack || iBackground->Stack() != gStack.Get()) return;
  const CVelumError::CCommand command(tr("Keep the cards of %1 sorted").arg(iBackground->Name()));
  CVelumCsvExact::KeepSorted(*gStack, iBackground, iSortField);
  iUi->fKeepSorted->setEnabled(false);
  if (gStackView) gStackView->RefreshViews(false, true);
  CVelumSeams::ChangeNotify(EChangeStructure);
}
