#pragma once

// The values of fields, parameters and results. Everything in the server below its automation interface works
// on these; nothing here or under them needs Windows.

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessary::server {

// UTF-16. What is not well-formed is kept as it is.
using Text = std::u16string;
using TextView = std::u16string_view;

struct Null {
    bool operator==(const Null&) const = default;
};

// Days since 30 December 1899, the time of day as the fraction.
struct Date {
    double days = 0;
    bool operator==(const Date&) const = default;
};

// bool is yes/no.
using Value = std::variant<Null, bool, std::int32_t, double, Date, Text>;

inline bool isNull(const Value& value) {
    return std::holds_alternative<Null>(value);
}

enum class FieldType {
    yesNo,
    byte,     // 0 to 255
    integer,  // 16 bits
    longInteger,
    single,
    number,    // double
    currency,  // four decimals, held as a double
    dateTime,
    text,  // at most 255 characters
    memo,  // text of any length
};

// UTF-8 to and from Text; what is not well-formed becomes U+FFFD.
Text toText(std::string_view utf8);
std::string toUtf8(TextView text);

// Names of tables, fields, indexes and so on do not depend on case.
bool sameName(TextView left, TextView right);
struct NameLess {
    using is_transparent = void;
    bool operator()(TextView left, TextView right) const;
};

// Order of texts in comparisons and indexes: by code unit after simple case folding of single characters,
// from a table of its own, so that an index made on one machine is in order on every other. Negative, zero or
// positive.
int compareText(TextView left, TextView right);
Text folded(TextView text);

// The value as a field of the type holds it: texts that are numbers or dates are converted, fractions are
// rounded to the even neighbour for whole numbers. Throws conversion (3421) naming the field. Null stays
// null. The size of texts is not looked at.
Value convertTo(FieldType type, const Value& value, TextView fieldName);

// How a value reads inside a text: numbers with as many digits as needed, dates as m/d/yyyy [h:mm:ss AM], or
// the time alone on day zero, yes/no as -1 and 0, null as the empty text.
Text textOf(const Value& value);

// A date or time in one of the usual forms (7/4/2010, 2010-07-04, 4 Jul 2010, 13:45, 1:45:30 PM, both); false
// when it is none. Of three numbers with slashes the month stands first unless it is above 12.
bool parseDate(TextView text, Date& date);
bool parseNumber(TextView text, double& number);

struct DateParts {
    int year, month, day, hour, minute, second;
};
DateParts partsOf(Date date);
// Parts out of range run over into the next, as in month 13.
Date dateOf(const DateParts& parts);

}  // namespace tessary::server
