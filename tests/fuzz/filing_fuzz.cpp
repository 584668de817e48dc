// Changes drawings with leaders at random, and looks whether the ways in which objects are filed agree:
//
//     filing_fuzz SECONDS SEED
//
// Undoing what was logged gives the drawing before, redoing it the one behind; the drawing survives the
// going and coming of the leaders' class, being read back, and being inserted; a record of an object with
// damaged values is refused or read. Built natively by filing_fuzz.sh.

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/documents.h"
#include "host/api/editor.h"
#include "host/database/change_log.h"
#include "host/database/database_impl.h"
#include "host/database/deep_clone.h"
#include "host/database/proxies.h"
#include "host/exchange/dwg_conversion.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "host/text/font.h"
#include "module/drawing/model_space.h"
#include "module/leader/drawing_scale.h"
#include "module/leader/leader_class.h"
#include "module/leader/leader_entity.h"

using namespace drafthost;
using tessary::QNLeader;

// What the platform and the editor give the drawing otherwise.

namespace {

class Services final : public AcDbHostApplicationServices {
public:
    Acad::ErrorStatus findFile(ACHAR*, int, const ACHAR*, AcDbDatabase*, FindFileHint) override {
        return Acad::eFileNotFound;
    }
    AcDbDatabase* workingDatabase() const override { return database_; }
    void setWorkingDatabase(AcDbDatabase* database) override { database_ = database; }

private:
    AcDbDatabase* database_ = nullptr;
};

}  // namespace

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static Services services;
    return &services;
}
int acutPrintf(const ACHAR*, ...) {
    return RTNORM;
}
void acrx_abort(const ACHAR* format, ...) {
    std::fprintf(stderr, "abort: %ls\n", format);
    std::abort();
}
exchange::DwgConversion exchange::convertDwg(const std::filesystem::path&) {
    return {Acad::eFileAccessErr, {}, {}};
}
std::unique_ptr<text::Font> text::openTrueTypeFont(const std::wstring&, bool, bool) {
    return nullptr;
}
text::TextFont text::faceOfFile(std::wstring_view) {
    return {};
}
int acedTrans(const double*, const resbuf*, const resbuf*, int, double*) {
    return RTERROR;
}
double tessary::drawingScale() {
    return 48;
}
AcDbDatabase* tessary::currentDatabase() {
    return acdbHostApplicationServices()->workingDatabase();
}
bool tessary::findOrLoadBlock(const ACHAR* name, AcDbObjectId& id) {
    const AcDbObjectId found = findRecord(currentDatabase(), TableIndex::Block, name);
    if (!found.isNull())
        id = found;
    return !found.isNull();
}

namespace {

[[noreturn]] void fail(const char* what) {
    std::printf("failed: %s\n", what);
    std::exit(1);
}

void demand(bool holds, const char* what) {
    if (!holds)
        fail(what);
}

class Chance {
public:
    explicit Chance(unsigned seed) : random_(seed) {}
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    double number() {
        constexpr double kSpecial[] = {0, 1, -1, 1e-300, 1e150, 1e308, -1e308};
        return below(9) == 0 ? kSpecial[below(std::size(kSpecial))] : below(200001) / 1000.0 - 100.0;
    }
    AcGePoint3d point() { return {number(), number(), below(2) == 0 ? 0.0 : number()}; }
    template <class List>
    AcDbObjectId of(const List& ids) {
        return ids.length() == 0 ? AcDbObjectId() : ids[below(ids.length())];
    }

private:
    std::mt19937 random_;
};

class Drawing {
public:
    explicit Drawing(Chance& chance) : chance_(chance), database_(true, true) {}

    AcDbDatabase& database() { return database_; }

