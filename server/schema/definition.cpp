#include "server/schema/definition.h"

#include "server/values/error.h"

#include <algorithm>

namespace tessary::server {
namespace {

// The first item of that name, null when there is none.
template <typename Item>
const Item* find(const std::vector<Item>& items, TextView name) {
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const Item& item) { return sameName(item.name, name); });
    return found == items.end() ? nullptr : &*found;
}

}  // namespace

const FieldDefinition* TableDefinition::field(TextView fieldName) const {
    return find(fields, fieldName);
}

const IndexDefinition* TableDefinition::index(TextView indexName) const {
    return find(indexes, indexName);
}

const IndexDefinition* TableDefinition::primaryIndex() const {
    const auto found = std::find_if(indexes.begin(), indexes.end(),
                                    [](const IndexDefinition& index) { return index.primary; });
    return found == indexes.end() ? nullptr : &*found;
}

void checkName(TextView name) {
    const auto isRefused = [](char16_t unit) {
        return unit < u' ' || unit == 0x7F || TextView(u".!`[]").find(unit) != TextView::npos;
    };
    if (name.empty())
        throw DatabaseError(ErrorCode::nameNotValid, u"A name must not be empty.");
    if (name.size() > longestName)
        throw DatabaseError(ErrorCode::nameNotValid, u"The name '" + Text(name.substr(0, longestName)) +
                                                         u"...' is longer than 64 characters.");
    if (name.front() == u' ' || std::any_of(name.begin(), name.end(), isRefused))
        throw DatabaseError(ErrorCode::nameNotValid, u"'" + Text(name) + u"' is not a valid name.");
}

}  // namespace tessary::server
