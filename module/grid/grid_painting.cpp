// What the grid looks like. All colours are the system's, so that dark and high-contrast schemes hold.

#include "framework/gdi.h"
#include "module/grid/grid_control.h"
#include "module/grid/grid_text_widths.h"

#include <algorithm>
#include <map>

namespace tessary {

namespace {

constexpr wchar_t ellipsis = L'\x2026';
constexpr int sortArrowWidth = 7;

COLORREF between(COLORREF a, COLORREF b) {
    return RGB((GetRValue(a) + GetRValue(b)) / 2, (GetGValue(a) + GetGValue(b)) / 2,
               (GetBValue(a) + GetBValue(b)) / 2);
}

void fillArea(HDC context, const RECT& area, COLORREF color) {
    SetBkColor(context, color);
    ExtTextOutW(context, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
}

void drawFrame(HDC context, const RECT& area, COLORREF color) {
    fillArea(context, {area.left, area.top, area.right, area.top + 1}, color);
    fillArea(context, {area.left, area.bottom - 1, area.right, area.bottom}, color);
    fillArea(context, {area.left, area.top, area.left + 1, area.bottom}, color);
    fillArea(context, {area.right - 1, area.top, area.right, area.bottom}, color);
}

RECT shrunk(RECT area, int by) {
    InflateRect(&area, -by, -by);
    return area;
}

RECT overlap(const RECT& a, const RECT& b) {
    RECT both{};
    IntersectRect(&both, &a, &b);
    return both;
}

struct Colors {
    COLORREF text;
    COLORREF background;
};

}  // namespace

// Paints once; made for one paint message.
class GridPainter {
public:
    GridPainter(const CGridCtrl& grid, HDC context);
    // area: of the client area that is to be painted.
    void paint(const RECT& area);

private:
    void paintCells(int firstRow, int lastRow, bool fixedColumns);
    void paintRows(bool fixedColumns);
    void paintCell(int row, int column, const RECT& cell);
    void paintHeader(int row, int column, const RECT& cell);
    void paintCheckBox(int row, int column, const RECT& cell, Colors colors);
    HDC checkBoxPicture(UINT state, int size);
    void paintExpandBox(bool expanded, const RECT& box, COLORREF color);
    void paintSortArrow(const RECT& cell);
    void paintFocus(const RECT& cell);
    void paintText(int row, int column, const RECT& cell, COLORREF color);
    void paintLines(int firstIndex, int lastIndex);
    Colors colorsOf(int row, int column) const;
    bool isPressed(CGridCtrl::Press::Kind kind, int row, int column) const;

