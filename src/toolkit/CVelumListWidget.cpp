#include "toolkit/CVelumListWidget.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumObject.h"
#include "toolkit/CVelumBaseControl.h"
#include "toolkit/CVelumListModel.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <algorithm>

namespace {

constexpr int ERowPadding = 4;
// From this many lines on, sorting takes its time.
constexpr int EManyLines = 100000;

// A line is selected as a whole, so that no cell has a frame of its own.
class CLineDelegate final : public QStyledItemDelegate {
public:
  using QStyledItemDelegate::QStyledItemDelegate;

protected:
  void initStyleOption(QStyleOptionViewItem* aOption, const QModelIndex& aIndex) const override {
    QStyledItemDelegate::initStyleOption(aOption, aIndex);
    aOption->state &= ~QStyle::State_HasFocus;
  }
};

} // namespace

CVelumListWidget::CVelumListWidget(QWidget* aParent)
    : QTableView(aParent), iModel(new CVelumListModel(this)) {
  setModel(iModel);
  setItemDelegate(new CLineDelegate(this));
  setShowGrid(false);
  setWordWrap(false);
  setTabKeyNavigation(false);
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  QHeaderView* titles = horizontalHeader();
  titles->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  titles->setHighlightSections(false);
  titles->setSectionsClickable(true);
  titles->setMinimumSectionSize(1);
  titles->hide();
  SetRowHeight();
  connect(titles, &QHeaderView::sectionClicked, this, &CVelumListWidget::TitleClick);
  connect(this, &QAbstractItemView::clicked, this, [this] { Q_EMIT ItemClick(); });
  connect(this, &QAbstractItemView::doubleClicked, this, [this] { Q_EMIT ItemDblClick(); });
}

void CVelumListWidget::SetSource(const CVelumLineSource* aSource) {
  iSource = aSource;
  iModel->SetSource(aSource);
}

void CVelumListWidget::Reload() {
  // To sort very many lines anew takes too long for every change of them.
  if (iSource && iSource->NumLines() >= EManyLines && DisplaySorted()) SortDisplay(-1, Qt::AscendingOrder);
  iModel->Reload();
}

void CVelumListWidget::LineChanged(int aLine) {
  iModel->LineChanged(aLine);
}

void CVelumListWidget::LinesAdded(int aFrom) {
  iModel->LinesAdded(aFrom);
}

void CVelumListWidget::DefineColumns(const QStringList& aTitles, const QList<float>& aWidths) {
  if (aTitles == iTitles && aWidths == iWidths) return;
  if (aTitles != iTitles) {
    if (iSortColumn >= 0) SortDisplay(-1, Qt::AscendingOrder);
    iModel->SetTitles(aTitles);
  }
  iTitles = aTitles;
  iWidths = aWidths;
  for (int i = 0; i < iTitles.size(); ++i)
    setColumnWidth(i, std::max(1, CVelumTwips::ToPixel(iWidths.value(i))));
  const auto isEmpty = [](const QString& aTitle) { return aTitle.isEmpty(); };
  horizontalHeader()->setVisible(!std::all_of(iTitles.begin(), iTitles.end(), isEmpty));
  SetBar();
}

float CVelumListWidget::UsableWidth() const {
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
  return CVelumTwips::FromPixel(std::max(0, width() - 2 * frameWidth() - bar));
}

void CVelumListWidget::SetMultiSelect(bool aOn) {
  setSelectionMode(aOn ? ExtendedSelection : SingleSelection);
}

int CVelumListWidget::SelLine() const {
  const QItemSelectionModel* selection = selectionModel();
  const QModelIndex current = currentIndex();
  if (current.isValid() && selection->isRowSelected(current.row(), {})) return iModel->LineOf(current.row());
  const QItemSelection ranges = selection->selection();
  return ranges.isEmpty() ? -1 : iModel->LineOf(ranges.first().top());
}

QList<int> CVelumListWidget::SelLines() const {
  QList<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row) rows.append(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  for (int& row : rows) row = iModel->LineOf(row);
  return rows;
}

void CVelumListWidget::SetSelLine(int aLine) {
  const int row = iModel->RowOf(aLine);
  if (row < 0) {
    clearSelection();
    setCurrentIndex({});
    return;
  }
  const QModelIndex index = iModel->index(row, 0);
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  const int left = horizontalScrollBar()->value();
  scrollTo(index);
  horizontalScrollBar()->setValue(left);
}

bool CVelumListWidget::DisplaySorted() const {
  return iModel->Sorted();
}

void CVelumListWidget::TitleClick(int aColumn) {
  if (aColumn != iSortColumn)
    SortDisplay(aColumn, Qt::AscendingOrder);
  else if (iSortOrder == Qt::AscendingOrder)
    SortDisplay(aColumn, Qt::DescendingOrder);
  else
    SortDisplay(-1, Qt::AscendingOrder);
}

