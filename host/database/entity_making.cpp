// entmake and entmakex: entities, sequences (a block reference and its attributes, a polyline and its
// vertices), block definitions, table records and ownerless objects from lists of groups.

#include <algorithm>

#include "host/api/block_reference.h"
#include "host/database/block_contents.h"
#include "host/database/block_reference_state.h"
#include "host/database/class_registry.h"
#include "host/database/deep_clone.h"
#include "host/database/entity_data.h"
#include "host/database/entity_parts.h"
#include "host/database/entity_recipes.h"
#include "host/database/extended_data.h"
#include "host/database/loading.h"
#include "host/database/names.h"
#include "host/database/open_state.h"
#include "host/database/sequence_entities.h"
#include "host/database/symbol_records.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

using Groups = std::vector<DxfGroup>;
using EntityPointer = std::unique_ptr<AcDbEntity>;

// An entity that is not in the drawing yet, with the parts that go with it.
struct MadeEntity {
    EntityPointer main;
    std::vector<EntityPointer> parts;
    EntityPointer end;  // null: no sequence
    bool inPaperSpace = false;
};

struct MadeBlock {
    std::wstring name;
    AcGePoint3d origin;
    std::wstring description;
    std::vector<MadeEntity> entities;
};

// What entmake has begun and not finished: kept from call to call, dropped when another drawing becomes
// current.
struct Making {
    AcDbDatabase* database = nullptr;
    std::unique_ptr<MadeBlock> block;
    std::unique_ptr<MadeEntity> sequence;

    void drop() {
        block.reset();
        sequence.reset();
    }
};

Making& currentMaking() {
    static Making making;
    return making;
}

Making& makingIn(AcDbDatabase* database) {
    Making& making = currentMaking();
    if (making.database != database)
        making.drop();
    making.database = database;
    return making;
}

int badList(std::wstring text) {
    return entityError(kErrnoBadList, std::move(text));
}

// One list given to entmake.
struct Request {
    AcDbDatabase& database;
    std::wstring type;
    Groups content;  // from group 0 on
    Groups xdata;
    AcDbObjectId made;  // result
};

bool flagged(const Groups& groups, short code) {
    return std::ranges::any_of(groups, [code](const DxfGroup& group) {
        const auto* const value = std::get_if<std::int64_t>(&group.value);
        return group.code == code && value && *value == 1;
    });
}

// Entities of classes unknown here are filed with markers; lists that have none get them.
void addMarkers(Groups& groups, const wchar_t* subclass) {
    if (!subclass || std::ranges::find(groups, short{100}, &DxfGroup::code) != groups.end())
        return;
    Groups entity{{100, std::wstring(L"AcDbEntity")}};
    Groups own{{100, std::wstring(subclass)}};
    static constexpr short kEntityCodes[] = {8, 6, 62, 48, 60, 67, 370, 410, 420};
    for (DxfGroup& group : groups) {
        if (group.code == 0)
            continue;
        const bool common = std::ranges::find(kEntityCodes, group.code) != std::end(kEntityCodes);
        (common ? entity : own).push_back(std::move(group));
    }
    groups = {groups.front()};
    groups.insert(groups.end(), entity.begin(), entity.end());
    groups.insert(groups.end(), own.begin(), own.end());
}

// False after an error, which is then recorded.
bool checkXdata(const Request& request) {
    if (request.xdata.empty())
        return true;
    Acad::ErrorStatus status = checkExtendedData(request.xdata, &request.database);
    if (extendedDataSize(request.xdata) > kMaxExtendedData)
        status = Acad::eXdataSizeExceeded;
    if (status != Acad::eOk)
        entityError(status);
    return status == Acad::eOk;
}

// An application that is named twice counts with what stands last.
void takeXdata(AcDbObject& object, const Request& request) {
    ObjectState& state = *ObjectImp::of(&object).state;
    mergeExtendedData(state.xdata, request.xdata);
    state.extendedDataChanged();
}

