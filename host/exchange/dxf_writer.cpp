#include "host/exchange/dxf_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "host/database/block_reference_state.h"
#include "host/database/class_records.h"
#include "host/database/class_registry.h"
#include "host/database/loading.h"
#include "host/database/table_states.h"
#include "host/database/unknown_objects.h"
#include "host/exchange/dxf_numbers.h"
#include "host/exchange/dxf_output.h"
#include "host/exchange/file_replace.h"

namespace drafthost::exchange {
namespace {

constexpr std::array<std::string_view, 6> kVersions = {"AC1015", "AC1018", "AC1021",
                                                       "AC1024", "AC1027", "AC1032"};

// Corners of the extents of a drawing without anything in it.
constexpr double kNoExtents = 1e20;

constexpr std::array<TableIndex, kTableCount> kTableOrder = {
    TableIndex::Viewport, TableIndex::Linetype, TableIndex::Layer,    TableIndex::TextStyle, TableIndex::View,
    TableIndex::Ucs,      TableIndex::RegApp,   TableIndex::DimStyle, TableIndex::Block};

std::string asciiOf(const std::wstring& text) {
    std::string ascii;
    for (const wchar_t c : text)
        ascii += c < 0x80 ? static_cast<char>(c) : '?';
    return ascii;
}

const AcDbObject* alive(AcDbObjectId id) {
    const AcDbStub* const stub = id.stub();
    return stub && !stub->erased ? stub->object : nullptr;
}

template <class State>
const State* stateOf(const AcDbObject* object) {
    return object ? dynamic_cast<const State*>(ObjectImp::of(object).state.get()) : nullptr;
}

// To ten digits: an angle that went through radians may differ in its last bit from what it was when the file
// is read, and the header must not change with it.
double rounded(double value) {
    std::array<char, 40> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::scientific, 9);
    const auto parsed =
        parseReal(std::string_view(digits.data(), static_cast<std::size_t>(end.ptr - digits.data())));
    return parsed.value_or(value);
}

AcGePoint3d rounded(const AcGePoint3d& p) {
    return AcGePoint3d(rounded(p.x), rounded(p.y), rounded(p.z));
}

AcDbExtents modelExtents(const AcDbDatabase& database) {
    AcDbExtents extents;
    const auto* const space = stateOf<BlockState>(alive(database.modelSpaceId()));
    if (!space)
        return extents;
    for (const AcDbObjectId id : space->entities) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            entity->getGeomExtents(extents);  // entities without extents add nothing
    }
    return extents;
}

// References to objects that were erased since, which readers would miss: pointers become null, reactors go.
void dropDeadReferences(std::vector<DxfGroup>& groups) {
    bool inReactors = false;
    std::erase_if(groups, [&](DxfGroup& group) {
        if (group.code == 102) {
            const auto* const text = std::get_if<std::wstring>(&group.value);
            inReactors = text && *text == L"{ACAD_REACTORS";
        }
        auto* const reference = std::get_if<ObjectReference>(&group.value);
        const bool pointer =
            (group.code >= 330 && group.code <= 369) || (group.code >= 390 && group.code <= 399);
        if (!reference || !pointer || reference->id.isNull() || alive(reference->id))
            return false;
        *reference = ObjectReference();
        return inReactors;
    });
}

class DxfWriter {
public:
    explicit DxfWriter(AcDbDatabase& database)
        : database_(database), impl_(database.impl()), version_(fileVersion(database)),
          output_(encodingOf(version_, asciiOf(impl_.settings.header.text(L"$DWGCODEPAGE")))) {}

    std::string write() {
        writeHeader();
        writeClasses();
        writeTables();
        writeBlocks();
        writeEntitiesSection();
        writeObjects();
        writeOtherSections();
        output_.ascii(0, "EOF");
        return std::move(output_.bytes());
    }

private:
    void beginSection(std::string_view name) {
        output_.ascii(0, "SECTION");
        output_.ascii(2, name);
    }
    void endSection() { output_.ascii(0, "ENDSEC"); }
    void write(const AcDbObject* object);

    void writeHeader();
    // True when the variable is not taken from the drawing but from what is written.
    bool writeComputed(const std::wstring& name);
    void writeClasses();
    void writeTables();
    void writeTable(const TableState& table);
    void writeBlocks();
    void writeEntities(const BlockState& block);
    void writeEntity(const AcDbObject* entity);
    void writeEntitiesSection();
    void writeObjects();
    void writeOtherSections();

    AcDbDatabase& database_;
    AcDbDatabase::Impl& impl_;
    const std::string version_;
    DxfOutput output_;
    std::optional<AcDbExtents> extents_;
};

void DxfWriter::write(const AcDbObject* object) {
    // Objects of a class without a DXF name live in memory only.
    if (!object || !*dxfNameOf(*object))
        return;
    std::vector<DxfGroup> groups = fileGroups(*object);
    dropDeadReferences(groups);
    output_.groups(groups);
}

bool DxfWriter::writeComputed(const std::wstring& name) {
    if (name == L"$ACADVER") {
        output_.ascii(1, version_);
    } else if (name == L"$HANDSEED") {
        output_.handle(5, AcDbHandle(impl_.nextHandle));
    } else if (name == L"$EXTMIN" || name == L"$EXTMAX") {
        if (!extents_)
            extents_ = modelExtents(database_);
        const bool minimum = name == L"$EXTMIN";
        const double none = minimum ? kNoExtents : -kNoExtents;
        output_.point(10, !extents_->isValid()
                              ? AcGePoint3d(none, none, none)
                              : rounded(minimum ? extents_->minPoint() : extents_->maxPoint()));
    } else {
        return false;
    }
    return true;
}

