// Values as fields of the types hold them, and as they read inside a text.

#include "server/values/error.h"
#include "server/values/formatting.h"

#include <cmath>
#include <limits>
#include <optional>

namespace tessary::server {
namespace {

// What one type makes of a value that is not null; nothing when it cannot.
using Converter = std::optional<Value> (*)(const Value&);

double wholeToEven(double number) {
    return std::nearbyint(number);
}

std::optional<bool> truthOf(TextView text) {
    for (TextView word : {u"true", u"yes", u"on"})
        if (sameName(text, word))
            return true;
    for (TextView word : {u"false", u"no", u"off"})
        if (sameName(text, word))
            return false;
    return std::nullopt;
}

// Yes counts as -1.
std::optional<double> numberOf(const Value& value) {
    if (const auto* truth = std::get_if<bool>(&value))
        return *truth ? -1 : 0;
    if (const auto* integer = std::get_if<std::int32_t>(&value))
        return *integer;
    if (const auto* number = std::get_if<double>(&value))
        return std::isfinite(*number) ? std::optional(*number) : std::nullopt;
    if (const auto* date = std::get_if<Date>(&value))
        return date->days;
    double parsed = 0;
    const auto* text = std::get_if<Text>(&value);
    return text && parseNumber(*text, parsed) ? std::optional(parsed) : std::nullopt;
}

std::optional<Value> toYesNo(const Value& value) {
    if (const auto* text = std::get_if<Text>(&value))
        if (const auto truth = truthOf(*text))
            return *truth;
    const auto number = numberOf(value);
    return number ? std::optional<Value>(*number != 0) : std::nullopt;
}

template <std::int32_t lowest, std::int32_t highest>
std::optional<Value> toWhole(const Value& value) {
    const auto number = numberOf(value);
    if (!number)
        return std::nullopt;
    const double whole = wholeToEven(*number);
    if (whole < lowest || whole > highest)
        return std::nullopt;
    return static_cast<std::int32_t>(whole);
}

std::optional<Value> toSingle(const Value& value) {
    const auto number = numberOf(value);
    if (!number || std::abs(*number) > std::numeric_limits<float>::max())
        return std::nullopt;
    return static_cast<double>(static_cast<float>(*number));
}

std::optional<Value> toNumber(const Value& value) {
    const auto number = numberOf(value);
    return number ? std::optional<Value>(*number) : std::nullopt;
}

std::optional<Value> toCurrency(const Value& value) {
    constexpr double largest = 922337203685477.5807;
    const auto number = numberOf(value);
    if (!number || std::abs(*number) > largest)
        return std::nullopt;
    return wholeToEven(*number * 10000) / 10000;
}

std::optional<Value> toDate(const Value& value) {
    Date date;
    if (const auto* text = std::get_if<Text>(&value))
        return parseDate(*text, date) ? std::optional<Value>(date) : std::nullopt;
    const auto number = numberOf(value);
    if (!number || !isValidDate({*number}))
        return std::nullopt;
    return Date{*number};
}

std::optional<Value> toTextValue(const Value& value) {
    return textOf(value);
}

// In the order of FieldType.
constexpr Converter converters[] = {
    toYesNo,
    toWhole<0, 255>,
    toWhole<-32768, 32767>,
    toWhole<std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()>,
    toSingle,
    toNumber,
    toCurrency,
    toDate,
    toTextValue,
    toTextValue,
};

// A memo in an error text would hide the rest of it.
Text shortened(Text text) {
    constexpr std::size_t longest = 60;
    if (text.size() > longest)
        text = text.substr(0, longest) + u"...";
    return text;
}

}  // namespace

Value convertTo(FieldType type, const Value& value, TextView fieldName) {
    if (isNull(value))
        return value;
    if (auto converted = converters[static_cast<std::size_t>(type)](value))
        return std::move(*converted);
    throw DatabaseError(ErrorCode::conversion, u"The value '" + shortened(textOf(value)) +
                                                   u"' cannot be stored in the field '" + Text(fieldName) +
                                                   u"'.");
}

Text textOf(const Value& value) {
    if (const auto* text = std::get_if<Text>(&value))
        return *text;
    if (const auto* truth = std::get_if<bool>(&value))
        return *truth ? u"-1" : u"0";
    if (const auto* integer = std::get_if<std::int32_t>(&value))
        return toText(std::to_string(*integer));
    if (const auto* number = std::get_if<double>(&value))
        return toText(formatNumber(*number));
    if (const auto* date = std::get_if<Date>(&value))
        return toText(formatDate(*date));
    return {};
}

}  // namespace tessary::server
