#include "server/sqlite/database_core.h"

#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

namespace tessary::server {

std::optional<OrderTable> DatabaseCore::find(TextView name) {
    const Definitions& definitions = catalog.definitions();
    if (const TableEntryPtr* entry = definitions.table(name)) {
        OrderTable table;
        table.entry = *entry;
        table.schema = "main";
        table.sqliteName = "main." + quotedName(physicalName((*entry)->definition.name));
        table.catalog = &catalog;
        table.current = [this, key = Text(name)]() -> TableEntryPtr {
            const TableEntryPtr* now = catalog.definitions().table(key);
            return now == nullptr ? nullptr : *now;
        };
        return table;
    }
    const auto link = definitions.links.find(name);
    if (link == definitions.links.end())
        return std::nullopt;
    OrderTable table = links.resolve(link->second);
    return table;
}

OrderTable DatabaseCore::resolve(TextView name) {
    std::optional<OrderTable> table = find(name);
    if (!table)
        throw DatabaseError(ErrorCode::tableNotFound, inText(u"The table '", name, u"' does not exist."));
    return std::move(*table);
}

}  // namespace tessary::server