    const CGridCtrl& grid_;
    HDC context_;
    bool enabled_, active_;  // active: the grid or one of its editors has the keyboard
    RECT clip_{};            // of what is being painted now
    COLORREF window_, lines_;
    std::map<UINT, framework::MemoryContext> checkBoxes_;  // by state, of one size
};

GridPainter::GridPainter(const CGridCtrl& grid, HDC context) : grid_(grid), context_(context) {
    const HWND focus = GetFocus();
    enabled_ = IsWindowEnabled(grid.handle()) != FALSE;
    active_ = focus == grid.handle() || IsChild(grid.handle(), focus);
    window_ = GetSysColor(enabled_ ? COLOR_WINDOW : COLOR_BTNFACE);
    lines_ = between(window_, GetSysColor(COLOR_BTNSHADOW));
}

void GridPainter::paint(const RECT& area) {
    const framework::Selected font(context_, grid_.font());
    SetBkMode(context_, TRANSPARENT);
    fillArea(context_, area, window_);
    RECT client{};
    GetClientRect(grid_.handle(), &client);
    const RECT data = grid_.dataArea();
    const auto part = [&](const RECT& region, bool fixedRows, bool fixedColumns) {
        const RECT clip = overlap(region, area);
        if (IsRectEmpty(&clip))
            return;
        const int saved = SaveDC(context_);
        IntersectClipRect(context_, clip.left, clip.top, clip.right, clip.bottom);
        clip_ = clip;
        if (fixedRows)
            paintCells(0, grid_.fixedRowCount() - 1, fixedColumns);
        else
            paintRows(fixedColumns);
        RestoreDC(context_, saved);
    };
    part(data, false, false);
    part({client.left, data.top, data.left, client.bottom}, false, true);
    part({data.left, client.top, client.right, data.top}, true, false);
    part({client.left, client.top, data.left, data.top}, true, true);
}

void GridPainter::paintRows(bool fixedColumns) {
    const int height = grid_.rowHeight();
    const int header = static_cast<int>(grid_.headerSize().cy), top = static_cast<int>(grid_.scroll_.y);
    const int first = (static_cast<int>(clip_.top) - header + top) / height;
    const int last =
        std::min((static_cast<int>(clip_.bottom) - 1 - header + top) / height, grid_.shownRowCount() - 1);
    for (int index = first; index <= last; ++index) {
        const int row = grid_.rowOfIndex(index);
        paintCells(row, row, fixedColumns);
    }
    if (!fixedColumns && first <= last)
        paintLines(first, last);
}

void GridPainter::paintCells(int firstRow, int lastRow, bool fixedColumns) {
    const int firstColumn = fixedColumns ? 0 : grid_.fixedColumnCount();
    const int endColumn = fixedColumns ? grid_.fixedColumnCount() : grid_.columnCount();
    for (int row = firstRow; row <= lastRow; ++row) {
        for (int column = firstColumn; column < endColumn; ++column) {
            const auto cell = grid_.cellArea(row, column);
            RECT seen{};
            if (cell && IntersectRect(&seen, &*cell, &clip_))
                paintCell(row, column, *cell);
        }
    }
}

bool GridPainter::isPressed(CGridCtrl::Press::Kind kind, int row, int column) const {
    return grid_.press_.kind == kind && grid_.press_.inside && grid_.press_.cell == GridPosition{row, column};
}

Colors GridPainter::colorsOf(int row, int column) const {
    const auto pair = [](int text, int background) -> Colors {
        return {GetSysColor(text), GetSysColor(background)};
    };
    if (!enabled_)
        return {GetSysColor(COLOR_GRAYTEXT), window_};
    // Among selected cells the focused one stands out by not being filled.
    const bool isFocus = grid_.focus_ == GridPosition{row, column} && !grid_.listMode_;
    if (grid_.isSelected(row, column) && !isFocus) {
        // A selection without the keyboard is paler: near enough to the window's color for the window's text.
        const COLORREF faded = between(between(GetSysColor(COLOR_HIGHLIGHT), window_), window_);
        return active_ ? pair(COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHT)
                       : Colors{GetSysColor(COLOR_WINDOWTEXT), faded};
    }
    return grid_.model_.isSectionRow(row) ? pair(COLOR_BTNTEXT, COLOR_BTNFACE)
                                          : pair(COLOR_WINDOWTEXT, COLOR_WINDOW);
}

void GridPainter::paintCell(int row, int column, const RECT& cell) {
    if (grid_.model_.isFixed(row, column)) {
        paintHeader(row, column, cell);
        return;
    }
    const Colors colors = colorsOf(row, column);
    if (colors.background != window_)
        fillArea(context_, cell, colors.background);
    const bool isCheckBox = grid_.cell(row, column)->kind() == GridColumnType::checkBox;
    if (isCheckBox && !grid_.model_.isSectionRow(row))
        paintCheckBox(row, column, cell, colors);
    else if (!isCheckBox)
        paintText(row, column, cell, colors.text);
    if (const RECT box = grid_.expandBox(row, column, cell); !IsRectEmpty(&box))
        paintExpandBox(static_cast<const CGridTreeCell&>(*grid_.cell(row, column)).isExpanded(), box,
                       colors.text);
    if (grid_.focus_ == GridPosition{row, column}) {
        if (enabled_ && grid_.hasArrow(row, column) && grid_.canEdit(row, column)) {
            RECT arrow = grid_.arrowArea(cell);
            DrawFrameControl(context_, &arrow, DFC_SCROLL, DFCS_SCROLLCOMBOBOX);
        }
        paintFocus(cell);
    }
}

// Of the rows that are shown as these, in one stroke each: cell by cell they took longer than the texts.
void GridPainter::paintLines(int firstIndex, int lastIndex) {
    const int firstRow = grid_.rowOfIndex(firstIndex), height = grid_.rowHeight();
    RECT all{};
    for (int column = grid_.fixedColumnCount(); column < grid_.columnCount(); ++column) {
        const auto cell = grid_.cellArea(firstRow, column);
        if (!cell)
            continue;
        UnionRect(&all, &all, &*cell);
        const LONG bottom = cell->top + (lastIndex - firstIndex + 1) * height;
        fillArea(context_, {cell->right - 1, cell->top, cell->right, bottom}, lines_);
    }
    for (int index = firstIndex; index <= lastIndex && !IsRectEmpty(&all); ++index) {
        const LONG bottom = all.top + (index - firstIndex + 1) * height;
        fillArea(context_, {all.left, bottom - 1, all.right, bottom}, lines_);
    }
}

void GridPainter::paintFocus(const RECT& cell) {
    RECT frame{cell.left, cell.top, cell.right - 1, cell.bottom - 1};
    if (!active_) {
        // A dialog may put the focus of one grid where it shows what was selected in another.
        if (!grid_.listMode_)
            drawFrame(context_, frame, GetSysColor(COLOR_BTNSHADOW));
        return;
    }
    if (grid_.listMode_) {
        SetTextColor(context_, GetSysColor(COLOR_HIGHLIGHTTEXT));
        SetBkColor(context_, GetSysColor(COLOR_HIGHLIGHT));
        DrawFocusRect(context_, &frame);
    } else {
        drawFrame(context_, frame, GetSysColor(COLOR_HIGHLIGHT));
        drawFrame(context_, shrunk(frame, 1), GetSysColor(COLOR_HIGHLIGHT));
    }
}

void GridPainter::paintHeader(int row, int column, const RECT& cell) {
    const bool pressed = isPressed(CGridCtrl::Press::Kind::header, row, column);
    fillArea(context_, cell, GetSysColor(COLOR_BTNFACE));
    RECT edge = cell;
    DrawEdge(context_, &edge, pressed ? BDR_SUNKENOUTER : BDR_RAISEDINNER, BF_RECT);
    RECT inner = cell;
    if (pressed)
        OffsetRect(&inner, 1, 1);
    paintText(row, column, inner, GetSysColor(enabled_ ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    if (column == grid_.sortColumn_ && row == grid_.fixedRowCount() - 1)
        paintSortArrow(inner);
}

void GridPainter::paintSortArrow(const RECT& cell) {
    const int right = static_cast<int>(cell.right) - CGridCtrl::cellMargin - 1;
    const int left = right - sortArrowWidth;
    if (left < cell.left + CGridCtrl::cellMargin)
        return;
    const int rows = (sortArrowWidth + 1) / 2;
    const int top = static_cast<int>(cell.top + cell.bottom - rows) / 2;
    for (int line = 0; line < rows; ++line) {
        const int y = top + (grid_.sortsAscending() ? rows - 1 - line : line);
        fillArea(context_, {left + line, y, right - line, y + 1}, GetSysColor(COLOR_BTNTEXT));
    }
}

// Drawing a box takes longer than all texts of a row, so those of the same state are drawn once.
HDC GridPainter::checkBoxPicture(UINT state, int size) {
    const auto [picture, added] = checkBoxes_.try_emplace(state, context_, size, size);
    const HDC context = picture->second.get();
    if (added) {
        RECT box{0, 0, size, size};
        fillArea(context, box, window_);
        DrawFrameControl(context, &box, DFC_BUTTON, state);
    }
    return context;
}

void GridPainter::paintCheckBox(int row, int column, const RECT& cell, Colors colors) {
    const auto& button = static_cast<const CGridBtnCell&>(*grid_.cell(row, column));
    const int size = std::min(13, static_cast<int>(cell.bottom - cell.top) - 3);
    RECT box{};
    box.left = (cell.left + cell.right - 1 - size) / 2;
    box.top = (cell.top + cell.bottom - 1 - size) / 2;
    box.right = box.left + size;
    box.bottom = box.top + size;
    UINT state = DFCS_BUTTONCHECK | DFCS_FLAT;
    if (button.isChecked())
        state |= DFCS_CHECKED;
    if (isPressed(CGridCtrl::Press::Kind::checkBox, row, column))
        state |= DFCS_PUSHED;
    if (!enabled_ || button.isReadOnly())
        state |= DFCS_INACTIVE;
    const int saved = SaveDC(context_);
    IntersectClipRect(context_, cell.left, cell.top, cell.right - 1, cell.bottom - 1);
    BitBlt(context_, box.left, box.top, size, size, checkBoxPicture(state, size), 0, 0, SRCCOPY);
    if (state & DFCS_PUSHED)
        drawFrame(context_, shrunk(box, -1), colors.text);
    RestoreDC(context_, saved);
}

void GridPainter::paintExpandBox(bool expanded, const RECT& box, COLORREF color) {
    drawFrame(context_, box, color);
    const int middleX = static_cast<int>(box.left + box.right) / 2,
              middleY = static_cast<int>(box.top + box.bottom) / 2;
    fillArea(context_, {box.left + 2, middleY, box.right - 2, middleY + 1}, color);
    if (!expanded)
        fillArea(context_, {middleX, box.top + 2, middleX + 1, box.bottom - 2}, color);
}

void GridPainter::paintText(int row, int column, const RECT& cell, COLORREF color) {
    std::wstring_view text = grid_.model_.shownText(row, column);
    if (text.empty())
        return;
    const RECT area = grid_.textArea(row, column, cell);
    const RECT clip = overlap(area, clip_);
    const int room = static_cast<int>(area.right - area.left);
    std::wstring shortened;
    if (grid_.textWidth(text) > room) {
        const int dots = grid_.textWidth({&ellipsis, 1});
        shortened = text.substr(0, grid_.textWidths_->fitting(text, std::max(0, room - dots)));
        shortened += ellipsis;
        text = shortened;
    }
    SetTextColor(context_, color);
    const int y = static_cast<int>(area.top) + CGridCtrl::textTop;
    ExtTextOutW(context_, area.left, y, ETO_CLIPPED, &clip, text.data(), static_cast<UINT>(text.size()),
                nullptr);
}

LRESULT CGridCtrl::onPaint(WPARAM, LPARAM) {
    repaintPending_ = false;
    const framework::PaintContext paint(handle());
    const RECT& area = paint.area();
    if (IsRectEmpty(&area))
        return 0;
    const int width = static_cast<int>(area.right - area.left),
              height = static_cast<int>(area.bottom - area.top);
    const framework::MemoryContext memory(paint.get(), width, height);
    SetViewportOrgEx(memory.get(), -area.left, -area.top, nullptr);
    GridPainter(*this, memory.get()).paint(area);
    BitBlt(paint.get(), area.left, area.top, width, height, memory.get(), area.left, area.top, SRCCOPY);
    return 0;
}

LRESULT CGridCtrl::onPrintClient(WPARAM wParam, LPARAM) {
    RECT client{};
    GetClientRect(handle(), &client);
    GridPainter(*this, reinterpret_cast<HDC>(wParam)).paint(client);
    return 0;
}

LRESULT CGridCtrl::onEraseBackground(WPARAM, LPARAM) {
    return 1;  // painting covers all of it
}

}  // namespace tessary