// Null after an error, which is then recorded.
EntityPointer readEntity(Request& request) {
    const EntityRecipe* const recipe = findRecipe(request.type);
    const AcRxClass* const cls = findClassByDxfName(request.type);
    const bool ofModule = cls && cls->appName();
    if (!recipe && !ofModule) {
        badList(L"entities of type " + request.type + L" cannot be made");
        return nullptr;
    }
    if (const short missing = recipe ? missingGroup(*recipe, request.content) : 0) {
        badList(L"group " + std::to_wstring(missing) + L" is missing");
        return nullptr;
    }
    if (!checkXdata(request))
        return nullptr;
    Groups groups = request.content;
    if (recipe)
        addMarkers(groups, recipe->subclass);
    EntityPointer entity(AcDbEntity::cast(newObjectFor(request.type, true)));
    std::wstring problem;
    if (readEntityData(*entity, request.database, std::move(groups), problem) != Acad::eOk) {
        badList(problem);
        return nullptr;
    }
    takeXdata(*entity, request);
    return entity;
}

AcDbBlockTableRecord* spaceOf(AcDbDatabase& database, const MadeEntity& made) {
    const AcDbObjectId space = made.inPaperSpace ? database.paperSpaceId() : database.impl().currentSpace;
    return peek<AcDbBlockTableRecord>(space);
}

// Puts a part into the drawing and gives its id; null when that fails, which leaves the part to its owner.
AcDbObjectId addPart(AcDbDatabase& database, AcDbObjectId owner, EntityPointer& part) {
    AcDbObjectId id;
    adoptProperties(static_cast<EntityState&>(*ObjectImp::of(part.get()).state), database);
    if (database.impl().add(part.get(), owner, AcDbHandle(), id) == Acad::eOk)
        part.release()->close();
    return id;
}

Acad::ErrorStatus append(AcDbBlockTableRecord& block, MadeEntity& made, AcDbObjectId& id) {
    const auto status = appendToBlock(block, made.main.get(), AcDbHandle(), id);
    if (status != Acad::eOk)
        return status;
    AcDbEntity* const main = made.main.release();
    ObjectState& state = *ObjectImp::of(main).state;
    std::vector<AcDbObjectId> parts;
    for (EntityPointer& part : made.parts)
        parts.push_back(addPart(*block.database(), id, part));
    const AcDbObjectId end = made.end ? addPart(*block.database(), id, made.end) : AcDbObjectId();
    if (AcDbBlockReference::cast(main)) {
        static_cast<BlockReferenceState&>(state).attributes = std::move(parts);
        static_cast<BlockReferenceState&>(state).sequenceEnd = end;
    } else if (AcDbUnknownEntity::cast(main)) {
        if (!end.isNull())
            parts.push_back(end);
        static_cast<UnknownEntityState&>(state).subEntities = std::move(parts);
    }
    main->close();
    return Acad::eOk;
}

// To the block that is being made, or to the drawing.
int finishEntity(Request& request, MadeEntity made) {
    Making& making = makingIn(&request.database);
    if (making.block) {
        making.block->entities.push_back(std::move(made));
        return RTNORM;
    }
    AcDbBlockTableRecord* const space = spaceOf(request.database, made);
    if (!space)
        return entityError(Acad::eNullBlockName);
    const auto status = append(*space, made, request.made);
    return status == Acad::eOk ? static_cast<int>(RTNORM) : entityError(status);
}

bool startsSequence(const Request& request) {
    const EntityRecipe* const recipe = findRecipe(request.type);
    const bool attributesFollow = equalNames(request.type, L"INSERT") && flagged(request.content, 66);
    return (recipe && recipe->isSequence) || attributesFollow;
}

int makeEntity(Request& request) {
    EntityPointer entity = readEntity(request);
    if (!entity)
        return RTERROR;
    MadeEntity made;
    made.main = std::move(entity);
    made.inPaperSpace = flagged(request.content, 67);
    if (!startsSequence(request))
        return finishEntity(request, std::move(made));
    makingIn(&request.database).sequence = std::make_unique<MadeEntity>(std::move(made));
    return RTNORM;
}

