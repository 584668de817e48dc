#pragma once

// Ownership of the host's value lists and texts.

#include "host/api/resbuf.h"

#include <memory>
#include <string>

namespace tessary {

struct ReleaseValueList {
    void operator()(resbuf* list) const { acutRelRb(list); }
};
// Releases the whole list, with its texts.
using ValueList = std::unique_ptr<resbuf, ReleaseValueList>;

// The list, or std::bad_alloc when the host had no memory for it (null).
ValueList ownValueList(resbuf* list);

// Last node of a list that is not empty.
resbuf* lastNode(resbuf* list);

// Copies a text that the host hands over, and releases it. Null gives the empty text.
std::wstring takeHostText(ACHAR* text);

}  // namespace tessary
