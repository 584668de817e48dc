#include "host/editor/color_names.h"

#include <algorithm>
#include <iterator>

#include "host/database/names.h"
#include "host/editor/typed_text.h"

namespace drafthost::editor {

namespace {

constexpr const wchar_t* kNames[] = {L"ByBlock", L"red",  L"yellow",  L"green",
                                     L"cyan",    L"blue", L"magenta", L"white"};
constexpr const wchar_t* kByLayerName = L"ByLayer";

}  // namespace

std::optional<int> colorIndex(std::wstring_view text) {
    const auto named = std::find_if(std::begin(kNames), std::end(kNames),
                                    [&](const wchar_t* name) { return equalNames(text, name); });
    if (named != std::end(kNames))
        return static_cast<int>(named - std::begin(kNames));
    if (equalNames(text, kByLayerName))
        return kByLayer;
    const auto number = typedInteger(text);
    return number && *number >= kByBlock && *number <= kByLayer ? number : std::nullopt;
}

std::wstring colorText(int index) {
    if (index >= 0 && index < static_cast<int>(std::size(kNames)))
        return kNames[index];
    return index == kByLayer ? kByLayerName : std::to_wstring(index);
}

}  // namespace drafthost::editor
