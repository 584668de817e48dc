// Cut, copy and paste. Hidden columns and the rows of collapsed sections are neither copied nor pasted into:
// the drafter does not see them.

#include <algorithm>
#include <cwctype>

#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"
#include "module/grid/tabbed_text.h"

namespace tessary {

namespace {

// The clipboard while this object lives, where no other program holds it.
class Clipboard {
public:
    explicit Clipboard(HWND window) : open_(OpenClipboard(window) != FALSE) {}
    ~Clipboard() {
        if (open_)
            CloseClipboard();
    }
    Clipboard(const Clipboard&) = delete;
    Clipboard& operator=(const Clipboard&) = delete;
    explicit operator bool() const { return open_; }

private:
    bool open_;
};

// Null when there is no memory.
HGLOBAL copyOf(const std::wstring& text) {
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    if (void* const place = memory ? GlobalLock(memory) : nullptr) {
        std::memcpy(place, text.c_str(), size);
        GlobalUnlock(memory);
    }
    return memory;
}

bool putOnClipboard(HWND window, const std::wstring& text) {
    const HGLOBAL memory = copyOf(text);
    const Clipboard clipboard(window);
    // The clipboard owns the memory when it has taken it.
    if (memory && clipboard && EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, memory))
        return true;
    if (memory)
        GlobalFree(memory);
    return false;
}

// Empty when there is no text.
std::wstring textOnClipboard(HWND window) {
    const Clipboard clipboard(window);
    const HANDLE memory = clipboard ? GetClipboardData(CF_UNICODETEXT) : nullptr;
    const auto* const text = memory ? static_cast<const wchar_t*>(GlobalLock(memory)) : nullptr;
    if (!text)
        return {};
    // Another program's block need not end with a zero.
    const std::size_t most = GlobalSize(memory) / sizeof(wchar_t);
    std::wstring copy(text, wcsnlen(text, most));
    GlobalUnlock(memory);
    return copy;
}

bool equalIgnoringCase(std::wstring_view a, std::wstring_view b) {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()),
                                TRUE) == CSTR_EQUAL;
}

// Cells are edited in one line.
std::wstring inOneLine(std::wstring text) {
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return std::iswcntrl(static_cast<wint_t>(c)) != 0; }, L' ');
    return text;
}

// What a check box becomes by the text; nothing for a text that says neither.
std::optional<bool> checkedBy(std::wstring_view text) {
    if (text == L"1" || text == L"-1" || equalIgnoringCase(text, L"TRUE"))
        return true;
    if (text == L"0" || equalIgnoringCase(text, L"FALSE"))
        return false;
    return std::nullopt;
}

// The choice that the text names, exactly or but for its case; null for none.
const std::wstring* choiceNamed(const GridChoices& choices, const std::wstring& text) {
    auto found = std::find(choices.texts.begin(), choices.texts.end(), text);
    if (found == choices.texts.end()) {
        found = std::find_if(choices.texts.begin(), choices.texts.end(),
                             [&](const std::wstring& choice) { return equalIgnoringCase(choice, text); });
    }
    return found == choices.texts.end() ? nullptr : &*found;
}

}  // namespace

bool CGridCtrl::copySelection() const {
    const auto [first, last] = selectedBlock();
    TextBlock block;
    for (int row = first.row; first && row <= last.row; ++row) {
        if (!model_.isRowShown(row))
            continue;
        auto& line = block.emplace_back();
        for (int column = first.column; column <= last.column; ++column) {
            if (columnWidth(column) > 0)
                line.push_back(checkBoxAt(row, column) ? text(row, column)
                                                       : std::wstring(model_.shownText(row, column)));
        }
    }
    return !block.empty() && putOnClipboard(handle(), toTabbedText(block));
}

void CGridCtrl::cutSelection() {
    if (copySelection())
        clearSelectedCells();
}

void CGridCtrl::pasteAtFocus() {
    if (listMode_)  // the cells are only shown
        return;
    const TextBlock block = fromTabbedText(textOnClipboard(handle()));
    const bool seen = IsWindowVisible(handle());
    const std::weak_ptr<CGridCtrl*> life = self_;
    const GridPosition start = selectedBlock().first;
    int row = start.row;
    for (std::size_t i = 0; start && i < block.size(); ++i, ++row) {
        while (row < rowCount() && !model_.isRowShown(row))
            ++row;
        int column = start.column - 1;
        for (const std::wstring& text : block[i]) {
            column = columnBeside(column, 1);
            if (row >= rowCount() || column < 0)
                break;
            enterText(row, column, text);
            // The owner may have ended its dialog, or have opened an editor for a text that it does not like.
            if (life.expired() || isEditing() || (seen && !IsWindowVisible(handle())))
                return;
        }
    }
}

bool CGridCtrl::checkBoxAt(int row, int column) const {
    const CGridCellBase* const asked = cell(row, column);
    return asked && asked->kind() == GridColumnType::checkBox;
}

bool CGridCtrl::enterCheck(int row, int column, std::wstring_view text) {
    const std::optional<bool> wanted = checkedBy(text);
    if (!wanted || !canToggle({row, column}))
        return false;
    const bool checked = this->text(row, column) != L"0";
    if (checked != *wanted)
        toggleCheckBox(row, column);
    return true;
}

bool CGridCtrl::enterText(int row, int column, const std::wstring& typed) {
    if (checkBoxAt(row, column))
        return enterCheck(row, column, typed);
    const std::weak_ptr<CGridCtrl*> life = self_;
    endEditing();
    if (life.expired() || isEditing() || !canEdit(row, column))
        return false;
    std::wstring text = inOneLine(typed);
    const CGridCellBase& edited = *cell(row, column);
    if (edited.kind() == GridColumnType::choiceDropDown) {
        const std::wstring* const choice = edited.choices() ? choiceNamed(*edited.choices(), text) : nullptr;
        if (!choice)
            return false;
        text = *choice;
    }
    const LRESULT answer = notifyOwner(gridBeginEdit, row, column);
    if (life.expired() || !handle() || answer == gridRefuse || isEditing() || !canEdit(row, column))
        return false;
    editorEnded({row, column}, text, 0);
    return true;
}

}  // namespace tessary
