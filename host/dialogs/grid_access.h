#pragma once

// A grid in a dialog, as a screen reader knows it: by the accessible object of its window, whoever made the
// control.

#include <windows.h>

#include <oleacc.h>

#include <memory>
#include <optional>
#include <string>

namespace drafthost::dialogs {

struct ReleaseObject {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using ComObject = std::unique_ptr<Interface, ReleaseObject>;

struct GridPlace {
    int row = 0;     // 0: the header
    int column = 0;  // counts hidden ones
};

class GridAccess {
public:
    // Nothing when the window is no table of rows.
    static std::optional<GridAccess> of(HWND window);

    HWND window() const { return window_; }
    int rows() const;
    int columns(int row) const;  // 0 for a row that is not there
    // ROLE_SYSTEM_ and STATE_SYSTEM_ values. 0, and STATE_SYSTEM_INVISIBLE, for a place that is not there.
    long role(const GridPlace& place) const;
    long state(const GridPlace& place) const;
    std::wstring text(const GridPlace& place) const;
    // In client coordinates of the window: the part that is seen, or where it would be. Empty for none.
    RECT area(const GridPlace& place) const;

private:
    explicit GridAccess(HWND window, ComObject<IAccessible> table)
        : window_(window), table_(std::move(table)) {}
    ComObject<IAccessible> rowObject(int row) const;

    HWND window_;
    ComObject<IAccessible> table_;
};

}  // namespace drafthost::dialogs