    // One change, which may be refused.
    void change() {
        acdbHostApplicationServices()->setWorkingDatabase(&database_);
        switch (chance_.below(12)) {
            case 0: return addRecord<AcDbLayerTable>(new AcDbLayerTableRecord, L"LAYER");
            case 1: return addRecord<AcDbBlockTable>(new AcDbBlockTableRecord, L"BLOCK");
            case 2: return append(new AcDbLine(chance_.point(), chance_.point()));
            case 3:
            case 4:
                return append(new QNLeader(chance_.point(), chance_.point(), chance_.point(),
                                           chance_.number(), anyBlock(), anyLayer()));
            case 5: return addReference();
            case 6: return withEntity([&](AcDbEntity& entity) { entity.erase(chance_.below(3) > 0); });
            case 7: return withEntity([&](AcDbEntity& entity) { setProperty(entity); });
            case 8: return withEntity([&](AcDbEntity& entity) { move(entity); });
            case 9: return copy();
            case 10: return explode();
            default: return transaction();
        }
    }

private:
    AcDbObjectId anyBlock() { return anyOf<AcDbBlockTable>(); }
    AcDbObjectId anyLayer() { return anyOf<AcDbLayerTable>(); }
    template <class Table>
    AcDbObjectId anyOf() {
        Table* table = nullptr;
        demand(database_.getSymbolTable(table, AcDb::kForRead) == Acad::eOk, "a table does not open");
        const AcDbObjectId id = chance_.of(table->recordIds());
        table->close();
        return id;
    }
    template <class Table, class Record>
    void addRecord(Record* record, const wchar_t* prefix) {
        record->setName((prefix + std::to_wstring(chance_.below(12))).c_str());
        Table* table = nullptr;
        demand(database_.getSymbolTable(table, AcDb::kForWrite) == Acad::eOk, "a table does not open");
        AcDbObjectId id;
        if (table->add(id, record) == Acad::eOk)
            record->close();
        else
            delete record;
        table->close();
    }
    void append(AcDbEntity* entity) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(
            chance_.below(4) == 0 ? anyBlock() : database_.modelSpaceId(), AcDb::kForWrite);
        if (block && block->appendAcDbEntity(entity) == Acad::eOk)
            entity->close();
        else
            delete entity;
    }
    void addReference() {
        auto* const reference = new AcDbBlockReference(chance_.point(), anyBlock());
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database_.modelSpaceId(), AcDb::kForWrite);
        if (!space || space->appendAcDbEntity(reference) != Acad::eOk) {
            delete reference;
            return;
        }
        for (int count = chance_.below(3); count > 0; --count) {
            auto* const attribute = new AcDbAttribute;
            attribute->setTag(L"FLOW");
            AcDbObjectId id;
            if (reference->appendAttribute(id, attribute) == Acad::eOk)
                attribute->close();
            else
                delete attribute;
        }
        reference->close();
    }
    AcDbObjectId anyEntity() {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(
            chance_.below(4) == 0 ? anyBlock() : database_.modelSpaceId(), AcDb::kForRead);
        return block ? chance_.of(block->entityIds()) : AcDbObjectId();
    }
    template <class Change>
    void withEntity(Change change) {
        const AcDbObjectPointer<AcDbEntity> entity(anyEntity(), AcDb::kForWrite);
        if (entity)
            change(*entity.object());
    }
    void setProperty(AcDbEntity& entity) {
        entity.setLayer(anyLayer());
        entity.setColorIndex(static_cast<std::uint16_t>(chance_.below(300)));
        auto* const leader = QNLeader::cast(&entity);
        if (!leader)
            return;
        leader->setPoints(chance_.point(), chance_.point(), chance_.point());
        leader->setOffset(chance_.number());
        leader->setBlock((L"BLOCK" + std::to_wstring(chance_.below(12))).c_str());
    }
    void move(AcDbEntity& entity) {
        AcDbExtents extents;
        AcGePoint3dArray points;
        AcDbIntArray modes, ids;
        entity.getGeomExtents(extents);
        entity.getGripPoints(points, modes, ids);
        AcDbIntArray one;
        one.append(chance_.below(4) - (points.isEmpty() ? 0 : 1));
        entity.moveGripPointsAt(one, AcGeVector3d(chance_.number(), chance_.number(), 0));
        entity.transformBy(AcGeMatrix3d::translation(AcGeVector3d(chance_.number(), chance_.number(), 0)));
        entity.transformBy(AcGeMatrix3d::rotation(chance_.number(), AcGeVector3d::kZAxis, chance_.point()));
    }
    // What fails is taken back, as the editor does.
    void copy() {
        ChangeLog log;
        const AcDbObjectPointer<AcDbEntity> entity(anyEntity(), AcDb::kForRead);
        if (!entity)
            return;
        database_.transactionManager()->startTransaction();
        AcDbEntity* made = nullptr;
        const bool copied = deepClone(*entity.object(), made) == Acad::eOk;
        if (copied)
            made->close();
        if (copied)
            database_.transactionManager()->endTransaction();
        else
            database_.transactionManager()->abortTransaction();
    }
    void explode() {
        AcDbEntityArray parts;
        {
            const AcDbObjectPointer<AcDbEntity> entity(anyEntity(), AcDb::kForRead);
            if (entity)
                entity->explode(parts);
        }
        for (int i = 0; i < parts.length(); ++i)
            append(parts[i]);
    }
    void transaction() {
        if (database_.transactionManager()->numActiveTransactions() > 2)
            return;
        database_.transactionManager()->startTransaction();
        for (int count = chance_.below(6); count > 0; --count)
            change();
        if (chance_.below(2) == 0)
            database_.transactionManager()->abortTransaction();
        else
            database_.transactionManager()->endTransaction();
    }

    Chance& chance_;
    AcDbDatabase database_;
};

// The file without what does not go back: the class records, the next handle, and the extents, which a
// leader of a file has without its symbol.
std::string contents(AcDbDatabase& database) {
    std::string file = exchange::dxfBytes(database);
    const auto cut = [&file](const char* from, const char* to) {
        const std::size_t begin = file.find(from);
        const std::size_t end = begin == std::string::npos ? begin : file.find(to, begin + 1);
        if (end != std::string::npos)
            file.erase(begin, end - begin);
    };
    cut("CLASSES", "ENDSEC");
    cut("$HANDSEED", "  9");
    cut("$EXTMIN", "  9");
    cut("$EXTMAX", "  9");
    return file;
}

