#include "host/exchange/dxf_loader.h"

#include <algorithm>
#include <array>

#include "host/database/names.h"
#include "host/exchange/dxf_numbers.h"
#include "host/exchange/old_entities.h"
#include "host/exchange/polyline_conversion.h"

namespace drafthost::exchange {
namespace {

constexpr std::string_view kFirstKeptVersion = "AC1015";

// Tables in an order in which records name only records that are loaded already.
constexpr std::array<std::string_view, 9> kTableOrder = {"APPID", "STYLE",        "LTYPE",    "LAYER", "VIEW",
                                                         "UCS",   "BLOCK_RECORD", "DIMSTYLE", "VPORT"};

const std::wstring* nameIn(const std::vector<DxfGroup>& groups) {
    for (const DxfGroup& group : groups)
        if (group.code == 2)
            return std::get_if<std::wstring>(&group.value);
    return nullptr;
}

// Names of the layouts' blocks in old files.
std::wstring currentBlockName(const std::wstring& name) {
    const std::wstring folded = foldCase(name);
    if (folded == L"$MODEL_SPACE")
        return ACDB_MODEL_SPACE;
    if (folded == L"$PAPER_SPACE")
        return ACDB_PAPER_SPACE;
    return name;
}

void renameLayoutBlock(std::vector<DxfGroup>& groups) {
    for (DxfGroup& group : groups)
        if (auto* name = std::get_if<std::wstring>(&group.value);
            name && (group.code == 2 || group.code == 3))
            *name = currentBlockName(*name);
}

std::wstring widened(std::string_view ascii) {
    return std::wstring(ascii.begin(), ascii.end());
}

std::string narrowed(const std::wstring& text) {
    std::string ascii;
    for (const wchar_t c : text)
        ascii += c < 0x80 ? static_cast<char>(c) : '?';
    return ascii;
}

bool isPart(std::string_view type) {
    return type == "ATTRIB" || type == "VERTEX" || type == "SEQEND";
}

// The type of the parts that may follow an entity; empty: none.
std::string_view partTypeOf(std::string_view type) {
    return type == "INSERT" ? "ATTRIB" : type == "POLYLINE" ? "VERTEX" : "";
}

// True when objects of the type have no subclass of that name twice. The line of a text has: AcDbText stands
// before and behind its style.
bool isSingleSubclass(std::string_view type, std::string_view name) {
    constexpr std::array<std::string_view, 10> kTypes = {"LINE", "CIRCLE", "ARC",    "LWPOLYLINE", "INSERT",
                                                         "TEXT", "MTEXT",  "ATTRIB", "ATTDEF",     "3DFACE"};
    if (name == "AcDbEntity" || name == "AcDbSymbolTableRecord")
        return true;
    return name != "AcDbText" && std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

// Where the groups of another object begin that lost its group 0: a subclass comes for the second time, or a
// table record has a second name.
std::size_t endOfFirstObject(std::string_view type, std::span<const DxfTag> tags) {
    constexpr std::int32_t kName = 2;
    constexpr std::int32_t kSubclassMarker = 100;
    constexpr std::int32_t kEmbeddedObject = 101;  // may have subclasses of its own
    const bool isRecord = std::find(kTableOrder.begin(), kTableOrder.end(), type) != kTableOrder.end();
    std::vector<std::string_view> seen;
    int names = 0;
    for (std::size_t at = 0; at < tags.size() && tags[at].code != kEmbeddedObject; ++at) {
        if (isRecord && tags[at].code == kName && ++names == 2)
            return at;
        if (tags[at].code != kSubclassMarker)
            continue;
        const std::string_view name = trimmed(tags[at].text);
        if (!isSingleSubclass(type, name))
            continue;
        if (std::find(seen.begin(), seen.end(), name) != seen.end())
            return at;
        seen.push_back(name);
    }
    return tags.size();
}

bool hasNoRadius(const DxfRecord& record) {
    if (record.type != "CIRCLE" && record.type != "ARC")
        return false;
    for (const DxfTag& tag : record.tags)
        if (tag.code == 40)
            return realOf(tag) <= 0;
    return false;
}

}  // namespace

DxfLoader::DxfLoader(AcDbDatabase& database, const DxfStructure& structure, AuditReport& report)
    : database_(database), structure_(structure), report_(report),
      input_(encodingOf(structure.variable("$ACADVER"), structure.variable("$DWGCODEPAGE"))),
      handles_(structure, report), names_(database, report),
      cycleInsertions_(insertionsThatCloseCycles(structure)),
      convertsPolylines_(structure.variable("$ACADVER") < kFirstKeptVersion) {}

void DxfLoader::run() {
    LoadScope scope(database_);
    AcDbDatabase::Impl& impl = database_.impl();
    impl.nextHandle = std::max(impl.nextHandle, handles_.firstFree().value());
    loadHeader();
    loadClasses();
    loadTables();
    addBlockRecords();
    loadBlocks();
    loadEntities(structure_.entities, AcDbObjectId());
    loadObjects();
    loadOtherSections();
    for (const std::wstring& added : finishLoading(database_))
        report_.add(AuditCode::Completed, added);
}

DxfLoader::Groups DxfLoader::groupsOf(const DxfRecord& record) {
    Groups groups = {{0, input_.name(record.type)}};
    const bool replaced = handles_.mustReplace(record);
    const DxfTag* const handle = replaced ? handleTag(record) : nullptr;
    const std::span<const DxfTag> tags = record.tags.first(endOfFirstObject(record.type, record.tags));
    if (tags.size() != record.tags.size())
        report_.add(AuditCode::RepeatedSubclass,
                    widened(record.type) + L" holds the data of two objects: the second have been left out",
                    record.line);
    groups.reserve(tags.size() + 1);
    for (std::size_t at = 0; at < tags.size();) {
        if (&tags[at] == handle)
            ++at;
        else if (const auto style = namedTextStyle(record, tags[at]))
            groups.push_back({static_cast<short>(tags[at++].code), *style});
        else
            groups.push_back(input_.group(tags, at));
    }
    return groups;
}

std::optional<ObjectReference> DxfLoader::namedTextStyle(const DxfRecord& record, const DxfTag& tag) {
    constexpr std::int32_t kDimensionTextStyle = 340;
    if (tag.code != kDimensionTextStyle || record.type != "DIMSTYLE" || parseHandle(tag.text))
        return std::nullopt;
    const AcDbObjectId style = findRecord(&database_, TableIndex::TextStyle, input_.name(tag.text));
    if (style.isNull() && trimmed(tag.text).empty())
        return std::nullopt;
    return ObjectReference{style.isNull() ? AcDbHandle() : style.handle(), style};
}

AcDbObjectId DxfLoader::require(const LoadResult& result, const DxfRecord& record) {
    if (!result.keptAsProxy.empty())
        report_.add(AuditCode::UnreadableObject,
                    widened(record.type) + L" cannot be read by its module (" + result.keptAsProxy +
                        L"): kept as a proxy",
                    record.line, false);
    if (result.status == Acad::eOk)
        return result.id;
    const std::wstring reason = result.problem.empty() ? acadErrorStatusText(result.status) : result.problem;
    throw DxfError(record.line, std::string(record.type) + ": " + narrowed(reason));
}

void DxfLoader::loadHeader() {
    for (const DxfVariable& variable : structure_.header)
        database_.impl().settings.header.set(input_.name(variable.name), input_.groups(variable.tags));
}

void DxfLoader::loadClasses() {
    for (const DxfRecord& record : structure_.classes)
        database_.impl().classes.push_back(input_.groups(record.tags));
}

void DxfLoader::loadTableHeads() {
    std::unordered_set<std::string_view> seen;
    for (const DxfTable& table : structure_.tables) {
        if (std::find(kTableOrder.begin(), kTableOrder.end(), table.name) == kTableOrder.end())
            throw DxfError(table.head.line, "unknown table " + quotedForMessage(table.name));
        if (!seen.insert(table.name).second) {
            report_.add(AuditCode::DuplicateRecord,
                        L"a second table " + widened(table.name) + L" has been joined with the first",
                        table.head.line);
            continue;
        }
        require(loadTable(database_, groupsOf(table.head)), table.head);
    }
}

void DxfLoader::loadTables() {
    loadTableHeads();
    for (const std::string_view name : kTableOrder) {
        loadRecords(name);
        names_.addStandardRecords(name);
    }
}

bool DxfLoader::isSecondRecord(const DxfRecord& record, const Groups& groups) {
    // Several viewport records of one name make a screen of several viewports.
    if (record.type == "VPORT")
        return false;
    const std::wstring* const name = nameIn(groups);
    if (!name || recordNames_.insert(widened(record.type) + L"|" + foldCase(*name)).second)
        return false;
    report_.add(AuditCode::DuplicateRecord,
                widened(record.type) + L" \"" + *name + L"\" exists twice: the second has been left out",
                record.line);
    return true;
}

void DxfLoader::loadRecords(std::string_view tableName) {
    for (const DxfTable& table : structure_.tables) {
        if (table.name != tableName)
            continue;
        for (const DxfRecord& record : table.records) {
            if (record.type != tableName)
                throw DxfError(record.line, "table " + std::string(tableName) + ": record of type " +
                                                quotedForMessage(record.type));
            Groups groups = groupsOf(record);
            if (tableName == "BLOCK_RECORD")
                renameLayoutBlock(groups);
            names_.repair(groups, NameRepairs::RecordKind::TableRecord, record.line);
            if (isSecondRecord(record, groups))
                continue;
            require(loadRecord(database_, std::move(groups)), record);
        }
    }
}

void DxfLoader::addBlockRecords() {
    // Blocks may be inserted before they are defined, so all names must be known. Old files have no block
    // records.
    for (const DxfBlock& block : structure_.blocks) {
        Groups groups = groupsOf(block.begin);
        renameLayoutBlock(groups);
        const std::wstring* const name = nameIn(groups);
        if (!name || name->empty())
            throw DxfError(block.begin.line, "BLOCK without a name (group 2)");
        if (findRecord(&database_, TableIndex::Block, *name).isNull())
            names_.addRecord(L"BLOCK_RECORD", *name);
    }
}

void DxfLoader::loadBlocks() {
    std::unordered_set<std::wstring> seen;
    for (const DxfBlock& block : structure_.blocks) {
        Groups groups = groupsOf(block.begin);
        renameLayoutBlock(groups);
        const std::wstring name = *nameIn(groups);
        if (!seen.insert(foldCase(name)).second) {
            report_.add(AuditCode::DuplicateBlock,
                        L"block \"" + name + L"\" is defined twice: the second is left out",
                        block.begin.line);
            continue;
        }
        names_.repair(groups, NameRepairs::RecordKind::Entity, block.begin.line);
        const AcDbObjectId id = require(loadBlockBegin(database_, std::move(groups)), block.begin);
        loadEntities(block.entities, id);
        Groups end = groupsOf(block.end);
        names_.repair(end, NameRepairs::RecordKind::Entity, block.end.line);
        require(loadBlockEnd(database_, id, std::move(end)), block.end);
    }
}

void DxfLoader::loadEntities(const Records& records, AcDbObjectId block) {
    for (std::size_t at = 0; at < records.size();)
        at = loadSequence(records, at, block);
}

std::size_t DxfLoader::loadSequence(const Records& records, std::size_t at, AcDbObjectId block) {
    const DxfRecord& first = records[at];
    if (isPart(first.type)) {
        report_.add(AuditCode::OrphanedPart,
                    widened(first.type) + L" belongs to no entity and has been left out", first.line);
        return at + 1;
    }
    const std::string_view partType = partTypeOf(first.type);
    std::size_t end = at + 1;
    while (!partType.empty() && end < records.size() && records[end].type == partType)
        ++end;
    const bool hasEnd = !partType.empty() && end < records.size() && records[end].type == "SEQEND";
    const std::size_t behind = hasEnd ? end + 1 : end;
    if (cycleInsertions_.contains(first.line)) {
        report_.add(AuditCode::BlockCycle, L"a block would contain itself: the insertion has been left out",
                    first.line);
        return behind;
    }
    if (hasNoRadius(first)) {
        report_.add(AuditCode::NoRadius, widened(first.type) + L" without a radius has been left out",
                    first.line);
        return behind;
    }
    const std::span<const DxfRecord> parts(records.data() + at + 1, behind - at - 1);
    if (loadAsLightweight({records.data() + at, end - at}, block))
        return behind;

    Groups groups = groupsOf(first);
    addSubclassMarkers(groups);
    gatherProperties(groups);
    names_.repair(groups, NameRepairs::RecordKind::Entity, first.line);
    const AcDbObjectId id = require(loadEntity(database_, block, std::move(groups)), first);
    for (const DxfRecord& part : parts) {
        Groups partGroups = groupsOf(part);
        addSubclassMarkers(partGroups);
        gatherProperties(partGroups);
        names_.repair(partGroups, NameRepairs::RecordKind::Entity, part.line);
        require(loadAttribute(database_, id, std::move(partGroups)), part);
    }
    if (!parts.empty() && !hasEnd) {
        report_.add(AuditCode::MissingSequenceEnd, L"a sequence of " + widened(partType) + L" had no end",
                    first.line);
        require(loadAttribute(database_, id, {{0, std::wstring(L"SEQEND")}}), first);
    }
    return behind;
}

bool DxfLoader::loadAsLightweight(std::span<const DxfRecord> sequence, AcDbObjectId block) {
    if (!convertsPolylines_ || sequence.front().type != "POLYLINE")
        return false;
    std::vector<Groups> vertices;
    for (const DxfRecord& vertex : sequence.subspan(1))
        vertices.push_back(groupsOf(vertex));
    auto groups = lightweightPolyline(groupsOf(sequence.front()), vertices);
    if (!groups)
        return false;
    names_.repair(*groups, NameRepairs::RecordKind::Entity, sequence.front().line);
    require(loadEntity(database_, block, std::move(*groups)), sequence.front());
    return true;
}

void DxfLoader::loadObjects() {
    for (const DxfRecord& record : structure_.objects) {
        Groups groups = groupsOf(record);
        names_.repair(groups, NameRepairs::RecordKind::Object, record.line);
        require(loadObject(database_, std::move(groups)), record);
    }
}

void DxfLoader::loadOtherSections() {
    for (const DxfSection& section : structure_.others) {
        RawSection raw{input_.name(section.name), {}};
        for (const DxfTag& tag : section.tags)
            raw.groups.push_back({static_cast<short>(tag.code), input_.text(tag.text)});
        database_.impl().otherSections.push_back(std::move(raw));
    }
}

}  // namespace drafthost::exchange
