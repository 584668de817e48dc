#include "module/grid/in_place_edit.h"

#include "framework/gdi.h"
#include "module/grid/grid_control.h"

#include <algorithm>

namespace tessary {

namespace {

constexpr int rightMargin = 1;  // pixels, for the caret

}  // namespace

CInPlaceEdit* CInPlaceEdit::open(CGridCtrl& grid, const RECT& area, DWORD style, int controlId, int row,
                                 int column, const std::wstring& initialText, UINT firstKey) {
    const std::shared_ptr<CInPlaceEdit> editor(new CInPlaceEdit(grid, row, column, initialText, firstKey));
    RECT client{};
    GetClientRect(grid.handle(), &client);
    editor->rect_ = area;
    editor->rect_.right = std::max(area.left, std::min(area.right, client.right));
    if (!editor->createChild(L"EDIT", L"", style | WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, editor->rect_,
                             grid.handle(), controlId))
        return nullptr;
    editor->holdItself();
    const HWND window = editor->handle();
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(grid.font()), FALSE);
    editor->placeText(static_cast<int>(grid.textArea(row, column, area).left - area.left));
    editor->setText(initialText);
    grid.editor_ = editor.get();
    SetFocus(window);
    // Whoever lost the focus may have had it closed, or have taken the focus back.
    if (editor->handle() && GetFocus() != window)
        editor->discard();
    if (!editor->handle())
        return nullptr;
    startTyping(window, firstKey, true);
    return editor.get();
}

// The text stays where the cell showed it. The platform writes it at the upper edge of the window's inside,
// which therefore begins that much lower.
void CInPlaceEdit::placeText(int leftMargin) {
    leftMargin_ = leftMargin;
    SendMessageW(handle(), EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN,
                 MAKELPARAM(leftMargin, rightMargin));
    SetWindowPos(handle(), nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CInPlaceEdit::paintFrame() const {
    const framework::WindowContext context(handle());
    RECT area{};
    GetClientRect(handle(), &area);
    area.bottom = CGridCtrl::textTop;
    FillRect(context.get(), &area, GetSysColorBrush(COLOR_WINDOW));
}

void CInPlaceEdit::closeWindow() {
    SendMessageW(handle(), WM_CLOSE, 0, 0);
}

LRESULT CInPlaceEdit::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto keep = shared_from_this();
    switch (message) {
        // All keys, also those that dialogs take for their buttons.
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_NCCALCSIZE: {
            const LRESULT result = defaultHandling(message, wParam, lParam);
            reinterpret_cast<RECT*>(lParam)->top += CGridCtrl::textTop;  // whatever else follows it
            return result;
        }
        case WM_NCPAINT: paintFrame(); return 0;
        case WM_NCHITTEST: return HTCLIENT;
        case WM_KEYDOWN:
            if (!leavesBy(static_cast<UINT>(wParam)))
                break;
            leave(static_cast<UINT>(wParam));
            return 0;
        case WM_CHAR:
        case WM_IME_CHAR: return onChar(wParam, lParam);
        case WM_SYSKEYDOWN: dropSystemCharacter(handle()); break;
        case WM_SYSCHAR: return 0;
        case WM_KILLFOCUS: {
            const LRESULT result = defaultHandling(message, wParam, lParam);
            endEdit();
            return result;
        }
        case WM_CLOSE:
            handFocusBack();
            if (handle())
                DestroyWindow(handle());
            return 0;
        default: break;
    }
    return defaultHandling(message, wParam, lParam);
}

LRESULT CInPlaceEdit::onChar(WPARAM character, LPARAM data) {
    switch (character) {
        case VK_ESCAPE: setText(initText_); [[fallthrough]];
        case VK_TAB:
        case VK_RETURN: leave(static_cast<UINT>(character)); return 0;
        default: break;
    }
    // Input methods' characters in the same way and at once: the platform would post them, and characters
    // that follow would overtake them.
    const LRESULT result = defaultHandling(WM_CHAR, character, data);
    if (handle())
        fitWidth();
    return result;
}

// The cell's width, or more for a longer text, as far as the grid goes.
void CInPlaceEdit::fitWidth() {
    const std::wstring measured = text() + L"  ";
    SIZE size{};
    {
        const framework::ClientContext context(handle());
        const framework::Selected font(context.get(),
                                       reinterpret_cast<HFONT>(SendMessageW(handle(), WM_GETFONT, 0, 0)));
        GetTextExtentPoint32W(context.get(), measured.c_str(), static_cast<int>(measured.size()), &size);
    }
    RECT client{};
    GetClientRect(gridWindow(), &client);
    const LONG needed = leftMargin_ + size.cx + rightMargin;
    const LONG right = std::max(rect_.right, std::min(rect_.left + needed, client.right));
    SetWindowPos(handle(), nullptr, 0, 0, right - rect_.left, rect_.bottom - rect_.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace tessary
