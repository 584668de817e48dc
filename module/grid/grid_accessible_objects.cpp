#include "module/grid/grid_accessible_objects.h"

#include <algorithm>

#include "module/grid/grid_accessible_object.h"

namespace tessary {

namespace {

class RowObject final : public GridObject {
public:
    RowObject(std::shared_ptr<GridAccessible> link, int row) : GridObject(std::move(link)), row_(row) {}

protected:
    // A row that was deleted is gone like the grid.
    bool connected() const override { return GridObject::connected() && row_ < grid().rowCount(); }
    long childCount() const override { return grid().columnCount(); }
    HRESULT parentObject(IDispatch** parent) const override {
        *parent = makeTableObject(sharedLink());
        return S_OK;
    }
    Text name(long child) const override {
        return child == CHILDID_SELF ? link().rowName(row_) : link().cellName(cell(child));
    }
    Text value(long child) const override {
        if (child == CHILDID_SELF)
            return std::nullopt;
        // A check box has no text that is drawn.
        return link().cellRole(cell(child)) == ROLE_SYSTEM_CHECKBUTTON
                   ? grid().text(row_, child - 1)
                   : std::wstring(grid().model().shownText(row_, child - 1));
    }
    Text action(long child) const override {
        const wchar_t* const name = child == CHILDID_SELF ? nullptr : link().defaultAction(cell(child));
        return name ? Text(name) : std::nullopt;
    }
    long role(long child) const override {
        return child == CHILDID_SELF ? ROLE_SYSTEM_ROW : link().cellRole(cell(child));
    }
    long state(long child) const override {
        return child == CHILDID_SELF ? link().rowState(row_) : link().cellState(cell(child));
    }
    bool location(long child, RECT& area) const override {
        return child == CHILDID_SELF ? link().rowLocation(row_, area)
                                     : link().cellLocation(cell(child), area);
    }
    HRESULT focus(VARIANT* result) const override {
        if (!link().hasKeyboard() || grid().focusedRow() != row_)
            return S_FALSE;
        returnChild(grid().focusedColumn() + 1, result);
        return S_OK;
    }
    HRESULT selection(VARIANT* result) const override {
        return returnSelection(sharedLink(), link().selectedColumns(row_), false, result);
    }
    HRESULT hit(const GridPosition& at, VARIANT* result) const override {
        if (at.row != row_)
            return S_FALSE;
        returnChild(at.column + 1, result);
        return S_OK;
    }
    HRESULT navigate(long direction, long from, VARIANT* result) const override {
        if (from != CHILDID_SELF || direction == NAVDIR_FIRSTCHILD || direction == NAVDIR_LASTCHILD)
            return navigateCells(direction, from, result);
        const bool back = direction == NAVDIR_UP || direction == NAVDIR_PREVIOUS;
        const bool on = direction == NAVDIR_DOWN || direction == NAVDIR_NEXT;
        const int next = back ? row_ - 1 : row_ + 1;
        if ((!back && !on) || next < 0 || next >= grid().rowCount())
            return S_FALSE;
        returnObject(makeRowObject(sharedLink(), next), result);
        return S_OK;
    }
    HRESULT select(long flags, long child) const override {
        const int column = child == CHILDID_SELF ? std::max(grid().focusedColumn(), firstShownColumn())
                                                 : static_cast<int>(child) - 1;
        return link().select({row_, column}, flags);
    }
    bool act(long child) const override {
        return child != CHILDID_SELF && link().doDefaultAction(cell(child));
    }
    HRESULT setValue(long child, const std::wstring& text) const override {
        if (child == CHILDID_SELF)
            return DISP_E_MEMBERNOTFOUND;
        return link().setValue(cell(child), text) ? S_OK : E_ACCESSDENIED;
    }

private:
    GridPosition cell(long child) const { return {row_, static_cast<int>(child) - 1}; }
    int firstShownColumn() const {
        int column = grid().fixedColumnCount();
        while (column < grid().columnCount() - 1 && grid().columnWidth(column) == 0)
            ++column;
        return column;
    }
    HRESULT navigateCells(long direction, long from, VARIANT* result) const {
        long next = 0;
        switch (direction) {
            case NAVDIR_FIRSTCHILD: next = from == CHILDID_SELF ? 1 : 0; break;
            case NAVDIR_LASTCHILD: next = from == CHILDID_SELF ? childCount() : 0; break;
            case NAVDIR_LEFT:
            case NAVDIR_PREVIOUS: next = from - 1; break;
            case NAVDIR_RIGHT:
            case NAVDIR_NEXT: next = from + 1; break;
            default: break;
        }
        if (next < 1 || next > childCount())
            return S_FALSE;
        returnChild(next, result);
        return S_OK;
    }

