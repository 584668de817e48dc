#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// By character codes, letters without regard to their case, in the same way for drafters of every language.
inline bool equalIgnoringCase(const std::wstring& one, const std::wstring& other) {
    return CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace tessary
