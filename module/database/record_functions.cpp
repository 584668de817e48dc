// Functions that write records of the current table.

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/variant_conversion.h"
#include "module/database/server_connection.h"
#include "module/database/server_results.h"
#include "module/database/table_functions.h"

#include <limits>
#include <optional>

namespace tessary {

namespace {

constexpr const wchar_t* noMatch = L"error - unable to match index";
constexpr const wchar_t* notDeleted = L"error - failed to delete record";

// The arguments as the server takes field values; false when one cannot be a field's value or there is none.
bool readFields(ArgCursor cursor, Variant& fields) {
    SafeArray array;
    if (!pairsToVariantArray(cursor, array)) {
        return false;
    }
    fields = Variant::fromArray(std::move(array));
    return true;
}

// Number of a record's first field, which is the automatic counter; none when the record has no such field.
// The number is read as it lies in the value: counters are 32-bit integers.
std::optional<int> counterOf(const Variant& record) {
    const VariantElements elements(record.array());
    if (elements.values().size() < 2) {
        return std::nullopt;
    }
    return elements.values()[1].lVal;
}

bool append(DatabaseConnection& connection, const Variant& fields, VARIANT_BOOL stay, Variant& record) {
    return succeeds(connection, &DatabaseConnection::Append, fields.get(), stay, record.receive());
}

bool isBeyondLast(DatabaseConnection& connection, int index) {
    Variant record;
    if (!succeeds(connection, &DatabaseConnection::MoveLast, record.receive())) {
        return false;  // an empty table: every number is still to come
    }
    const std::optional<int> last = counterOf(record);
    return last && index < *last;
}

// Adds records, and deletes them again, until the counter has reached the index. The text to return when it
// cannot; null when the LISP result is set.
const wchar_t* appendUntilIndex(DatabaseConnection& connection, int index, const Variant& fields) {
    for (std::optional<int> previous;;) {
        Variant record;
        if (!append(connection, fields, VARIANT_FALSE, record)) {
            reportServerError();
            return nullptr;
        }
        const std::optional<int> value = counterOf(record);
        if (value == index) {
            returnPairs(true, record);
            return nullptr;
        }
        if (!succeeds(connection, &DatabaseConnection::DeleteRecord)) {
            return notDeleted;
        }
        // A first field that does not count up would never get there; nor does a drafter wait for ever.
        const bool countsUp = value && (!previous || *previous < *value);
        if (!countsUp || index < *value || acedUsrBrk()) {
            return noMatch;
        }
        previous = value;
    }
}

}  // namespace

HandlerStatus appendRecord(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    // Whether there is a number counts, not which.
    int number = 0;
    const VARIANT_BOOL stay = readInteger(cursor, number) ? VARIANT_TRUE : VARIANT_FALSE;
    Variant fields;
    if (!readFields(cursor, fields)) {
        return HandlerStatus::success;
    }
    Variant record;
    return returnPairs(append(connection, fields, stay, record), record);
}

HandlerStatus appendRecordWithIndex(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    int index = 0;
    if (!readInteger(cursor, index)) {
        return HandlerStatus::wrongType;
    }
    Variant fields;
    if (!readFields(cursor, fields)) {
        return HandlerStatus::success;
    }
    const wchar_t* const message =
        isBeyondLast(connection, index) ? noMatch : appendUntilIndex(connection, index, fields);
    if (message) {
        acedRetStr(message);
    }
    return HandlerStatus::success;
}

HandlerStatus replaceRecord(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    Variant fields;
    if (!readFields(arguments.first(), fields)) {
        return HandlerStatus::success;
    }
    Variant record;
    return returnPairs(succeeds(connection, &DatabaseConnection::Replace, fields.get(), record.receive()),
                       record);
}

}  // namespace tessary