// While a sequence is open only its parts and its end may come; anything else gives it up.
int continueSequence(Request& request) {
    Making& making = makingIn(&request.database);
    MadeEntity& sequence = *making.sequence;
    if (equalNames(request.type, L"SEQEND")) {
        auto end = std::make_unique<AcDbSequenceEnd>();
        std::wstring problem;
        if (readEntityData(*end, request.database, request.content, problem) != Acad::eOk)
            return badList(problem);
        static_cast<EntityState&>(*ObjectImp::of(end.get()).state).layer =
            readState<EntityState>(sequence.main.get()).layer;
        sequence.end = std::move(end);
        const std::unique_ptr<MadeEntity> finished = std::move(making.sequence);
        return finishEntity(request, std::move(*finished));
    }
    const wchar_t* const part = AcDbBlockReference::cast(sequence.main.get()) ? L"ATTRIB" : L"VERTEX";
    if (!equalNames(request.type, part)) {
        making.sequence.reset();
        return badList(std::wstring(part) + L" or SEQEND expected");
    }
    EntityPointer entity = readEntity(request);
    if (!entity)
        return RTERROR;
    sequence.parts.push_back(std::move(entity));
    return RTNORM;
}

int beginBlock(Request& request) {
    Making& making = makingIn(&request.database);
    if (making.block) {
        making.drop();
        return badList(L"a block cannot be defined inside another");
    }
    auto block = std::make_unique<MadeBlock>();
    block->name = textGroup(request.content, 2);
    block->description = textGroup(request.content, 4);
    if (!isValidSymbolName(block->name, Anonymous::Allowed))
        return badList(L"a block needs a name");
    const auto* const known =
        peek<AcDbBlockTableRecord>(findRecord(&request.database, TableIndex::Block, block->name));
    if (known && known->isLayout())
        return badList(L"model and paper space cannot be defined");
    const auto origin = std::ranges::find(request.content, short{10}, &DxfGroup::code);
    if (origin == request.content.end() || !detail::readValue(*origin, block->origin)) {
        return badList(L"group 10 is missing");
    }
    making.block = std::move(block);
    return RTNORM;
}

// "*U" stands for the next free anonymous name: *U1, *U2 and so on.
std::wstring blockName(const AcDbDatabase& database, const std::wstring& wanted) {
    if (wanted.size() != 2 || wanted[0] != L'*')
        return wanted;
    for (int number = 1;; ++number) {
        std::wstring name = foldCase(wanted) + std::to_wstring(number);
        if (findRecord(&database, TableIndex::Block, name).isNull())
            return name;
    }
}

bool closesCircle(const MadeBlock& block, AcDbObjectId present) {
    return std::ranges::any_of(block.entities, [present](const MadeEntity& made) {
        const auto* const reference = AcDbBlockReference::cast(made.main.get());
        return reference && mayReferTo(present, reference->blockTableRecord()) != Acad::eOk;
    });
}

int finishBlock(Request& request) {
    Making& making = makingIn(&request.database);
    if (!making.block || making.sequence) {
        making.drop();
        return badList(L"no block is being defined");
    }
    const std::unique_ptr<MadeBlock> made = std::move(making.block);
    const std::wstring name = blockName(request.database, made->name);
    AcDbObjectId id = findRecord(&request.database, TableIndex::Block, name);
    if (closesCircle(*made, id))
        return entityError(Acad::eSelfReference);
    if (id.isNull())
        id = addRecord(request.database, TableIndex::Block, std::make_unique<AcDbBlockTableRecord>(), name);
    auto* const block = peek<AcDbBlockTableRecord>(id);
    if (!block)
        return badList(L"the block cannot be defined");
    completeBlock(*block);
    eraseContents(*block);  // references to it show the new entities
    noteChange(*id.stub());
    auto& state = static_cast<BlockState&>(*ObjectImp::of(block).state);
    state.origin = made->origin;
    state.description = made->description;
    for (MadeEntity& entity : made->entities) {
        AcDbObjectId ignored;
        append(*block, entity, ignored);
    }
    request.made = state.begin;
    return RTNORM;
}

