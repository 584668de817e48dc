#pragma once

// How the functions of the dialect are written: each takes values and gives one, and throws DatabaseError.

#include "server/values/error.h"
#include "server/values/value.h"

#include <span>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace tessary::server::functions {

using Arguments = std::span<const Value>;

// SQLite has no dates: they come as numbers, and Date is given as its days.
struct Function {
    const char* name;
    int arguments;  // -1: any number
    Value (*run)(Arguments arguments);
    bool nullGivesNull = true;  // the function is not called when an argument is null
};

std::span<const Function> textFunctions();
std::span<const Function> numberFunctions();
std::span<const Function> dateFunctions();
std::span<const Function> formatFunctions();
std::span<const Function> conversionFunctions();

void registerAggregates(sqlite3* connection);
void registerLike(sqlite3* connection);

// Texts and numbers as they are; a whole number beyond 32 bits is a double.
Value valueOf(sqlite3_value* value);
void giveResult(sqlite3_context* context, const Value& value);
// Runs the action and turns what it throws into an error of the context.
template <class Action>
void guarded(sqlite3_context* context, Action action);
void giveError(sqlite3_context* context, const DatabaseError& error);
void giveOutOfMemory(sqlite3_context* context);

// Numbers as they are, texts parsed; both throw typeMismatch (3464) naming the value.
double numberOf(const Value& value);
Date dateFrom(const Value& value);
// What & and the functions of texts make of a value. Numbers have the 15 digits that are certain: textOf
// gives all that tell them apart, which shows the error of 0.1 + 0.2.
Text shownText(const Value& value);
// A count or place; at most two thousand million in size, fractions rounded to the even neighbour.
std::int64_t wholeOf(const Value& value);
Value wholeOrNumber(double number);

// DATEPART with the usual first day and first week: w is the weekday, ww the week, y the day of the year.
int datePart(TextView interval, Date date);

[[noreturn]] void raise(ErrorCode code, Text text);
// A result that is no finite number raises divisionByZero (3058).
double finite(double number, TextView function);

template <class Action>
void guarded(sqlite3_context* context, Action action) {
    try {
        action();
    } catch (const DatabaseError& error) {
        giveError(context, error);
    } catch (const std::exception&) {
        giveOutOfMemory(context);
    }
}

}  // namespace tessary::server::functions
