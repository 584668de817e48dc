#include "host/editor/typed_text.h"

#include <cmath>
#include <cwchar>
#include <numbers>
#include <string>
#include <vector>

#include "host/lisp/number_format.h"

namespace drafthost::editor {

namespace {

constexpr double kRadiansInDegree = std::numbers::pi / 180;

std::wstring trimmed(std::wstring_view text) {
    const std::size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring_view::npos)
        return {};
    return std::wstring(text.substr(first, text.find_last_not_of(L" \t") - first + 1));
}

// A number at the start of the text, which is shortened to what follows.
std::optional<double> leadingReal(std::wstring& text) {
    // wcstod would also read "inf", "nan" and hexadecimal numbers.
    if (text.empty() || text.find_first_of(L"0123456789.+-") != 0 ||
        text.find_first_of(L"xX") != std::wstring::npos) {
        return std::nullopt;
    }
    wchar_t* end = nullptr;
    const double value = std::wcstod(text.c_str(), &end);
    if (end == text.c_str() || !std::isfinite(value))
        return std::nullopt;
    text.erase(0, static_cast<std::size_t>(end - text.c_str()));
    return value;
}

std::optional<std::vector<double>> separatedLengths(const std::wstring& text, LengthUnits units) {
    std::vector<double> numbers;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(L',', start);
        const auto number = typedLength(std::wstring_view(text).substr(start, comma - start), units);
        if (!number)
            return std::nullopt;
        numbers.push_back(*number);
        if (comma == std::wstring::npos)
            return numbers;
        start = comma + 1;
    }
}

std::optional<TypedPoint> polarPoint(const std::wstring& text, std::size_t bracket, LengthUnits units) {
    const auto length = typedLength(std::wstring_view(text).substr(0, bracket), units);
    const auto angle = typedAngle(std::wstring_view(text).substr(bracket + 1));
    if (!length || !angle)
        return std::nullopt;
    return TypedPoint{{*length * std::cos(*angle), *length * std::sin(*angle), 0}, 2};
}

std::optional<TypedPoint> coordinates(const std::wstring& text, LengthUnits units) {
    if (const std::size_t bracket = text.find(L'<'); bracket != std::wstring::npos)
        return polarPoint(text, bracket, units);
    const auto numbers = separatedLengths(text, units);
    if (!numbers || numbers->size() < 2 || numbers->size() > 3)
        return std::nullopt;
    const bool flat = numbers->size() == 2;
    return TypedPoint{{(*numbers)[0], (*numbers)[1], flat ? 0 : (*numbers)[2]}, flat ? 2 : 3};
}

}  // namespace

std::optional<double> typedReal(std::wstring_view text) {
    std::wstring rest = trimmed(text);
    const auto value = leadingReal(rest);
    return rest.empty() ? value : std::nullopt;
}

std::optional<double> typedLength(std::wstring_view text, LengthUnits units) {
    const std::wstring rest = trimmed(text);
    const bool marks = rest.find_first_of(L"'\"") != std::wstring::npos;
    if (marks && units != LengthUnits::FeetAndInches)
        return std::nullopt;
    if (!marks && rest.find(L'/') == std::wstring::npos)
        return typedReal(rest);
    return lisp::parseLength(rest);
}

std::optional<int> typedInteger(std::wstring_view text) {
    const std::wstring digits = trimmed(text);
    if (digits.empty() ||
        digits.find_first_not_of(L"0123456789", digits.find_first_of(L"+-") == 0) != std::wstring::npos) {
        return std::nullopt;
    }
    wchar_t* end = nullptr;
    errno = 0;
    const long value = std::wcstol(digits.c_str(), &end, 10);
    if (end == digits.c_str() || *end != 0 || errno != 0)
        return std::nullopt;
    return static_cast<int>(value);
}

std::optional<double> typedAngle(std::wstring_view text) {
    std::wstring rest = trimmed(text);
    const auto first = leadingReal(rest);
    if (!first)
        return std::nullopt;
    if (rest.empty())
        return *first * kRadiansInDegree;
    if (rest == L"r" || rest == L"R")
        return *first;
    if (rest == L"g" || rest == L"G")
        return *first * std::numbers::pi / 200;
    if (rest[0] != L'd' && rest[0] != L'D')
        return std::nullopt;
    double degrees = std::abs(*first);
    rest.erase(0, 1);
    for (const auto& [mark, fraction] : {std::pair(L'\'', 60.0), std::pair(L'"', 3600.0)}) {
        if (rest.empty())
            break;
        const auto part = leadingReal(rest);
        if (!part || rest.empty() || rest[0] != mark)
            return std::nullopt;
        degrees += *part / fraction;
        rest.erase(0, 1);
    }
    if (!rest.empty())
        return std::nullopt;
    return std::copysign(degrees, *first) * kRadiansInDegree;
}

std::optional<TypedPoint> typedPoint(std::wstring_view given, const AcGePoint3d& lastPoint,
                                     const AcGeMatrix3d& worldToUcs, LengthUnits units) {
    std::wstring text = trimmed(given);
    if (text == L"@")
        return TypedPoint{lastPoint, 3};
    const bool relative = text.starts_with(L"@");
    const bool world = text.starts_with(L"*");
    if (relative || world)
        text.erase(0, 1);
    std::optional<TypedPoint> result = coordinates(text, units);
    if (!result)
        return std::nullopt;
    if (relative)
        result->point += lastPoint.asVector();
    if (world)
        result->point.transformBy(worldToUcs);
    if (relative || world)
        result->dimension = 3;
    return result;
}

}  // namespace drafthost::editor
