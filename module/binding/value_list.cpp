#include "module/binding/value_list.h"

#include <new>

namespace tessary {

ValueList ownValueList(resbuf* list) {
    if (!list) {
        throw std::bad_alloc();
    }
    return ValueList(list);
}

resbuf* lastNode(resbuf* list) {
    while (list->rbnext) {
        list = list->rbnext;
    }
    return list;
}

std::wstring takeHostText(ACHAR* text) {
    if (!text) {
        return {};
    }
    const auto release = [](ACHAR* owned) { acutDelString(owned); };
    const std::unique_ptr<ACHAR, decltype(release)> owner(text, release);
    return std::wstring(text);
}

}  // namespace tessary
