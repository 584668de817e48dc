#include "host/editor/key_names.h"

#include <windows.h>

#include <cwctype>

#include "host/database/names.h"

namespace drafthost::editor {

namespace {

struct NamedKey {
    const wchar_t* name;
    unsigned virtualKey;
    bool extended = false;
};
constexpr NamedKey kKeys[] = {
    {L"Tab", VK_TAB},
    {L"Return", VK_RETURN},
    {L"Enter", VK_RETURN},
    {L"Escape", VK_ESCAPE},
    {L"Space", VK_SPACE},
    {L"Backspace", VK_BACK},
    {L"Delete", VK_DELETE, true},
    {L"Insert", VK_INSERT, true},
    {L"Home", VK_HOME, true},
    {L"End", VK_END, true},
    {L"PageUp", VK_PRIOR, true},
    {L"PageDown", VK_NEXT, true},
    {L"Up", VK_UP, true},
    {L"Down", VK_DOWN, true},
    {L"Left", VK_LEFT, true},
    {L"Right", VK_RIGHT, true},
    {L"Plus", VK_ADD},
    {L"Minus", VK_SUBTRACT},
    {L"Multiply", VK_MULTIPLY},
};

// F1 to F24; 0 for something else.
unsigned functionKey(std::wstring_view name) {
    if (name.size() < 2 || name.size() > 3 || (name[0] != L'F' && name[0] != L'f'))
        return 0;
    unsigned number = 0;
    for (const wchar_t digit : name.substr(1)) {
        if (digit < L'0' || digit > L'9')
            return 0;
        number = number * 10 + static_cast<unsigned>(digit - L'0');
    }
    return number >= 1 && number <= 24 ? VK_F1 + number - 1 : 0;
}

bool plainKey(std::wstring_view name, KeyStroke& key) {
    for (const NamedKey& row : kKeys) {
        if (equalNames(name, row.name)) {
            key.virtualKey = row.virtualKey;
            key.extended = row.extended;
            return true;
        }
    }
    key.virtualKey = functionKey(name);
    // The keys of letters and digits have their capitals' codes.
    if (name.size() == 1 && name[0] < 128 && std::iswalnum(name[0]))
        key.virtualKey = static_cast<unsigned>(std::towupper(name[0]));
    return key.virtualKey != 0;
}

}  // namespace

std::optional<KeyStroke> parseKey(std::wstring_view name) {
    KeyStroke key;
    for (std::size_t plus = name.find(L'+'); plus != std::wstring_view::npos; plus = name.find(L'+')) {
        const std::wstring_view modifier = name.substr(0, plus);
        if (equalNames(modifier, L"Control") || equalNames(modifier, L"Ctrl")) {
            key.control = true;
        } else if (equalNames(modifier, L"Shift")) {
            key.shift = true;
        } else if (equalNames(modifier, L"Alt")) {
            key.alt = true;
        } else {
            return std::nullopt;
        }
        name.remove_prefix(plus + 1);
    }
    return plainKey(name, key) ? std::optional(key) : std::nullopt;
}

}  // namespace drafthost::editor