    int row_;
};

class TableObject final : public GridObject {
public:
    using GridObject::GridObject;

protected:
    long childCount() const override { return grid().rowCount(); }
    HRESULT parentObject(IDispatch** parent) const override {
        void* window = nullptr;
        const HRESULT result = AccessibleObjectFromWindow(grid().handle(), static_cast<DWORD>(OBJID_WINDOW),
                                                          __uuidof(IDispatch), &window);
        *parent = static_cast<IDispatch*>(window);
        return result;
    }
    IDispatch* childObject(long child) const override { return makeRowObject(sharedLink(), child - 1); }
    Text name(long child) const override {
        return child == CHILDID_SELF ? link().tableName() : link().rowName(row(child));
    }
    Text value(long) const override { return std::nullopt; }
    Text action(long) const override { return std::nullopt; }
    long role(long child) const override {
        return child == CHILDID_SELF ? ROLE_SYSTEM_TABLE : ROLE_SYSTEM_ROW;
    }
    long state(long child) const override {
        if (child != CHILDID_SELF)
            return link().rowState(row(child));
        const HWND window = grid().handle();
        return STATE_SYSTEM_FOCUSABLE | (GetFocus() == window ? STATE_SYSTEM_FOCUSED : 0) |
               (IsWindowEnabled(window) ? 0 : STATE_SYSTEM_UNAVAILABLE) |
               (IsWindowVisible(window) ? 0 : STATE_SYSTEM_INVISIBLE);
    }
    bool location(long child, RECT& area) const override {
        if (child != CHILDID_SELF)
            return link().rowLocation(row(child), area);
        GetClientRect(grid().handle(), &area);
        MapWindowPoints(grid().handle(), nullptr, reinterpret_cast<POINT*>(&area), 2);
        return true;
    }
    HRESULT focus(VARIANT* result) const override {
        if (!link().hasKeyboard())
            return S_FALSE;
        void* editor = nullptr;
        if (const HWND window = GetFocus(); window != grid().handle()) {
            const HRESULT found = AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                                             __uuidof(IDispatch), &editor);
            if (FAILED(found))
                return found;
            returnObject(static_cast<IDispatch*>(editor), result);
        } else if (grid().focusedRow() >= 0) {
            returnObject(makeRowObject(sharedLink(), grid().focusedRow()), result);
        } else {
            returnChild(CHILDID_SELF, result);
        }
        return S_OK;
    }
    HRESULT selection(VARIANT* result) const override {
        return returnSelection(sharedLink(), link().selectedRows(), true, result);
    }
    HRESULT hit(const GridPosition& at, VARIANT* result) const override {
        if (at) {
            returnObject(makeRowObject(sharedLink(), at.row), result);
        } else {
            returnChild(CHILDID_SELF, result);
        }
        return S_OK;
    }
    HRESULT navigate(long direction, long from, VARIANT* result) const override {
        long next = 0;
        if (from == CHILDID_SELF) {
            next = direction == NAVDIR_FIRSTCHILD ? 1 : direction == NAVDIR_LASTCHILD ? childCount() : 0;
        } else if (direction == NAVDIR_DOWN || direction == NAVDIR_NEXT) {
            next = from + 1;
        } else if (direction == NAVDIR_UP || direction == NAVDIR_PREVIOUS) {
            next = from - 1;
        }
        if (next < 1 || next > childCount())
            return S_FALSE;
        returnObject(makeRowObject(sharedLink(), row(next)), result);
        return S_OK;
    }
    HRESULT select(long flags, long child) const override {
        if (child != CHILDID_SELF)
            return selectRow(flags, child);
        if (flags != SELFLAG_TAKEFOCUS)
            return E_INVALIDARG;
        SetFocus(grid().handle());
        return S_OK;
    }
    bool act(long) const override { return false; }
    HRESULT setValue(long, const std::wstring&) const override { return DISP_E_MEMBERNOTFOUND; }

private:
    static int row(long child) { return static_cast<int>(child) - 1; }
    HRESULT selectRow(long flags, long child) const {
        IAccessible* const object = makeRowObject(sharedLink(), row(child));
        VARIANT self;
        returnChild(CHILDID_SELF, &self);
        const HRESULT result = object->accSelect(flags, self);
        object->Release();
        return result;
    }
};

}  // namespace

IAccessible* makeTableObject(std::shared_ptr<GridAccessible> link) {
    return new TableObject(std::move(link));
}

IAccessible* makeRowObject(std::shared_ptr<GridAccessible> link, int row) {
    return new RowObject(std::move(link), row);
}

}  // namespace tessary
