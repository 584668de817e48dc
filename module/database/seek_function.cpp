#include "module/binding/argument_readers.h"
#include "module/binding/variant_conversion.h"
#include "module/database/server_connection.h"
#include "module/database/server_results.h"
#include "module/database/table_functions.h"

#include "host/api/editor.h"

#include <array>

namespace tessary {

namespace {

constexpr std::size_t largestKeyCount = 10;

struct SeekKeys {
    std::array<Variant, largestKeyCount> values;  // empty behind the count
    std::size_t count = 0;
};

// The coordinates go to the server as they were given.
HandlerStatus seekPoint(DatabaseConnection& connection, const ads_real (&point)[3], bool isSpatial) {
    const Variant x = Variant::fromReal(point[0]);
    const Variant y = Variant::fromReal(point[1]);
    const Variant z = Variant::fromReal(point[2]);
    Variant record;
    const bool found =
        isSpatial
            ? succeeds(connection, &DatabaseConnection::Seek3, x.get(), y.get(), z.get(), record.receive())
            : succeeds(connection, &DatabaseConnection::Seek2, x.get(), y.get(), record.receive());
    return returnPairs(found, record);
}

HandlerStatus seekOne(DatabaseConnection& connection, const resbuf& node) {
    if (node.restype == RTNIL) {
        acedRetNil();
        return HandlerStatus::success;
    }
    Variant key;
    if (!valueToVariant(node, key)) {
        return HandlerStatus::wrongType;
    }
    Variant record;
    return returnPairs(succeeds(connection, &DatabaseConnection::Seek, key.get(), record.receive()), record);
}

// Keys stand loose or in one list. False when one is no value.
bool readKeys(ArgCursor cursor, SeekKeys& keys) {
    readListBegin(cursor);
    for (; cursor && cursor->restype != RTLE && keys.count < largestKeyCount; cursor = cursor->rbnext) {
        if (!valueToVariant(*cursor, keys.values[keys.count])) {
            return false;
        }
        ++keys.count;
    }
    return true;
}

HandlerStatus seekSeveral(DatabaseConnection& connection, ArgCursor cursor) {
    SeekKeys keys;
    if (!readKeys(cursor, keys)) {
        return HandlerStatus::wrongType;
    }
    const auto& key = keys.values;
    Variant record;
    const bool found =
        succeeds(connection, &DatabaseConnection::SeekKeys, key[0].get(), key[1].get(), key[2].get(),
                 key[3].get(), key[4].get(), key[5].get(), key[6].get(), key[7].get(), key[8].get(),
                 key[9].get(), static_cast<long>(keys.count), record.receive());
    return returnPairs(found, record);
}

}  // namespace

HandlerStatus seekRecord(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    const ArgCursor first = arguments.first();
    if (!first) {
        return HandlerStatus::tooFewArguments;
    }
    if (first->restype == RT3DPOINT || first->restype == RTPOINT) {
        return seekPoint(connection, first->resval.rpoint, first->restype == RT3DPOINT);
    }
    return first->rbnext ? seekSeveral(connection, first) : seekOne(connection, *first);
}

}  // namespace tessary