void DxfWriter::writeHeader() {
    constexpr std::array<const wchar_t*, 4> kAlways = {L"$ACADVER", L"$HANDSEED", L"$EXTMIN", L"$EXTMAX"};
    beginSection("HEADER");
    const HeaderVariables& header = impl_.settings.header;
    const auto write = [&](const std::wstring& name) {
        output_.text(9, name);
        if (!writeComputed(name))
            output_.groups(headerVariable(database_, name));
    };
    for (const wchar_t* name : kAlways)
        if (!header.find(name))
            write(name);
    for (const auto& entry : header.entries())
        write(entry->name);
    endSection();
}

void DxfWriter::writeClasses() {
    beginSection("CLASSES");
    constexpr std::string_view kFirstWithCounts = "AC1018";
    for (const ClassGroups& groups : classRecordsForFile(database_, version_ >= kFirstWithCounts)) {
        output_.ascii(0, "CLASS");
        output_.groups(groups);
    }
    endSection();
}

void DxfWriter::writeTable(const TableState& table) {
    for (const AcDbObjectId id : table.records)
        write(alive(id));
    output_.ascii(0, "ENDTAB");
}

void DxfWriter::writeTables() {
    beginSection("TABLES");
    for (const TableIndex index : kTableOrder) {
        const AcDbObject* const table = alive(impl_.table(index));
        const auto* const state = stateOf<TableState>(table);
        if (!state)
            continue;
        write(table);
        writeTable(*state);
    }
    endSection();
}

void DxfWriter::writeEntity(const AcDbObject* entity) {
    if (!entity)
        return;
    write(entity);
    if (const auto* insert = stateOf<BlockReferenceState>(entity)) {
        const bool any = std::any_of(insert->attributes.begin(), insert->attributes.end(), alive);
        for (const AcDbObjectId id : insert->attributes)
            write(alive(id));
        if (any)
            write(alive(insert->sequenceEnd));
    } else if (const auto* unknown = stateOf<UnknownEntityState>(entity)) {
        for (const AcDbObjectId id : unknown->subEntities)
            write(alive(id));
    }
}

void DxfWriter::writeEntities(const BlockState& block) {
    for (const AcDbObjectId id : block.entities)
        writeEntity(alive(id));
}

void DxfWriter::writeBlocks() {
    beginSection("BLOCKS");
    const auto* const table = stateOf<TableState>(alive(impl_.table(TableIndex::Block)));
    for (const AcDbObjectId id : table ? table->records : std::vector<AcDbObjectId>()) {
        const auto* const block = stateOf<BlockState>(alive(id));
        if (!block)
            continue;
        write(alive(block->begin));
        // What is in model space and in the current layout stands in the section of the entities.
        if (id != impl_.modelSpace && id != impl_.paperSpace)
            writeEntities(*block);
        write(alive(block->end));
    }
    endSection();
}

void DxfWriter::writeEntitiesSection() {
    beginSection("ENTITIES");
    for (const AcDbObjectId id : {impl_.modelSpace, impl_.paperSpace})
        if (const auto* const space = stateOf<BlockState>(alive(id)))
            writeEntities(*space);
    endSection();
}

void DxfWriter::writeObjects() {
    std::vector<const AcDbStub*> objects;
    for (const AcDbStub* const stub : impl_.stubs) {
        const AcDbObject* const object = stub->erased ? nullptr : stub->object;
        if (!object || object->objectId() == impl_.namedObjects)
            continue;
        const bool elsewhere = object->isKindOf(AcDbEntity::desc()) ||
                               object->isKindOf(AcDbSymbolTable::desc()) ||
                               object->isKindOf(AcDbSymbolTableRecord::desc());
        if (!elsewhere)
            objects.push_back(stub);
    }
    // The order of the stubs depends on who was referred to first, that of the handles is the same in every
    // session.
    std::sort(objects.begin(), objects.end(),
              [](const AcDbStub* a, const AcDbStub* b) { return a->handle < b->handle; });
    beginSection("OBJECTS");
    write(alive(impl_.namedObjects));  // readers take the first dictionary for the root
    for (const AcDbStub* const stub : objects)
        write(stub->object);
    endSection();
}

void DxfWriter::writeOtherSections() {
    for (const RawSection& section : impl_.otherSections) {
        output_.ascii(0, "SECTION");
        output_.text(2, section.name);
        output_.groups(section.groups);
        endSection();
    }
}

}  // namespace

std::string fileVersion(const AcDbDatabase& database) {
    const std::string read = asciiOf(database.impl().settings.header.text(L"$ACADVER"));
    // Versions between two formats are those of early releases of the later one.
    const auto found = std::lower_bound(kVersions.begin(), kVersions.end(), read);
    return std::string(read.size() != kVersions[0].size() ? kVersions.front()
                       : found == kVersions.end()         ? kVersions.back()
                                                          : *found);
}

std::string dxfBytes(AcDbDatabase& database) {
    return DxfWriter(database).write();
}

Acad::ErrorStatus writeDxf(AcDbDatabase& database, const std::filesystem::path& file) {
    return replaceFile(file, dxfBytes(database));
}

}  // namespace drafthost::exchange
