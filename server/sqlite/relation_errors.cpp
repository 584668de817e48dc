#include "server/sqlite/relation_errors.h"

#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

namespace tessary::server {

namespace {

struct BrokenRelation {
    Text child, parent;
};

std::optional<BrokenRelation> findBroken(Connection& connection, Catalog& catalog) {
    std::vector<Text> children;
    for (const auto& [name, relation] : catalog.definitions().relations)
        children.push_back(relation.foreignTable);
    for (const Text& child : children) {
        Prepared check = connection.prepare("PRAGMA " + catalog.schema() + ".foreign_key_check(" +
                                            quotedName(physicalName(child)) + ")");
        if (check.step())
            return BrokenRelation{child, tableOfPhysicalName(check.textView(2))};
    }
    return std::nullopt;
}

}  // namespace

void throwRelationError(Connection& connection, Catalog& catalog, TextView table, ChangeKind kind,
                        const std::function<void()>& repeat) {
    connection.execute("PRAGMA defer_foreign_keys=ON");
    repeat();
    const std::optional<BrokenRelation> broken = findBroken(connection, catalog);
    const TextView child = broken ? TextView(broken->child) : table;
    const TextView parent = broken ? TextView(broken->parent) : table;
    const bool parentMissing =
        kind == ChangeKind::insert || (kind == ChangeKind::update && sameName(child, table));
    if (parentMissing)
        throw DatabaseError(ErrorCode::relatedRecordMissing,
                            inText(u"The record of the table '", child,
                                   u"' cannot be added or changed: the table '", parent,
                                   u"' has no related record."));
    throw DatabaseError(ErrorCode::relatedRecordsExist, inText(u"The record of the table '", parent,
                                                               u"' cannot be deleted or changed: the table '",
                                                               child, u"' has related records."));
}

}  // namespace tessary::server
