#include "host/editor/command_context.h"

#include <algorithm>

#include "host/api/symbol_tables.h"
#include "host/database/database_impl.h"
#include "host/database/deep_clone.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/editor/coordinates.h"
#include "host/editor/selection.h"
#include "host/editor/typed_text.h"

namespace drafthost::editor {

CommandContext::Reply CommandContext::ask(InputRequest::Kind kind, const Question& question) {
    InputRequest request;
    request.kind = kind;
    request.prompt = question.prompt;
    request.control = question.control;
    request.keywords = Keywords(question.keywords);
    request.base = question.base;
    document_.commandLine().freshLine();
    const InputResult answer = document_.prompts().ask(std::move(request));
    if (answer.status == RTCAN || answer.status == RTERROR)
        throw CommandCancelled();
    Reply reply{.given = answer.status != RTNONE,
                .keyword = {},
                .point = answer.point,
                .number = answer.number,
                .integer = answer.integer,
                .text = answer.text};
    if (answer.status == RTKWORD || kind == InputRequest::Kind::Keyword)
        reply.keyword = answer.text;
    return reply;
}

AcGePoint3d CommandContext::point(const wchar_t* prompt, std::optional<AcGePoint3d> base) {
    const Reply reply = ask(InputRequest::Kind::Point, {.prompt = prompt, .base = base});
    if (!reply.given)
        throw CommandCancelled();
    return reply.point;
}

double CommandContext::distance(const wchar_t* prompt, std::optional<AcGePoint3d> base) {
    const Reply reply = ask(InputRequest::Kind::Distance, {.prompt = prompt, .base = base});
    if (!reply.given)
        throw CommandCancelled();
    return reply.number;
}

double CommandContext::angle(const wchar_t* prompt, std::optional<AcGePoint3d> base) {
    const Reply reply = ask(InputRequest::Kind::Angle, {.prompt = prompt, .base = base});
    return reply.given ? reply.number : 0;
}

std::wstring CommandContext::keyword(const wchar_t* prompt, const wchar_t* keywords) {
    return ask(InputRequest::Kind::Keyword, {.prompt = prompt, .keywords = keywords}).keyword;
}

std::wstring CommandContext::text(const wchar_t* prompt, bool allowBlanks) {
    InputRequest request;
    request.kind = InputRequest::Kind::Text;
    request.prompt = prompt;
    request.allowBlanks = allowBlanks;
    document_.commandLine().freshLine();
    const InputResult answer = document_.prompts().ask(std::move(request));
    if (answer.status == RTCAN)
        throw CommandCancelled();
    return answer.text;
}

std::vector<AcDbObjectId> CommandContext::selection() {
    return selectionByWindow().set->members();
}

SelectResult CommandContext::selectionByWindow() {
    SelectResult result = select(document_, {});
    if (result.status != RTNORM)
        throw CommandCancelled();
    return result;
}

void CommandContext::print(const std::wstring& text) {
    if (!document_.source().showsPrompts())
        return;
    document_.commandLine().freshLine();
    document_.commandLine().write(text + L"\n");
}

AcGeMatrix3d CommandContext::ucsToWorld() const {
    return editor::ucsToWorld(*document_.database());
}

void CommandContext::add(std::unique_ptr<AcDbEntity> entity) {
    AcDbDatabase& drawing = database();
    const AcDbObjectId space =
        drawing.impl().currentSpace.isNull() ? drawing.modelSpaceId() : drawing.impl().currentSpace;
    const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForWrite);
    if (!block)
        throw CommandCancelled();
    if (entity->colorIndex() == 256)
        entity->setColorIndex(drawing.cecolor());
    if (!drawing.celtype().isNull())
        entity->setLinetype(drawing.celtype());
    if (block->appendAcDbEntity(entity.get()) != Acad::eOk)
        throw CommandCancelled();
    entity.release()->close();
}

bool CommandContext::append(std::unique_ptr<AcDbEntity> entity, AcDbObjectId block) {
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
    if (!record || record->appendAcDbEntity(entity.get()) != Acad::eOk)
        return false;
    entity.release()->close();
    return true;
}

void CommandContext::reportUnchanged(int locked, int failed) {
    if (locked)
        print(std::to_wstring(locked) + (locked == 1 ? L" was" : L" were") + L" on a locked layer.");
    if (failed)
        print(std::to_wstring(failed) + L" could not be changed.");
}

namespace {

Acad::ErrorStatus changeOne(AcDbObjectId id, const std::function<Acad::ErrorStatus(AcDbEntity&)>& each) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    return entity ? each(*entity) : entity.openStatus();
}

}  // namespace

void CommandContext::change(const std::vector<AcDbObjectId>& entities,
                            const std::function<Acad::ErrorStatus(AcDbEntity&)>& each) {
    AcDbTransactionManager& transactions = *database().transactionManager();
    int locked = 0, failed = 0;
    for (const AcDbObjectId id : entities) {
        // What fails must leave nothing behind: neither half a change nor a step for U to take back.
        transactions.startTransaction();
        const Acad::ErrorStatus status = changeOne(id, each);
        if (status == Acad::eOk) {
            transactions.endTransaction();
            continue;
        }
        transactions.abortTransaction();
        ++(status == Acad::eOnLockedLayer ? locked : failed);
    }
    reportUnchanged(locked, failed);
}

void CommandContext::transform(const std::vector<AcDbObjectId>& entities, const AcGeMatrix3d& matrix) {
    change(entities, [&](AcDbEntity& entity) { return entity.transformBy(matrix); });
}

namespace {

// The entity's copy where the matrix puts it; nothing when one cannot be made or moved.
bool copyMoved(AcDbObjectId id, const AcGeMatrix3d& matrix) {
    AcDbEntity* copy = nullptr;
    {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (!entity || deepClone(*entity, copy) != Acad::eOk)
            return false;
    }
    const bool moved = copy->transformBy(matrix) == Acad::eOk;
    copy->close();
    return moved;
}

}  // namespace

void CommandContext::copy(const std::vector<AcDbObjectId>& entities, const AcGeMatrix3d& matrix) {
    AcDbTransactionManager& transactions = *database().transactionManager();
    int failed = 0;
    for (const AcDbObjectId id : entities) {
        // A copy that cannot be moved must not stay on its original.
        transactions.startTransaction();
        if (copyMoved(id, matrix)) {
            transactions.endTransaction();
        } else {
            transactions.abortTransaction();
            ++failed;
        }
    }
    reportUnchanged(0, failed);
}

void CommandContext::erase(const std::vector<AcDbObjectId>& entities) {
    change(entities, [](AcDbEntity& entity) { return entity.erase(); });
}

}  // namespace drafthost::editor
