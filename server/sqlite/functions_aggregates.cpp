// FIRST and LAST, and the spread of numbers. Nulls do not count, except that FIRST and LAST may be null.

#include "server/sqlite/functions_support.h"

#include <sqlite3.h>

#include <cmath>
#include <new>

namespace tessary::server::functions {

namespace {

struct Kept {
    sqlite3_value* value;  // owned; null before the first record
};

Kept* keptOf(sqlite3_context* context) {
    return static_cast<Kept*>(sqlite3_aggregate_context(context, sizeof(Kept)));
}

void keep(sqlite3_context* context, sqlite3_value* given, bool last) {
    Kept* kept = keptOf(context);
    if (!kept)
        return giveOutOfMemory(context);
    if (kept->value && !last)
        return;
    sqlite3_value_free(kept->value);
    kept->value = sqlite3_value_dup(given);
    if (!kept->value)
        giveOutOfMemory(context);
}

void firstStep(sqlite3_context* context, int, sqlite3_value** given) {
    keep(context, given[0], false);
}

void lastStep(sqlite3_context* context, int, sqlite3_value** given) {
    keep(context, given[0], true);
}

void keptResult(sqlite3_context* context) {
    Kept* kept = keptOf(context);
    if (!kept || !kept->value)
        return sqlite3_result_null(context);
    sqlite3_result_value(context, kept->value);
    sqlite3_value_free(kept->value);
    kept->value = nullptr;
}

// Mean and sum of squared distances from it, kept up to date with each number so that large numbers lose
// nothing.
struct Spread {
    double count, mean, squares;
};

void spreadStep(sqlite3_context* context, int, sqlite3_value** given) {
    auto* spread = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
    if (!spread)
        return giveOutOfMemory(context);
    if (sqlite3_value_type(given[0]) == SQLITE_NULL)
        return;
    const double number = sqlite3_value_double(given[0]);
    const double distance = number - spread->mean;
    spread->count += 1;
    spread->mean += distance / spread->count;
    spread->squares += distance * (number - spread->mean);
}

struct SpreadFunction {
    const char* name;
    double withheld;  // 1: of a sample, 0: of all
    bool root;
};

// A sample of one has no spread.
void spreadResult(sqlite3_context* context) {
    const auto& function = *static_cast<const SpreadFunction*>(sqlite3_user_data(context));
    const auto* spread = static_cast<const Spread*>(sqlite3_aggregate_context(context, 0));
    if (!spread || spread->count <= function.withheld)
        return sqlite3_result_null(context);
    const double variance = spread->squares / (spread->count - function.withheld);
    sqlite3_result_double(context, function.root ? std::sqrt(variance) : variance);
}

constexpr SpreadFunction spreadFunctions[] = {
    {"ts_stdev", 1, true}, {"ts_stdevp", 0, true}, {"ts_var", 1, false}, {"ts_varp", 0, false}};

void registerOne(sqlite3* connection, const char* name, const void* row,
                 void (*step)(sqlite3_context*, int, sqlite3_value**), void (*result)(sqlite3_context*)) {
    if (sqlite3_create_function_v2(connection, name, 1, SQLITE_UTF16 | SQLITE_INNOCUOUS,
                                   const_cast<void*>(row), nullptr, step, result, nullptr))
        throw std::bad_alloc();
}

}  // namespace

void registerAggregates(sqlite3* connection) {
    registerOne(connection, "ts_first", nullptr, firstStep, keptResult);
    registerOne(connection, "ts_last", nullptr, lastStep, keptResult);
    for (const SpreadFunction& function : spreadFunctions)
        registerOne(connection, function.name, &function, spreadStep, spreadResult);
}

}  // namespace tessary::server::functions
