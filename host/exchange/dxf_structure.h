#pragma once

// The parts of a DXF file: sections, tables, blocks and records, all still as tags.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/exchange/dxf_tags.h"

namespace drafthost::exchange {

// What begins with a group 0: an entity, an object, a table record.
struct DxfRecord {
    std::string_view type;         // "LINE"
    std::uint32_t line = 0;        // of its group 0
    std::span<const DxfTag> tags;  // those behind the group 0
};

struct DxfVariable {
    std::string_view name;         // "$ACADVER"
    std::span<const DxfTag> tags;  // its values
};

struct DxfTable {
    std::string_view name;  // "LAYER"
    DxfRecord head;
    std::vector<DxfRecord> records;
};

struct DxfBlock {
    DxfRecord begin;  // BLOCK
    std::vector<DxfRecord> entities;
    DxfRecord end;  // ENDBLK
};

struct DxfSection {
    std::string_view name;
    std::span<const DxfTag> tags;  // between its name and ENDSEC
};

struct DxfStructure {
    std::vector<DxfVariable> header;
    std::vector<DxfRecord> classes;
    std::vector<DxfTable> tables;
    std::vector<DxfBlock> blocks;
    std::vector<DxfRecord> entities;
    std::vector<DxfRecord> objects;
    std::vector<DxfSection> others;  // sections of other names, in order

    std::vector<std::uint32_t>
        lateVariables;  // lines where header variables go on behind the end of the header

    // First value of a header variable without blanks around it; empty when there is none.
    std::string_view variable(std::string_view name) const;
};

// Throws DxfError when a section, table or block does not end, or something stands where it cannot.
// The tags must outlive the structure.
DxfStructure structureOf(std::span<const DxfTag> tags);

}  // namespace drafthost::exchange
