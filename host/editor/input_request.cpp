#include "host/editor/input_request.h"

#include <algorithm>
#include <cwctype>
#include <sstream>

namespace drafthost::editor {

namespace {

std::wstring upper(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](wchar_t c) { return std::towupper(c); });
    return result;
}

// First run of characters that are not small letters: the part that must be typed.
std::wstring capitalsOf(std::wstring_view name) {
    const auto isCapital = [](wchar_t c) { return !std::iswlower(c); };
    const auto first = std::find_if(name.begin(), name.end(), isCapital);
    const auto last = std::find_if_not(first, name.end(), isCapital);
    return std::wstring(first, last);
}

// Whether upper-case `typed` is the name, or begins with the abbreviation and goes on as the name does from
// there.
bool abbreviates(const std::wstring& typed, const std::wstring& name, const std::wstring& abbreviation) {
    const std::wstring whole = upper(name);
    if (typed == whole)
        return true;
    const std::wstring least = upper(abbreviation);
    if (least.empty() || !typed.starts_with(least))
        return false;
    const std::size_t start = whole.find(least);
    return start == std::wstring::npos ? typed == least : whole.substr(start).starts_with(typed);
}

constexpr const wchar_t* kNames[] = {L"a point",   L"a corner point", L"a distance",  L"an angle",
                                     L"an angle",  L"an integer",     L"a number",    L"a text",
                                     L"a keyword", L"an entity pick", L"a selection", L"a cursor position"};

// With and without keywords; null: the request accepts any text.
struct Complaint {
    const wchar_t* plain;
    const wchar_t* withKeywords;
};
constexpr Complaint kComplaints[] = {
    {L"Invalid point.", L"Point or option keyword required."},
    {L"Invalid point.", L"Point or option keyword required."},
    {L"Requires numeric distance or two points.",
     L"Requires numeric distance, two points, or option keyword."},
    {L"Requires valid numeric angle or two points.",
     L"Requires valid numeric angle, two points, or option keyword."},
    {L"Requires valid numeric angle or two points.",
     L"Requires valid numeric angle, two points, or option keyword."},
    {L"Requires an integer value.", L"Requires an integer value or option keyword."},
    {L"Requires numeric value.", L"Requires numeric value or option keyword."},
    {L"Requires a text.", L"Requires a text."},
    {L"Invalid option keyword.", L"Invalid option keyword."},
    {L"Invalid selection.", L"Invalid selection or option keyword."},
    {L"Expects a point or Window/Last/Crossing/ALL/Previous.",
     L"Expects a point or Window/Last/Crossing/ALL/Previous."},
    {L"Invalid input.", L"Invalid input."},
};

}  // namespace

Keywords::Keywords(std::wstring_view list) {
    std::wistringstream words{std::wstring(list)};
    std::size_t globals = std::wstring::npos;  // entries before the first underscore
    std::size_t global = 0;
    for (std::wstring word; words >> word;) {
        if (globals == std::wstring::npos && word.size() > 1 && word[0] == L'_') {
            globals = entries_.size();
            word.erase(0, 1);
        }
        if (globals != std::wstring::npos && globals > 0) {
            if (global < globals)
                entries_[global++].result = word;
            continue;
        }
        const std::size_t comma = word.find(L',');
        const std::wstring name = word.substr(0, comma);
        if (name.empty())
            continue;
        const std::wstring abbreviation = comma == std::wstring::npos ? L"" : word.substr(comma + 1);
        entries_.push_back({name, abbreviation, name});
    }
}

std::optional<std::wstring> Keywords::match(std::wstring_view typed) const {
    if (typed.starts_with(L'_'))
        typed.remove_prefix(1);
    const std::wstring text = upper(typed);
    if (text.empty())
        return std::nullopt;
    for (const Entry& entry : entries_) {
        if (text == upper(entry.name) || text == upper(entry.result))
            return entry.result;
    }
    for (const Entry& entry : entries_) {
        const std::wstring least = entry.abbreviation.empty() ? capitalsOf(entry.name) : entry.abbreviation;
        if (abbreviates(text, entry.name, least))
            return entry.result;
    }
    return std::nullopt;
}

std::wstring Keywords::shown() const {
    std::wstring text;
    for (const Entry& entry : entries_)
        text += (text.empty() ? L"" : L"/") + entry.name;
    return text;
}

std::wstring describe(const InputRequest& request) {
    std::wstring text = kNames[static_cast<std::size_t>(request.kind)];
    if (request.keywords.empty())
        return text;
    return request.kind == InputRequest::Kind::Keyword
               ? text + L" (" + request.keywords.shown() + L")"
               : text + L" or a keyword (" + request.keywords.shown() + L")";
}

std::wstring describe(const BoxRequest& box) {
    return (box.isMessageBox ? L"a button of \"" : L"the dialog \"") + box.caption + L"\"";
}

std::wstring complaint(const InputRequest& request) {
    const Complaint& row = kComplaints[static_cast<std::size_t>(request.kind)];
    return request.keywords.empty() ? row.plain : row.withKeywords;
}

}  // namespace drafthost::editor
