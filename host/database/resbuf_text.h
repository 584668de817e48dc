#pragma once

// Texts and bytes owned by value list nodes.

#include <string_view>

#include "host/api/resbuf.h"

namespace drafthost {

// A copy released by acutDelString; null for memory exhaustion.
ACHAR* copyText(std::wstring_view text);
// Replaces what a node of a text or binary type holds. False for memory exhaustion; the node is unchanged
// then.
bool setText(resbuf& node, std::wstring_view text);
bool setBinary(resbuf& node, const std::uint8_t* bytes, std::size_t count);

}  // namespace drafthost
