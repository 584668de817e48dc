#pragma once

// Handles as hexadecimal texts.

#include <string>
#include <string_view>

#include "host/api/database_ids.h"

namespace drafthost {

// Upper case, without leading zeros; "0" for null.
std::wstring handleText(AcDbHandle handle);

// Null for texts that are no hexadecimal number of at most 16 digits, and for a null pointer.
AcDbHandle parseHandle(std::wstring_view text);
inline AcDbHandle parseHandle(const wchar_t* text) {
    return text ? parseHandle(std::wstring_view(text)) : AcDbHandle();
}

}  // namespace drafthost