void CVelumListWidget::SortDisplay(int aColumn, Qt::SortOrder aOrder) {
  const bool many = aColumn >= 0 && iModel->rowCount() >= EManyLines;
  if (many) CVelumDialogLib::BeginWait();
  iModel->SortBy(aColumn, aOrder);
  if (many) CVelumDialogLib::EndWait();
  iSortColumn = iModel->Sorted() ? aColumn : -1;
  iSortOrder = aOrder;
  horizontalHeader()->setSortIndicatorShown(iSortColumn >= 0);
  horizontalHeader()->setSortIndicator(iSortColumn, aOrder);
  if (const int line = SelLine(); line >= 0) scrollTo(iModel->index(iModel->RowOf(line), 0));
  Q_EMIT SortChanged();
}

int CVelumListWidget::TopRow() const {
  return iModel->rowCount() > 0 ? verticalScrollBar()->value() : -1;
}

void CVelumListWidget::SetTopRow(int aRow) {
  // The scroll bar learns of new lines only now.
  if (aRow < 0) return;
  updateGeometries();
  verticalScrollBar()->setValue(aRow);
}

QString CVelumListWidget::CellText(int aRow, int aColumn) const {
  return iModel->CellText(aRow, aColumn);
}

QString CVelumListWidget::SelText() const {
  QString text;
  const int columns = iModel->columnCount();
  for (const int line : SelLines()) {
    const int row = iModel->RowOf(line);
    if (!text.isEmpty()) text += u'\n';
    for (int column = 0; column < columns; ++column) {
      if (column > 0) text += u'\t';
      text += iModel->CellText(row, column);
    }
  }
  return text;
}

void CVelumListWidget::keyboardSearch(const QString& aText) {
  const qint64 now = QDateTime::currentMSecsSinceEpoch();
  const bool afresh = now - iTypedAt > QApplication::keyboardInputInterval() || iTyped.isEmpty();
  iTypedAt = now;
  // The same letter again goes on to the next line of that letter.
  if (afresh || iTyped == aText)
    iTyped = aText;
  else
    iTyped += aText;
  const int rows = iModel->rowCount();
  const int current = currentIndex().isValid() ? currentIndex().row() : -1;
  const int from = iTyped.size() > aText.size() ? std::max(0, current) : current + 1;
  for (int i = 0; i < rows; ++i) {
    const int row = (from + i) % rows;
    if (!iModel->CellText(row, 0).startsWith(iTyped, Qt::CaseInsensitive)) continue;
    SetSelLine(iModel->LineOf(row));
    return;
  }
}

void CVelumListWidget::keyPressEvent(QKeyEvent* aEvent) {
  if (aEvent->matches(QKeySequence::Copy)) {
    const QString text = SelText();
    if (!text.isEmpty()) QApplication::clipboard()->setText(text);
    return;
  }
  const bool enter = aEvent->key() == Qt::Key_Return || aEvent->key() == Qt::Key_Enter;
  if (enter && SelLine() >= 0) {
    Q_EMIT ItemDblClick();
    return;
  }
  if (aEvent->key() != Qt::Key_Home && aEvent->key() != Qt::Key_End) return QTableView::keyPressEvent(aEvent);
  // With Ctrl the toolkit would go there without selecting.
  QKeyEvent plain(QEvent::KeyPress, aEvent->key(), aEvent->modifiers() & ~Qt::ControlModifier);
  QTableView::keyPressEvent(&plain);
}

// A line is one thing, and has no first and last cell to go to.
QModelIndex CVelumListWidget::moveCursor(CursorAction aAction, Qt::KeyboardModifiers aModifiers) {
  const int rows = iModel->rowCount();
  const int column = std::max(0, currentIndex().column());
  if (aAction == MoveHome) return iModel->index(0, column);
  if (aAction == MoveEnd) return iModel->index(rows - 1, column);
  return QTableView::moveCursor(aAction, aModifiers);
}

void CVelumListWidget::focusInEvent(QFocusEvent* aEvent) {
  QTableView::focusInEvent(aEvent);
  const Qt::FocusReason reason = aEvent->reason();
  const bool entered = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                       reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
  // The line that the keys would go on from is to be seen.
  if (entered && SelLine() < 0 && currentIndex().isValid()) SetSelLine(iModel->LineOf(currentIndex().row()));
}

void CVelumListWidget::resizeEvent(QResizeEvent* aEvent) {
  SetBar();
  QTableView::resizeEvent(aEvent);
  Q_EMIT Resized();
}

void CVelumListWidget::SetBar() {
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
  const int titles = horizontalHeader()->isHidden() ? 0 : horizontalHeader()->height();
  const int room = height() - 2 * frameWidth() - titles - bar;
  const bool fits = room >= verticalHeader()->defaultSectionSize();
  setHorizontalScrollBarPolicy(fits ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

void CVelumListWidget::changeEvent(QEvent* aEvent) {
  QTableView::changeEvent(aEvent);
  if (aEvent->type() == QEvent::FontChange || aEvent->type() == QEvent::StyleChange) SetRowHeight();
}

void CVelumListWidget::SetRowHeight() {
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + ERowPadding);
  horizontalHeader()->setFixedHeight(horizontalHeader()->fontMetrics().height() + ERowPadding);
  SetBar();
}

void CVelumListWidget::selectionChanged(const QItemSelection& aSelected, const QItemSelection& aDeselected) {
  QTableView::selectionChanged(aSelected, aDeselected);
  Q_EMIT SelChanged();
}
