#include "module/grid/in_place_editor.h"

#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"

#include <utility>
#include <vector>

namespace tessary {

namespace {

// The end that is being reported, in any grid of the program. Ends that arrive meanwhile are dropped; their
// editors are looked after when the report is done.
struct RunningEnd {
    bool running = false;
    std::vector<std::weak_ptr<InPlaceEditor>> dropped;
};
RunningEnd runningEnd;

bool holds(HWND window, HWND focused) {
    return focused && (focused == window || IsChild(window, focused));
}

// An editor without the focus would stay open for good: nothing could take the focus from it. Without any
// focus in this program the editor gets it back with the next activation.
void closeLeftEditors() {
    for (const auto& entry : std::exchange(runningEnd.dropped, {})) {
        const auto editor = entry.lock();
        if (!editor || !editor->handle() || !GetFocus() || holds(editor->handle(), GetFocus()))
            continue;
        if (editor->isChanged())
            editor->endEdit();
        editor->discard();
    }
}

class EndGuard {
public:
    EndGuard() { runningEnd.running = true; }
    ~EndGuard() { runningEnd.running = false; }
    EndGuard(const EndGuard&) = delete;
    EndGuard& operator=(const EndGuard&) = delete;
};

}  // namespace

InPlaceEditor::InPlaceEditor(CGridCtrl& grid, int row, int column, const std::wstring& initialText,
                             UINT firstKey)
    : initText_(initialText), row_(row), column_(column), firstKey_(firstKey),
      exitOnArrows_(firstKey != VK_LBUTTON), grid_(grid.self_) {}

CGridCtrl* InPlaceEditor::grid() const {
    const auto grid = grid_.lock();
    return grid ? *grid : nullptr;
}

void InPlaceEditor::endEdit() {
    const auto keep = shared_from_this();
    if (ended_ || !handle())
        return;
    if (runningEnd.running) {
        runningEnd.dropped.push_back(weak_from_this());
        return;
    }
    {
        const EndGuard guard;
        report();
        if (handle())
            closeWindow();
    }
    closeLeftEditors();
}

void InPlaceEditor::report() {
    ended_ = true;
    if (CGridCtrl* const owner = grid())
        owner->editorClosed(this);
    const std::wstring text = result();
    const int id = GetDlgCtrlID(handle());
    GridEditNotification notification{{handle(), static_cast<UINT_PTR>(id), static_cast<UINT>(gridEndEdit)},
                                      {5, row_, column_, text.c_str(), static_cast<LPARAM>(lastChar_)}};
    SendMessageW(gridWindow(), WM_NOTIFY, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(&notification));
}

void InPlaceEditor::discard() {
    const auto keep = shared_from_this();
    if (!handle() || ended_)
        return;
    ended_ = true;
    if (CGridCtrl* const owner = grid())
        owner->editorClosed(this);
    closeWindow();
}

bool InPlaceEditor::leavesBy(UINT key) const {
    const bool moves = key == VK_PRIOR || key == VK_NEXT || (key >= VK_LEFT && key <= VK_DOWN);
    return moves && (exitOnArrows_ || GetKeyState(VK_CONTROL) < 0);
}

void InPlaceEditor::leave(UINT key) {
    const auto keep = shared_from_this();
    if (ended_)
        return;
    lastChar_ = key;
    SetFocus(gridWindow());
    if (!ended_)
        endEdit();  // the focus was elsewhere, or stayed: a disabled dialog's grid cannot have it
}

void InPlaceEditor::handFocusBack() {
    if (holds(handle(), GetFocus()))
        SetFocus(gridWindow());
}

void InPlaceEditor::onDestroyed() {
    if (CGridCtrl* const owner = grid())
        owner->editorClosed(this);
    self_.reset();
}

void postCharacter(HWND field, UINT character) {
    PostMessageW(field, character < 128 ? WM_CHAR : WM_IME_CHAR, character, 1);
}

void dropSystemCharacter(HWND field) {
    MSG character;
    PeekMessageW(&character, field, WM_SYSCHAR, WM_SYSCHAR, PM_REMOVE);
}

void startTyping(HWND field, UINT firstKey, bool spaceAndTabSelect) {
    const bool opens = firstKey == VK_LBUTTON || firstKey == VK_RETURN;
    const bool selects = (firstKey >= VK_PRIOR && firstKey <= VK_DOWN) ||
                         (spaceAndTabSelect && (firstKey == VK_TAB || firstKey == VK_SPACE));
    if (opens || firstKey == VK_BACK) {
        const auto end = static_cast<WPARAM>(GetWindowTextLengthW(field));
        SendMessageW(field, EM_SETSEL, end, static_cast<LPARAM>(end));
    } else {
        SendMessageW(field, EM_SETSEL, 0, -1);
    }
    SendMessageW(field, EM_SCROLLCARET, 0, 0);
    if (!opens && !selects)
        postCharacter(field, firstKey);
}

}  // namespace tessary
