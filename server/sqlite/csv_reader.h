#pragma once

// Reads comma separated values: a header row with the fields' names, fields in double quotes where they need
// it, UTF-8 with or without byte order mark. A field that is a number in all rows is a number, others are
// texts; nothing between two commas is null.

#include "server/schema/definition.h"

#include <string_view>

namespace tessary::server {

struct CsvTable {
    TableDefinition definition;
    std::vector<std::vector<Value>> rows;  // as many values as fields
};

CsvTable readCsv(TextView tableName, std::string_view content);

}  // namespace tessary::server
