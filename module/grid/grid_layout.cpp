// Where rows and columns are.

#include "module/grid/grid_control.h"
#include "module/grid/grid_text_widths.h"

#include <algorithm>

namespace tessary {

namespace {

constexpr int rowPadding = 5;    // pixels above and below a text, and the line below the row
constexpr int levelIndent = 16;  // pixels a level of a tree column
constexpr int expandBoxSize = 9;
constexpr int sortArrowRoom = 14;

bool isTree(const GridModel& model) {
    for (int column = 0; column < model.columnCount(); ++column) {
        if (model.columnType(column) == GridColumnType::tree)
            return true;
    }
    return false;
}

// 0 for a cell that is in no tree.
int levelOf(const CGridCellBase* cell) {
    const auto* const treeCell = dynamic_cast<const CGridTreeCell*>(cell);
    return treeCell ? treeCell->level() : 0;
}

}  // namespace

HFONT CGridCtrl::font() const {
    const auto own = handle() ? SendMessageW(handle(), WM_GETFONT, 0, 0) : 0;
    return own ? reinterpret_cast<HFONT>(own) : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

void CGridCtrl::fontChanged() {
    textWidths_.reset();
    rowHeight_ = 0;
    layoutChanged();
}

int CGridCtrl::rowHeight() const {
    if (rowHeight_ == 0) {
        const framework::ClientContext context(handle());
        const framework::Selected selected(context.get(), font());
        TEXTMETRICW metrics{};
        GetTextMetricsW(context.get(), &metrics);
        rowHeight_ = std::max(metrics.tmHeight + rowPadding, 6L);
    }
    return rowHeight_;
}

int CGridCtrl::textWidth(std::wstring_view text) const {
    if (!textWidths_)
        textWidths_ = std::make_unique<GridTextWidths>(font());
    return textWidths_->of(text);
}

// Without a tree every row is shown, and a row's index follows from its number.
int CGridCtrl::shownRowCount() const {
    if (!isTree(model_))
        return std::max(0, rowCount() - fixedRowCount());
    if (!shownRowsKnown_) {
        shownRows_.clear();
        for (int row = fixedRowCount(); row < rowCount(); ++row) {
            if (model_.isRowShown(row))
                shownRows_.push_back(row);
        }
        shownRowsKnown_ = true;
    }
    return static_cast<int>(shownRows_.size());
}

int CGridCtrl::indexOfRow(int row) const {
    if (!isTree(model_))
        return row - fixedRowCount();
    shownRowCount();
    return static_cast<int>(std::ranges::lower_bound(shownRows_, row) - shownRows_.begin());
}

int CGridCtrl::rowOfIndex(int index) const {
    if (index < 0 || index >= shownRowCount())
        return -1;
    return isTree(model_) ? shownRows_[static_cast<std::size_t>(index)] : index + fixedRowCount();
}

bool CGridCtrl::isDataCell(const GridPosition& cell) const {
    return cell.row >= fixedRowCount() && cell.row < rowCount() && cell.column >= fixedColumnCount() &&
           cell.column < columnCount();
}

bool CGridCtrl::isShownCell(const GridPosition& cell) const {
    if (cell.row < 0 || cell.row >= rowCount() || cell.column < 0 || cell.column >= columnCount())
        return false;
    return columnWidth(cell.column) > 0 && (cell.row < fixedRowCount() || model_.isRowShown(cell.row));
}

int CGridCtrl::columnStart(int column) const {
    int start = 0;
    for (int before = 0; before < column; ++before)
        start += columnWidth(before);
    return start;
}

SIZE CGridCtrl::headerSize() const {
    return {columnStart(std::min(fixedColumnCount(), columnCount())), fixedRowCount() * rowHeight()};
}

RECT CGridCtrl::dataArea() const {
    RECT area{};
    GetClientRect(handle(), &area);
    const SIZE header = headerSize();
    area.left = std::min(area.right, header.cx);
    area.top = std::min(area.bottom, header.cy);
    return area;
}

std::optional<RECT> CGridCtrl::cellArea(int row, int column) const {
    if (!isShownCell({row, column}))
        return std::nullopt;
    const int height = rowHeight();
    RECT area{};
    area.left = columnStart(column) - (column < fixedColumnCount() ? 0 : scroll_.x);
    area.right = area.left + columnWidth(column);
    area.top = row < fixedRowCount()
                   ? row * height
                   : (fixedRowCount() + indexOfRow(row)) * height - static_cast<int>(scroll_.y);
    area.bottom = area.top + height;
    return area;
}

GridPosition CGridCtrl::cellAt(POINT point) const {
    const SIZE header = headerSize();
    const int height = rowHeight();
    const int row = point.y < header.cy
                        ? static_cast<int>(point.y) / height
                        : rowOfIndex(static_cast<int>(point.y - header.cy + scroll_.y) / height);
    const int x = static_cast<int>(point.x < header.cx ? point.x : point.x + scroll_.x);
    int column = 0;
    for (int end = 0; column < columnCount(); ++column) {
        end += columnWidth(column);
        if (x < end)
            break;
    }
    if (point.x < 0 || point.y < 0 || row < 0 || column >= columnCount())
        return {};
    return {row, column};
}

int CGridCtrl::indentation(int row, int column) const {
    return levelOf(cell(row, column)) * levelIndent;
}

RECT CGridCtrl::expandBox(int row, int column, const RECT& cellRectangle) const {
    if (levelOf(cell(row, column)) != 1)
        return {};
    const int left = static_cast<int>(cellRectangle.left) + (levelIndent - expandBoxSize) / 2 + 1;
    const int top = static_cast<int>(cellRectangle.top + cellRectangle.bottom - expandBoxSize) / 2;
    return {left, top, left + expandBoxSize, top + expandBoxSize};
}

bool CGridCtrl::hasArrow(int row, int column) const {
    const CGridCellBase* const asked = cell(row, column);
    if (!asked || model_.isFixed(row, column))
        return false;
    return asked->kind() == GridColumnType::editableDropDown ||
           asked->kind() == GridColumnType::choiceDropDown || asked->kind() == GridColumnType::lookedUp;
}

RECT CGridCtrl::arrowArea(const RECT& cellRectangle) const {
    RECT area = cellRectangle;
    --area.right;
    --area.bottom;  // the grid's lines
    area.left = std::max(area.left, area.right - GetSystemMetrics(SM_CXVSCROLL));
    return area;
}

RECT CGridCtrl::textArea(int row, int column, const RECT& cellRectangle) const {
    RECT area = cellRectangle;
    area.left += cellMargin + indentation(row, column);
    area.right -= cellMargin;
    if (focus_ == GridPosition{row, column} && hasArrow(row, column))
        area.right = arrowArea(cellRectangle).left - 1;
    if (row < fixedRowCount() && column == sortColumn_)
        area.right -= sortArrowRoom - cellMargin;
    area.right = std::max(area.left, area.right);
    return area;
}

int CGridCtrl::neededColumnWidth(int column) const {
    int widest = 0;
    bool arrow = false;
    for (int row = 0; row < rowCount(); ++row) {
        const int sortRoom = row < fixedRowCount() && headerSort_ ? sortArrowRoom : 0;
        widest =
            std::max(widest, textWidth(model_.shownText(row, column)) + indentation(row, column) + sortRoom);
        arrow = arrow || hasArrow(row, column);
    }
    if (model_.columnType(column) == GridColumnType::checkBox)
        widest = std::max(widest, rowHeight());
    return widest + 2 * cellMargin + 1 + (arrow ? GetSystemMetrics(SM_CXVSCROLL) : 0);
}

void CGridCtrl::autoSizeColumn(int column) {
    if (columnWidth(column) > 0)
        setColumnWidth(column, neededColumnWidth(column));
}

void CGridCtrl::autoSizeColumns() {
    for (int column = 0; column < columnCount(); ++column)
        autoSizeColumn(column);
}

void CGridCtrl::extendLastColumn() {
    settleLayout();
    int last = columnCount() - 1;
    while (last >= 0 && columnWidth(last) == 0)
        --last;
    RECT client{};
    GetClientRect(handle(), &client);
    if (const int end = columnStart(last + 1); last >= 0 && end < client.right)
        setColumnWidth(last, columnWidth(last) + static_cast<int>(client.right) - end);
}

}  // namespace tessary
