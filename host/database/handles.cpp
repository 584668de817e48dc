#include "host/database/handles.h"

#include <algorithm>

namespace drafthost {

std::wstring handleText(AcDbHandle handle) {
    std::wstring text;
    std::uint64_t rest = handle.value();
    do {
        text.push_back(L"0123456789ABCDEF"[rest & 15]);
        rest >>= 4;
    } while (rest != 0);
    std::ranges::reverse(text);
    return text;
}

AcDbHandle parseHandle(std::wstring_view text) {
    if (text.empty() || text.size() > 16)
        return {};
    std::uint64_t value = 0;
    for (const wchar_t c : text) {
        int digit = 0;
        if (c >= L'0' && c <= L'9')
            digit = c - L'0';
        else if (c >= L'A' && c <= L'F')
            digit = c - L'A' + 10;
        else if (c >= L'a' && c <= L'f')
            digit = c - L'a' + 10;
        else
            return {};
        value = value << 4 | static_cast<std::uint64_t>(digit);
    }
    return AcDbHandle(value);
}

}  // namespace drafthost