int makeRecord(Request& request, TableIndex table) {
    std::unique_ptr<AcDbSymbolTableRecord> record(newRecord(table));
    std::wstring problem;
    if (readEntityData(*record, request.database, request.content, problem) != Acad::eOk)
        return badList(problem);
    if (!isValidSymbolName(record->name()))
        return badList(L"a record needs a name");
    if (!checkXdata(request))
        return RTERROR;
    takeXdata(*record, request);
    request.made = addRecord(request.database, table, std::move(record));
    return request.made.isNull() ? badList(L"the name is taken") : static_cast<int>(RTNORM);
}

// Dictionaries and records of data are made without an owner; a dictionary takes them up afterwards.
int makeOwnerless(Request& request) {
    std::unique_ptr<AcDbObject> object(newObjectFor(request.type, false));
    std::wstring problem;
    if (readEntityData(*object, request.database, request.content, problem) != Acad::eOk)
        return badList(problem);
    if (!checkXdata(request))
        return RTERROR;
    takeXdata(*object, request);
    const auto status = request.database.impl().add(object.get(), AcDbObjectId(), AcDbHandle(), request.made);
    if (status != Acad::eOk)
        return entityError(status);
    object.release()->close();
    return RTNORM;
}

int make(Request& request, bool ownerless) {
    Making& making = makingIn(&request.database);
    if (making.sequence)
        return continueSequence(request);
    if (equalNames(request.type, L"BLOCK"))
        return beginBlock(request);
    if (equalNames(request.type, L"ENDBLK"))
        return finishBlock(request);
    if (equalNames(request.type, L"ATTRIB") || equalNames(request.type, L"VERTEX") ||
        equalNames(request.type, L"SEQEND")) {
        return badList(request.type + L" without an entity that it belongs to");
    }
    TableIndex table{};
    const bool isRecord = !equalNames(request.type, L"BLOCK_RECORD") && findTableIndex(request.type, table);
    if (isRecord)
        return making.block ? badList(L"a block holds entities only") : makeRecord(request, table);
    const bool isData = equalNames(request.type, L"XRECORD") || equalNames(request.type, L"DICTIONARY");
    return ownerless && isData ? makeOwnerless(request) : makeEntity(request);
}

int makeFromList(const resbuf* data, bool ownerless, AcDbObjectId& made) {
    AcDbDatabase* const database = workingDatabase();
    if (!database)
        return entityError(Acad::eNoDatabase);
    if (!data) {  // gives up whatever was begun
        makingIn(database).drop();
        return badList(L"no entity data");
    }
    if (!mayWrite(*database))
        return entityError(Acad::eLockViolation);
    Request request{*database, {}, {}, {}, {}};
    request.content = contentGroups(groupsOfList(data), request.xdata);
    request.type = foldCase(textGroup(request.content, 0));
    if (request.type.empty())
        return badList(L"group 0 is missing");
    // The type comes first, wherever the list has it.
    std::erase_if(request.content, [](const DxfGroup& group) { return group.code == 0; });
    request.content.insert(request.content.begin(), {0, request.type});
    const int result = make(request, ownerless);
    made = request.made;
    return result;
}

}  // namespace

void forgetMaking(const AcDbDatabase* database) {
    if (currentMaking().database == database)
        makingIn(nullptr);
}

void forgetMakingOf(const AcRxClass* cls) {
    const auto isOfClass = [cls](const MadeEntity& made) { return made.main->isKindOf(cls); };
    Making& making = currentMaking();
    const bool inBlock = making.block && std::ranges::any_of(making.block->entities, isOfClass);
    const bool inSequence = making.sequence && isOfClass(*making.sequence);
    if (inBlock || inSequence)
        making.drop();
}

}  // namespace drafthost

int acdbEntMake(const resbuf* data) {
    AcDbObjectId made;
    return drafthost::makeFromList(data, false, made);
}

int acdbEntMakeX(const resbuf* data, ads_name result) {
    ads_name_clear(result);
    AcDbObjectId made;
    const int status = drafthost::makeFromList(data, true, made);
    if (status == RTNORM && !made.isNull())
        result[0] = made.stub()->name;
    return status;
}
