#include "host/editor/formatted_text.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <limits>

namespace drafthost::editor {

namespace {

// Every argument fills one, whatever its type.
constexpr std::size_t kArgumentSize = 8;
// Of a text that a directive prints, and of all together before the rest stays as it is written.
constexpr std::size_t kLargest = 64 * 1024 * 1024;
constexpr int kWidest = 0xFFFF;
constexpr std::size_t kWholeText = std::numeric_limits<std::size_t>::max();

constexpr std::wstring_view kIntegers = L"diouxXcCp";
constexpr std::wstring_view kReals = L"aAeEfFgG";

struct Directive {
    std::wstring text;  // with numbers in the places of *
    std::wstring sizes;
    int width = 0;
    int precision = -1;  // none
    wchar_t type = 0;    // null at the end of the format
};

bool isOneOf(std::wstring_view set, wchar_t character) {
    return character != 0 && set.find(character) != std::wstring_view::npos;
}

// The arguments of a call, as far as there is a stack that they can lie on.
class ArgumentReader {
public:
    explicit ArgumentReader(va_list arguments) : place_(arguments) {}

    bool atEnd() const {
        const auto* const base =
            static_cast<const char*>(reinterpret_cast<const NT_TIB*>(NtCurrentTeb())->StackBase);
        return static_cast<std::size_t>(base - place_) < kArgumentSize;
    }

    template <class Value>
    Value next() {
        static_assert(sizeof(Value) <= kArgumentSize);
        Value value = {};
        if (!atEnd()) {
            std::memcpy(&value, place_, sizeof(Value));
            place_ += kArgumentSize;
        }
        return value;
    }

private:
    const char* place_;
};

// A width or a precision: digits, or * for an argument.
int takeNumber(const wchar_t*& place, std::wstring& text, ArgumentReader& arguments) {
    if (*place == L'*') {
        ++place;
        const int number = arguments.next<int>();
        text += std::to_wstring(number);
        return number;
    }
    const wchar_t* const begin = place;
    while (std::iswdigit(*place))
        ++place;
    text.append(begin, place);
    return static_cast<int>(std::min(std::wcstol(begin, nullptr, 10), 1L << 30));
}

// Reads what follows a %.
Directive takeDirective(const wchar_t*& place, ArgumentReader& arguments) {
    Directive directive;
    directive.text = L"%";
    while (isOneOf(L"-+ #0", *place))
        directive.text += *place++;
    directive.width = takeNumber(place, directive.text, arguments);
    if (*place == L'.') {
        directive.text += *place++;
        directive.precision = takeNumber(place, directive.text, arguments);
    }
    while (isOneOf(L"hlLwIjzt", *place)) {
        directive.sizes += *place++;
        if (directive.sizes.back() == L'I' && std::iswdigit(place[0]) && std::iswdigit(place[1])) {
            directive.sizes.append(place, 2);
            place += 2;
        }
    }
    directive.type = *place;
    if (*place)
        ++place;
    directive.text += directive.sizes;
    if (directive.type)
        directive.text += directive.type;
    return directive;
}

// The end of the readable memory at an address; the address itself when it cannot be read.
const char* readableEnd(const char* address) {
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof(region)) == 0)
        return address;
    constexpr DWORD kUnreadable = PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE;
    if (region.State != MEM_COMMIT || (region.Protect & kUnreadable) != 0)
        return address;
    return static_cast<const char*>(region.BaseAddress) + region.RegionSize;
}

// Whether a text of at most that many characters can be read to its end.
template <class Character>
bool isReadable(const void* text, std::size_t limit) {
    const char* place = static_cast<const char*>(text);
    const char* end = place;
    for (std::size_t count = 0; count < limit; ++count, place += sizeof(Character)) {
        while (static_cast<std::size_t>(end - place) < sizeof(Character)) {
            const char* const further = readableEnd(end);
            if (further == end)
                return false;
            end = further;
        }
        Character character;
        std::memcpy(&character, place, sizeof(character));
        if (character == 0)
            return true;
    }
    return true;
}

bool isNarrow(const Directive& directive) {
    const bool isShort = directive.sizes == L"h";
    const bool isLong = directive.sizes == L"l" || directive.sizes == L"w";
    return directive.type == L's' ? isShort : !isLong;
}

const void* printableText(const Directive& directive, const void* text) {
    const std::size_t limit =
        directive.precision < 0 ? kWholeText : static_cast<std::size_t>(directive.precision);
    if (isNarrow(directive))
        return text && isReadable<char>(text, limit) ? text : "(null)";
    return text && isReadable<wchar_t>(text, limit) ? text : L"(null)";
}

bool isTooWide(const Directive& directive) {
    return directive.width > kWidest || directive.width < -kWidest ||
           (directive.precision > kWidest && !isOneOf(L"sS", directive.type));
}

// One value through the platform's own formatting. The length cannot be asked for: the buffer grows until the
// text fits.
template <class Value>
void appendFormatted(std::wstring& out, const Directive& directive, Value value) {
    for (std::wstring text(128, L'\0'); text.size() <= kLargest; text.resize(text.size() * 4)) {
        const int length = _snwprintf(text.data(), text.size(), directive.text.c_str(), value);
        if (length >= 0 && static_cast<std::size_t>(length) < text.size()) {
            out.append(text, 0, static_cast<std::size_t>(length));
            return;
        }
    }
    out += directive.text;
}

void appendDirective(std::wstring& out, const Directive& directive, ArgumentReader& arguments) {
    const wchar_t type = directive.type;
    const bool takesValue = isOneOf(kIntegers, type) || isOneOf(kReals, type) || isOneOf(L"sSn", type);
    if (takesValue && (arguments.atEnd() || isTooWide(directive))) {
        out += directive.text;
    } else if (isOneOf(kIntegers, type)) {
        appendFormatted(out, directive, arguments.next<std::int64_t>());
    } else if (isOneOf(kReals, type)) {
        appendFormatted(out, directive, arguments.next<double>());
    } else if (isOneOf(L"sS", type)) {
        appendFormatted(out, directive, printableText(directive, arguments.next<const void*>()));
    } else if (type == L'n') {
        arguments.next<void*>();
    } else if (type) {
        out += type;
    }
}

}  // namespace

std::wstring formatted(const wchar_t* format, va_list arguments) {
    ArgumentReader reader(arguments);
    std::wstring out;
    for (const wchar_t* place = format; *place;) {
        const wchar_t* const percent = std::wcschr(place, L'%');
        if (!percent || out.size() > kLargest) {
            out += place;
            break;
        }
        out.append(place, percent);
        place = percent + 1;
        appendDirective(out, takeDirective(place, reader), reader);
    }
    return out;
}

}  // namespace drafthost::editor
