#include "host/exchange/dxf_structure.h"

namespace drafthost::exchange {
namespace {

constexpr std::int32_t kVariableName = 9;

// Walks through tags from one group 0 to the next.
class RecordReader {
public:
    explicit RecordReader(std::span<const DxfTag> tags) : tags_(tags) {}

    bool atEnd() const { return at_ == tags_.size(); }
    const DxfTag& current() const { return tags_[at_]; }
    std::uint32_t lastLine() const { return tags_.empty() ? 0 : tags_.back().line; }
    std::size_t position() const { return at_; }
    void skip() { ++at_; }
    std::span<const DxfTag> since(std::size_t position) const {
        return tags_.subspan(position, at_ - position);
    }

    // The next record; the current tag must be a group 0.
    DxfRecord next() {
        if (current().code != 0)
            throw DxfError(current().line, "group 0 expected, found group " + std::to_string(current().code));
        DxfRecord record{trimmed(current().text), current().line, {}};
        const std::size_t first = ++at_;
        while (!atEnd() && current().code != 0)
            ++at_;
        record.tags = since(first);
        return record;
    }
    // The type of the record that next() would give; empty at the end.
    std::string_view nextType() const {
        return atEnd() || current().code != 0 ? "" : trimmed(current().text);
    }

private:
    std::span<const DxfTag> tags_;
    std::size_t at_ = 0;
};

void readVariables(std::span<const DxfTag> tags, DxfStructure& structure) {
    for (std::size_t at = 0; at < tags.size();) {
        if (tags[at].code != kVariableName)
            throw DxfError(tags[at].line, "header variable (group 9) expected, found group " +
                                              std::to_string(tags[at].code));
        DxfVariable variable{trimmed(tags[at].text), {}};
        const std::size_t first = ++at;
        while (at < tags.size() && tags[at].code != kVariableName)
            ++at;
        variable.tags = tags.subspan(first, at - first);
        structure.header.push_back(variable);
    }
}

void readRecords(std::span<const DxfTag> tags, std::vector<DxfRecord>& records) {
    for (RecordReader reader(tags); !reader.atEnd();)
        records.push_back(reader.next());
}

std::string_view tableName(const DxfRecord& head) {
    for (const DxfTag& tag : head.tags)
        if (tag.code == 2)
            return trimmed(tag.text);
    throw DxfError(head.line, "a table has no name (group 2)");
}

void readTables(std::span<const DxfTag> tags, DxfStructure& structure) {
    for (RecordReader reader(tags); !reader.atEnd();) {
        DxfTable table;
        table.head = reader.next();
        if (table.head.type != "TABLE")
            throw DxfError(table.head.line, "TABLE expected, found " + quotedForMessage(table.head.type));
        table.name = tableName(table.head);
        while (reader.nextType() != "ENDTAB") {
            if (reader.atEnd() || reader.nextType() == "TABLE")
                throw DxfError(reader.atEnd() ? reader.lastLine() : reader.current().line,
                               "table " + quotedForMessage(table.name) + " does not end: ENDTAB is missing");
            table.records.push_back(reader.next());
        }
        reader.next();
        structure.tables.push_back(std::move(table));
    }
}

void readBlocks(std::span<const DxfTag> tags, DxfStructure& structure) {
    for (RecordReader reader(tags); !reader.atEnd();) {
        DxfBlock block;
        block.begin = reader.next();
        if (block.begin.type != "BLOCK")
            throw DxfError(block.begin.line, "BLOCK expected, found " + quotedForMessage(block.begin.type));
        while (reader.nextType() != "ENDBLK") {
            if (reader.atEnd() || reader.nextType() == "BLOCK")
                throw DxfError(reader.atEnd() ? reader.lastLine() : reader.current().line,
                               "the block of line " + std::to_string(block.begin.line) +
                                   " does not end: ENDBLK is missing");
            block.entities.push_back(reader.next());
        }
        block.end = reader.next();
        structure.blocks.push_back(std::move(block));
    }
}

void sortIn(const DxfSection& section, DxfStructure& structure) {
    const auto [name, tags] = section;
    if (name == "HEADER")
        return readVariables(tags, structure);
    if (name == "CLASSES")
        return readRecords(tags, structure.classes);
    if (name == "TABLES")
        return readTables(tags, structure);
    if (name == "BLOCKS")
        return readBlocks(tags, structure);
    if (name == "ENTITIES")
        return readRecords(tags, structure.entities);
    if (name == "OBJECTS")
        return readRecords(tags, structure.objects);
    structure.others.push_back(section);
}

// Some writers end the header too early: more variables and a second ENDSEC follow. False: that is not what
// comes next.
bool readLateVariables(RecordReader& reader, DxfStructure& structure) {
    const DxfTag begin = reader.current();
    if (begin.code != kVariableName || structure.header.empty())
        return false;
    const std::size_t first = reader.position();
    while (!reader.atEnd() && reader.current().code != 0)
        reader.skip();
    readVariables(reader.since(first), structure);
    structure.lateVariables.push_back(begin.line);
    if (reader.nextType() == "ENDSEC")
        reader.skip();
    return true;
}

DxfSection readSection(RecordReader& reader) {
    const DxfTag begin = reader.current();
    if (reader.nextType() != "SECTION")
        throw DxfError(begin.line, "SECTION expected, found group " + std::to_string(begin.code) + " " +
                                       quotedForMessage(begin.text));
    reader.skip();
    if (reader.atEnd() || reader.current().code != 2)
        throw DxfError(begin.line, "a section has no name (group 2)");
    DxfSection section{trimmed(reader.current().text), {}};
    reader.skip();
    const std::size_t first = reader.position();
    while (reader.nextType() != "ENDSEC") {
        if (reader.atEnd())
            throw DxfError(reader.lastLine(), "the file ends inside section " +
                                                  quotedForMessage(section.name) + ": ENDSEC is missing");
        if (reader.nextType() == "SECTION")
            throw DxfError(reader.current().line,
                           "section " + quotedForMessage(section.name) + " does not end");
        reader.skip();
    }
    section.tags = reader.since(first);
    reader.skip();
    return section;
}

}  // namespace

std::string_view DxfStructure::variable(std::string_view name) const {
    for (const DxfVariable& candidate : header)
        if (candidate.name == name && !candidate.tags.empty())
            return trimmed(candidate.tags.front().text);
    return {};
}

DxfStructure structureOf(std::span<const DxfTag> tags) {
    DxfStructure structure;
    for (RecordReader reader(tags); !reader.atEnd();)
        if (!readLateVariables(reader, structure))
            sortIn(readSection(reader), structure);
    return structure;
}

}  // namespace drafthost::exchange