void same(const std::string& before, const std::string& after, const char* what) {
    if (before == after)
        return;
    std::ofstream("filing_fuzz_before.dxf", std::ios::binary) << before;
    std::ofstream("filing_fuzz_after.dxf", std::ios::binary) << after;
    fail(what);
}

// The class goes; the drawing is the same, and again when it is back.
void awayAndBack(AcDbDatabase& database) {
    const std::string before = contents(database);
    tessary::removeLeaderClass();
    same(before, contents(database), "the class went, and the drawing changed");
    tessary::registerLeaderClass();
    acrxBuildClassHierarchy();
    same(before, contents(database), "the class came, and the drawing changed");
}

void changeLogged(Drawing& drawing, Chance& chance) {
    AcDbDatabase& database = drawing.database();
    const std::string before = contents(database);
    ChangeLog log;
    database.impl().logs.push_back(&log);
    database.impl().undoStep = &log;
    for (int count = chance.below(12); count > 0; --count)
        drawing.change();
    database.impl().logs.clear();
    database.impl().undoStep = nullptr;
    const std::string after = contents(database);
    if (chance.below(3) == 0)
        awayAndBack(database);
    ChangeLog redo = log.revert(database, ChangeLog::Removal::AsErased);
    same(before, contents(database), "undone");
    if (chance.below(3) == 0)
        awayAndBack(database);
    ChangeLog undo = redo.revert(database, ChangeLog::Removal::AsErased);
    same(after, contents(database), "redone");
    if (chance.below(3) == 0)
        undo.revert(database, ChangeLog::Removal::AsErased);
}

void damage(DwgRecord& record, Chance& chance) {
    if (record.values.empty())
        return;
    const auto at = static_cast<std::size_t>(chance.below(static_cast<int>(record.values.size())));
    switch (chance.below(6)) {
        case 0: record.values.resize(at); break;
        case 1: record.values.erase(record.values.begin() + static_cast<std::ptrdiff_t>(at)); break;
        case 2: record.values[at] = chance.number(); break;
        case 3: record.values[at] = std::int32_t{-1} - chance.below(1000); break;
        case 4: record.values[at] = AcGePoint3d(1e308 * 10, chance.number(), 0); break;
        default: record.values[at] = record.values[record.values.size() - 1 - at]; break;
    }
}

// Objects read from damaged records are looked at and thrown away.
void readDamaged(AcDbDatabase& database, Chance& chance) {
    for (AcDbStub* const stub : database.impl().stubs) {
        if (!stub->object || chance.below(4) > 0)
            continue;
        std::optional<DwgRecord> record = recordOf(*stub->object, AcDb::kFileFiler);
        if (!record)
            continue;
        damage(*record, chance);
        const RecordResult result = readRecord(&database, *stub->object->isA(), *record);
        if (const auto* const entity = AcDbEntity::cast(result.object.get())) {
            AcDbExtents extents;
            entity->getGeomExtents(extents);
            recordOf(*entity, AcDb::kFileFiler);
        }
    }
}

void readBack(AcDbDatabase& database) {
    const std::string file = exchange::dxfBytes(database);
    AcDbDatabase copy(false, true);
    demand(exchange::readDxfBytes(copy, file, L"").status == Acad::eOk, "what was written cannot be read");
    const std::string again = exchange::dxfBytes(copy);
    AcDbDatabase second(false, true);
    demand(exchange::readDxfBytes(second, again, L"").status == Acad::eOk, "cannot be read twice");
    same(again, exchange::dxfBytes(second), "written twice");
}

void insertInto(AcDbDatabase& target, AcDbDatabase& source, Chance& chance) {
    const std::string before = contents(target);
    const std::string sourceBefore = contents(source);
    AcDbObjectId id;
    const auto name = L"BLOCK" + std::to_wstring(chance.below(16));
    const auto clashes = chance.below(2) == 0 ? AcDb::kDrcIgnore : AcDb::kDrcReplace;
    const Acad::ErrorStatus status = target.insert(id, name.c_str(), &source, true, clashes);
    if (status != Acad::eOk)
        same(before, contents(target), "a failed insertion changed the drawing");
    if (&target != &source)
        same(sourceBefore, contents(source), "an insertion changed the source");
    readBack(target);
}

void run(Chance& chance) {
    Drawing first(chance), second(chance);
    for (int round = 0; round < 6; ++round) {
        changeLogged(first, chance);
        changeLogged(second, chance);
        readDamaged(first.database(), chance);
        insertInto(first.database(), second.database(), chance);
        if (chance.below(3) == 0)
            insertInto(second.database(), second.database(), chance);
        awayAndBack(first.database());
    }
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: filing_fuzz SECONDS SEED\n");
        return 2;
    }
    tessary::registerLeaderClass();
    acrxBuildClassHierarchy();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(arguments[1]));
    int runs = 0;
    for (unsigned seed = static_cast<unsigned>(std::atoi(arguments[2]));
         std::chrono::steady_clock::now() < end; ++seed, ++runs) {
        std::printf("seed %u\n", seed);
        std::fflush(stdout);
        Chance chance(seed);
        run(chance);
    }
    tessary::removeLeaderClass();
    std::printf("%d drawings\n", runs);
    return 0;
}
