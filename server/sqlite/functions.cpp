#include "server/sqlite/functions.h"

#include "server/sqlite/functions_support.h"
#include "server/values/formatting.h"

#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

namespace tessary::server {

namespace functions {

Value valueOf(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL: return Null{};
        case SQLITE_INTEGER: {
            const sqlite3_int64 whole = sqlite3_value_int64(value);
            if (whole >= std::numeric_limits<std::int32_t>::min() &&
                whole <= std::numeric_limits<std::int32_t>::max())
                return static_cast<std::int32_t>(whole);
            return static_cast<double>(whole);
        }
        case SQLITE_FLOAT: return sqlite3_value_double(value);
        case SQLITE_BLOB: {
            // The only bytes there are stand for a text that a literal cannot hold.
            const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
            Text text(size / sizeof(char16_t), u'\0');
            if (!text.empty())
                std::memcpy(text.data(), sqlite3_value_blob(value), text.size() * sizeof(char16_t));
            return text;
        }
        default: break;
    }
    const auto* units = static_cast<const char16_t*>(sqlite3_value_text16(value));
    if (!units)
        throw std::bad_alloc();
    return Text(units, static_cast<std::size_t>(sqlite3_value_bytes16(value)) / sizeof(char16_t));
}

namespace {

struct ResultGiver {
    sqlite3_context* context;

    void operator()(Null) const { sqlite3_result_null(context); }
    void operator()(bool value) const { sqlite3_result_int(context, value ? -1 : 0); }
    void operator()(std::int32_t value) const { sqlite3_result_int(context, value); }
    void operator()(double value) const { sqlite3_result_double(context, value); }
    void operator()(Date value) const { sqlite3_result_double(context, value.days); }
    void operator()(const Text& value) const {
        sqlite3_result_text64(context, reinterpret_cast<const char*>(value.data()),
                              value.size() * sizeof(char16_t), SQLITE_TRANSIENT, SQLITE_UTF16);
    }
};

void runFunction(sqlite3_context* context, int count, sqlite3_value** given) {
    const auto& function = *static_cast<const Function*>(sqlite3_user_data(context));
    guarded(context, [&] {
        std::vector<Value> arguments;
        arguments.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            arguments.push_back(valueOf(given[i]));
            if (function.nullGivesNull && isNull(arguments.back()))
                return sqlite3_result_null(context);
        }
        giveResult(context, function.run(arguments));
    });
}

// Texts inside records may begin at odd addresses; they are compared in pieces that are copied.
int compareUnaligned(const char* left, std::size_t leftUnits, const char* right, std::size_t rightUnits) {
    constexpr std::size_t pieceUnits = 64;
    char16_t leftPiece[pieceUnits];
    char16_t rightPiece[pieceUnits];
    for (std::size_t at = 0; at < std::min(leftUnits, rightUnits); at += pieceUnits) {
        const std::size_t units = std::min(pieceUnits, std::min(leftUnits, rightUnits) - at);
        std::memcpy(leftPiece, left + at * sizeof(char16_t), units * sizeof(char16_t));
        std::memcpy(rightPiece, right + at * sizeof(char16_t), units * sizeof(char16_t));
        if (const int order = compareText({leftPiece, units}, {rightPiece, units}); order != 0)
            return order;
    }
    return leftUnits == rightUnits ? 0 : leftUnits < rightUnits ? -1 : 1;
}

bool isAligned(const void* units) {
    return reinterpret_cast<std::uintptr_t>(units) % alignof(char16_t) == 0;
}

int compare(void*, int leftSize, const void* left, int rightSize, const void* right) {
    const std::size_t leftUnits = static_cast<std::size_t>(leftSize) / sizeof(char16_t);
    const std::size_t rightUnits = static_cast<std::size_t>(rightSize) / sizeof(char16_t);
    if (!isAligned(left) || !isAligned(right))
        return compareUnaligned(static_cast<const char*>(left), leftUnits, static_cast<const char*>(right),
                                rightUnits);
    return compareText({static_cast<const char16_t*>(left), leftUnits},
                       {static_cast<const char16_t*>(right), rightUnits});
}

}  // namespace

void giveResult(sqlite3_context* context, const Value& value) {
    std::visit(ResultGiver{context}, value);
}

void giveError(sqlite3_context* context, const DatabaseError& error) {
    const std::string text =
        "#" + std::to_string(static_cast<int>(error.code())) + " " + toUtf8(error.text());
    sqlite3_result_error(context, text.c_str(), static_cast<int>(text.size()));
}

void giveOutOfMemory(sqlite3_context* context) {
    sqlite3_result_error_nomem(context);
}

void raise(ErrorCode code, Text text) {
    throw DatabaseError(code, std::move(text));
}

double finite(double number, TextView function) {
    if (!std::isfinite(number))
        raise(ErrorCode::divisionByZero, Text(function) + u": the result is no number that can be held.");
    return number;
}

double numberOf(const Value& value) {
    if (const auto* whole = std::get_if<std::int32_t>(&value))
        return *whole;
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    double number = 0;
    if (!parseNumber(textOf(value), number))
        raise(ErrorCode::typeMismatch, u"Data type mismatch: '" + textOf(value) + u"' is no number.");
    return number;
}

Date dateFrom(const Value& value) {
    Date date;
    const auto* text = std::get_if<Text>(&value);
    if (const auto* given = std::get_if<Date>(&value))
        return *given;
    if (text && !parseDate(*text, date))
        raise(ErrorCode::typeMismatch, u"Data type mismatch: '" + *text + u"' is no date.");
    if (!text)
        date.days = numberOf(value);
    if (!isValidDate(date))
        raise(ErrorCode::typeMismatch, u"Data type mismatch: '" + textOf(value) + u"' is no date.");
    return date;
}

Text shownText(const Value& value) {
    const auto* number = std::get_if<double>(&value);
    if (!number || !std::isfinite(*number))
        return textOf(value);
    char digits[40];
    const char* const end =
        std::to_chars(std::begin(digits), std::end(digits), *number, std::chars_format::scientific, 14).ptr;
    double rounded = *number;
    std::from_chars(digits, end, rounded);
    return textOf(rounded);
}

std::int64_t wholeOf(const Value& value) {
    const double number = std::nearbyint(numberOf(value));
    if (!(std::abs(number) <= 2e9))
        raise(ErrorCode::invalidArgument, u"The number " + textOf(value) + u" is too large here.");
    return static_cast<std::int64_t>(number);
}

Value wholeOrNumber(double number) {
    if (number == std::trunc(number) && std::abs(number) <= std::numeric_limits<std::int32_t>::max())
        return static_cast<std::int32_t>(number);
    return number;
}

}  // namespace functions

void registerFunctions(sqlite3* connection) {
    if (sqlite3_create_collation_v2(connection, textCollation, SQLITE_UTF16, nullptr, functions::compare,
                                    nullptr))
        throw std::bad_alloc();
    for (const auto table :
         {functions::textFunctions(), functions::numberFunctions(), functions::dateFunctions(),
          functions::formatFunctions(), functions::conversionFunctions()}) {
        for (const functions::Function& function : table) {
            // SQLite gives the row back unchanged to runFunction.
            void* row = const_cast<functions::Function*>(&function);
            if (sqlite3_create_function_v2(connection, function.name, function.arguments,
                                           SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, row,
                                           functions::runFunction, nullptr, nullptr, nullptr))
                throw std::bad_alloc();
        }
    }
    functions::registerAggregates(connection);
    functions::registerLike(connection);
}

}  // namespace tessary::server
