#pragma once

// Checks definitions before anything is made of them.

#include "server/schema/definition.h"

namespace tessary::server {

// The definition with what follows from it filled in: primary fields are required, an autonumber is a long
// integer, defaults are of their field's type, indexes spell fields as the table does. Throws what a drafter
// did wrong.
TableDefinition checkedTable(TableDefinition table);
IndexDefinition checkedIndex(const TableDefinition& table, IndexDefinition index);

// The fields after the changes, each with the place of the field that it was before; throws as checkedTable
// does.
struct ChangedField {
    FieldDefinition field;
    int oldPlace = -1;  // from 0; -1: the field is new
    bool primary = false;
};
std::vector<ChangedField> changedFields(const TableDefinition& table,
                                        const std::vector<FieldChange>& changes);

bool indexUsesField(const IndexDefinition& index, TextView field);
bool namesField(const std::vector<Text>& fields, TextView field);
// In any order.
bool sameFields(const IndexDefinition& index, const std::vector<Text>& fields);

}  // namespace tessary::server
