#include "module/grid/in_place_list.h"

#include "framework/gdi.h"
#include "module/grid/grid_control.h"

#include <algorithm>

namespace tessary {

namespace {

constexpr int fieldId = 1001;  // of a combo box's edit field, on every version of the platform
constexpr int mostRows = 15;
constexpr int widestList = 400;  // pixels

int indexOf(const std::vector<std::wstring>& choices, const std::wstring& text) {
    const auto found = std::ranges::find(choices, text);
    return found == choices.end() ? -1 : static_cast<int>(found - choices.begin());
}

int widthOf(HDC context, const std::wstring& text) {
    SIZE size{};
    GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
}

bool endsOnRelease(WPARAM key) {
    return key == VK_ESCAPE || key == VK_TAB || key == VK_RETURN;
}

}  // namespace

CInPlaceListForGridCell::CInPlaceListForGridCell(CGridCtrl& grid, DWORD style, int row, int column,
                                                 const std::vector<std::wstring>& choices,
                                                 const std::wstring& initialText, UINT firstKey)
    : InPlaceEditor(grid, row, column, initialText, firstKey), edit_(*this), style_(style), choices_(choices),
      initialChoice_(indexOf(choices, initialText)), releasePending_(endsOnRelease(firstKey)) {}

CInPlaceListForGridCell* CInPlaceListForGridCell::open(CGridCtrl& grid, const RECT& area, DWORD style,
                                                       int controlId, int row, int column,
                                                       const std::vector<std::wstring>& choices,
                                                       const std::wstring& initialText, UINT firstKey) {
    const std::shared_ptr<CInPlaceListForGridCell> list(
        new CInPlaceListForGridCell(grid, style, row, column, choices, initialText, firstKey));
    list->rows_ = std::min(static_cast<int>(choices.size()) + 1, mostRows);
    RECT client{};
    GetClientRect(grid.handle(), &client);
    DWORD windowStyle = style | WS_CHILD | WS_VISIBLE | WS_VSCROLL | CBS_AUTOHSCROLL | CBS_NOINTEGRALHEIGHT;
    // A list without a field has no other way to show a text that is none of its choices.
    if (list->isChoiceOnly() && list->initialChoice_ < 0)
        windowStyle |= CBS_OWNERDRAWFIXED | CBS_HASSTRINGS;
    if (!list->createChild(L"COMBOBOX", L"", windowStyle, 0, list->placeOver(area, client), grid.handle(),
                           controlId))
        return nullptr;
    list->holdItself();
    grid.list_ = list.get();
    list->fill(grid.font(), area.bottom - area.top);
    list->dropDown();
    const HWND field = list->field();
    SetFocus(field);
    // Whoever lost the focus may have had it closed, or have taken the focus back.
    if (list->handle() && GetFocus() != field)
        list->discard();
    if (!list->handle())
        return nullptr;
    if (!list->isChoiceOnly())
        startTyping(field, firstKey, false);
    return list.get();
}

// The combo box's rectangle includes the list that drops down.
RECT CInPlaceListForGridCell::placeOver(const RECT& cell, const RECT& client) const {
    const int up = isChoiceOnly() ? 3 : 2;
    const int left = isChoiceOnly() ? 1 : 3;
    RECT area{cell.left - left, cell.top - up, cell.right + 1, cell.bottom - up};
    area.bottom += rows_ * (cell.bottom - cell.top);
    if (!isChoiceOnly() && area.bottom > client.bottom)
        OffsetRect(&area, 0, client.bottom - area.bottom);
    area.right = std::min(area.right, client.right);
    return area;
}

void CInPlaceListForGridCell::fill(HFONT font, int cellHeight) {
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    GetComboBoxInfo(handle(), &parts);
    // There may be tens of thousands.
    SendMessageW(parts.hwndList, WM_SETREDRAW, FALSE, 0);
    SendMessageW(handle(), CB_INITSTORAGE, choices_.size(), 0);
    for (const std::wstring& choice : choices_)
        SendMessageW(handle(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(choice.c_str()));
    SendMessageW(parts.hwndList, WM_SETREDRAW, TRUE, 0);
    SendMessageW(handle(), WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SendMessageW(handle(), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), cellHeight);
    SendMessageW(parts.hwndList, LB_SETITEMHEIGHT, 0, cellHeight);
    listWidth_ = measuredListWidth();
    SendMessageW(handle(), CB_SETDROPPEDWIDTH, static_cast<WPARAM>(listWidth_), 0);
    SendMessageW(handle(), CB_SETHORIZONTALEXTENT, 0, 0);
    list_.attach(parts.hwndList);
    list_.keepOpenHeight(handle(), rows_ * cellHeight);
    if (!isChoiceOnly())
        edit_.attach(GetDlgItem(handle(), fieldId));
    showText();
}

void CInPlaceListForGridCell::dropDown() {
    SendMessageW(handle(), CB_SHOWDROPDOWN, TRUE, 0);
    // A list that opens completes the field's text to a choice that begins with it. The cell's text stays.
    showText();
    if (firstKey_ == VK_LBUTTON)
        list_.ignoreRelease();
}

void CInPlaceListForGridCell::showText() {
    SendMessageW(handle(), CB_SETCURSEL, static_cast<WPARAM>(initialChoice_), 0);
    if (initialChoice_ >= 0)
        return;
    if (isChoiceOnly())
        InvalidateRect(handle(), nullptr, TRUE);
    else
        SetWindowTextW(edit_.handle(), initText_.c_str());
}

int CInPlaceListForGridCell::measuredListWidth() const {
    const framework::ClientContext context(handle());
    const framework::Selected font(context.get(),
                                   reinterpret_cast<HFONT>(SendMessageW(handle(), WM_GETFONT, 0, 0)));
    int widest = 0;
    for (const std::wstring& choice : choices_) {
        widest = std::max(widest, widthOf(context.get(), choice));
        if (widest >= widestList)
            break;
    }
    return std::min(widest + GetSystemMetrics(SM_CXVSCROLL) + widthOf(context.get(), L"0"), widestList);
}

bool CInPlaceListForGridCell::isDropped() const {
    return SendMessageW(handle(), CB_GETDROPPEDSTATE, 0, 0) != 0;
}

bool CInPlaceListForGridCell::isPart(HWND window) const {
    return window && (window == handle() || window == list_.handle() || window == edit_.handle());
}

HWND CInPlaceListForGridCell::field() const {
    return isChoiceOnly() ? handle() : edit_.handle();
}

void CInPlaceListForGridCell::setResultText(const std::wstring& text) {
    hasResultText_ = true;
    resultText_ = text;
}

std::wstring CInPlaceListForGridCell::result() {
    picked_ = false;
    return hasResultText_ ? resultText_ : text();
}

// The platform's combo box still works on its own notification when an end comes out of a pick: the window
// goes once that is over.
void CInPlaceListForGridCell::closeWindow() {
    PostMessageW(handle(), WM_CLOSE, 0, 0);
}

void CInPlaceListForGridCell::notified(int code) {
    const auto keep = shared_from_this();
    switch (code) {
        case CBN_DROPDOWN:
            SendMessageW(handle(), CB_SETDROPPEDWIDTH, static_cast<WPARAM>(listWidth_), 0);
            break;
        case CBN_SELCHANGE: picked(); break;
        case CBN_SELENDCANCEL: cancelled_ = true; break;
        case CBN_CLOSEUP:
            if (std::exchange(cancelled_, false) && isChoiceOnly())
                endEdit();
            break;
        default: break;
    }
}

void CInPlaceListForGridCell::picked() {
    const auto index = SendMessageW(handle(), CB_GETCURSEL, 0, 0);
    if (isEnded() || index < 0 || index >= static_cast<LRESULT>(choices_.size()))
        return;
    const std::wstring& text = choices_[static_cast<std::size_t>(index)];
    // The platform may put the choice into the field only after this notification.
    if (!isChoiceOnly() && edit_.text() != text)
        edit_.setText(text);
    inPick_ = picked_ = true;
    if (CGridCtrl* const owner = grid())
        owner->picked(row_, column_, text);
    inPick_ = false;
}

LRESULT CInPlaceListForGridCell::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto keep = shared_from_this();
    switch (message) {
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KEYDOWN: return onKeyDown(wParam, lParam);
        case WM_KEYUP: return onKeyUp(wParam, lParam);
        case WM_KILLFOCUS: return onKillFocus(reinterpret_cast<HWND>(wParam), lParam);
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH: return onGetText(message, wParam, lParam);
        case WM_CLOSE:
            handFocusBack();
            if (handle())
                DestroyWindow(handle());
            return 0;
        default: return defaultHandling(message, wParam, lParam);
    }
}

LRESULT CInPlaceListForGridCell::onKeyDown(WPARAM key, LPARAM data) {
    if (key == firstKey_)
        releasePending_ = false;
    if (leavesBy(static_cast<UINT>(key))) {
        leave(static_cast<UINT>(key));
        return 0;
    }
    // Escape closes an open list first, which already ends the editing of a list without a field.
    if (key == VK_ESCAPE && isChoiceOnly() && isDropped()) {
        showText();
        lastChar_ = VK_ESCAPE;
    }
    return defaultHandling(WM_KEYDOWN, key, data);
}

LRESULT CInPlaceListForGridCell::onKeyUp(WPARAM key, LPARAM data) {
    if (!endsOnRelease(key))
        return defaultHandling(WM_KEYUP, key, data);
    if (key == firstKey_ && std::exchange(releasePending_, false))
        return 0;
    if (key == VK_ESCAPE)
        showText();
    leave(static_cast<UINT>(key));
    return 0;
}

LRESULT CInPlaceListForGridCell::onKillFocus(HWND next, LPARAM lParam) {
    const LRESULT result = defaultHandling(WM_KILLFOCUS, reinterpret_cast<WPARAM>(next), lParam);
    if (handle() && isChoiceOnly() && !isPart(next))
        endEdit();
    return result;
}

// A list without a field has no text but its choice's.
LRESULT CInPlaceListForGridCell::onGetText(UINT message, WPARAM capacity, LPARAM buffer) {
    if (!isChoiceOnly() || SendMessageW(handle(), CB_GETCURSEL, 0, 0) >= 0)
        return defaultHandling(message, capacity, buffer);
    if (message == WM_GETTEXTLENGTH)
        return static_cast<LRESULT>(initText_.size());
    if (capacity == 0)
        return 0;
    const std::size_t count = initText_.copy(reinterpret_cast<wchar_t*>(buffer), capacity - 1);
    reinterpret_cast<wchar_t*>(buffer)[count] = L'\0';
    return static_cast<LRESULT>(count);
}

void CInPlaceListForGridCell::draw(const DRAWITEMSTRUCT& item) const {
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    FillRect(item.hDC, &item.rcItem, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    const std::wstring& text = item.itemID < choices_.size() ? choices_[item.itemID] : initText_;
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    RECT area = item.rcItem;
    InflateRect(&area, -2, 0);
    DrawTextW(item.hDC, text.c_str(), static_cast<int>(text.size()), &area,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    if (item.itemState & ODS_FOCUS)
        DrawFocusRect(item.hDC, &item.rcItem);
}

LRESULT CComboEditForGridCell::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto keep = owner_.shared_from_this();
    switch (message) {
        case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
            if (wParam == owner_.firstKey_)
                owner_.releasePending_ = false;
            if (wParam >= VK_PRIOR && wParam <= VK_DOWN && GetKeyState(VK_CONTROL) < 0 &&
                owner_.leavesBy(static_cast<UINT>(wParam)))
                return SendMessageW(owner_.handle(), message, wParam, lParam);
            break;
        case WM_KEYUP:
            if (endsOnRelease(wParam))
                return SendMessageW(owner_.handle(), message, wParam, lParam);
            break;
        case WM_CHAR:
        case WM_IME_CHAR:
            // The field has no use for these but to close the list; it would beep.
            if (wParam == VK_TAB || (endsOnRelease(wParam) && !owner_.isDropped()))
                return 0;
            return defaultHandling(WM_CHAR, wParam, lParam);
        case WM_SYSKEYDOWN: dropSystemCharacter(handle()); break;
        case WM_SYSCHAR: return 0;
        case WM_KILLFOCUS: {
            const bool stays = owner_.isPart(reinterpret_cast<HWND>(wParam));
            const LRESULT result = defaultHandling(message, wParam, lParam);
            if (!stays && !owner_.inPick_)
                owner_.endEdit();
            return result;
        }
        default: break;
    }
    return defaultHandling(message, wParam, lParam);
}

LRESULT DropDownListForGridCell::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_LBUTTONDOWN: ignoresRelease_ = false; break;
        case WM_LBUTTONUP:
            if (std::exchange(ignoresRelease_, false))
                return 0;
            break;
        case WM_WINDOWPOSCHANGING: keepHeight(*reinterpret_cast<WINDOWPOS*>(lParam)); break;
        default: break;
    }
    return defaultHandling(message, wParam, lParam);
}

// The platform fits the list to its choices, or to as many as it likes to show.
void DropDownListForGridCell::keepHeight(WINDOWPOS& place) const {
    if (place.flags & SWP_NOSIZE)
        return;
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(handle(), GWL_STYLE));
    const auto extended = static_cast<DWORD>(GetWindowLongPtrW(handle(), GWL_EXSTYLE));
    RECT outer{0, 0, 0, height_};
    AdjustWindowRectEx(&outer, style, FALSE, extended);
    const int height = outer.bottom - outer.top;
    RECT field{};
    GetWindowRect(combo_, &field);
    // Near the lower end of the screen the list opens above its field.
    if (!(place.flags & SWP_NOMOVE) && place.y < field.top)
        place.y -= height - place.cy;
    place.cy = height;
}

}  // namespace tessary
