#pragma once

// A block's contents as text, with everything that they refer to. Objects are named by the order in which
// they are met, records by their names, so that the same contents read the same in two drawings.

#include <deque>
#include <set>
#include <sstream>
#include <unordered_map>

#include "host/api/block_reference.h"
#include "host/database/block_reference_state.h"
#include "host/database/database_impl.h"
#include "host/database/loading.h"
#include "host/database/table_states.h"

namespace drafthost {

class Dump {
public:
    static std::wstring ofBlock(AcDbObjectId block) {
        Dump dump(block);
        dump.blocks_.push_back(block);
        while (!dump.blocks_.empty()) {
            const AcDbObjectId next = dump.blocks_.front();
            dump.blocks_.pop_front();
            dump.block(next);
        }
        return dump.text_.str();
    }

private:
    explicit Dump(AcDbObjectId root) : root_(root) {}

    void block(AcDbObjectId id) {
        if (!seen_.insert(id).second)
            return;
        const auto* const record = peek<AcDbBlockTableRecord>(id);
        const AcGePoint3d origin = record->origin();
        text_ << L"BLOCK " << label(id) << L" from " << origin.x << L',' << origin.y << L',' << origin.z
              << L'\n';
        for (const AcDbObjectId entity : record->entityIds())
            object(entity);
    }

    void object(AcDbObjectId id) {
        if (!seen_.insert(id).second)
            return;
        const AcDbObject& shown = *id.stub()->object;
        for (const DxfGroup& group : fileGroups(shown)) {
            text_ << group.code << L' ';
            value(*id.database(), group);
            text_ << L'\n';
        }
        if (const auto* const reference = AcDbBlockReference::cast(&shown))
            blocks_.push_back(reference->blockTableRecord());
        const std::unique_ptr<ObjectState> state = ObjectImp::of(&shown).state->clone();
        forEachReference(*state, [&](const AcDbObjectId& other, ReferenceKind kind) {
            const bool owned = kind == ReferenceKind::SoftOwner || kind == ReferenceKind::HardOwner;
            if (owned && !other.isErased())
                object(other);
        });
    }

    void value(const AcDbDatabase& database, const DxfGroup& group) {
        struct Writer {
            Dump& dump;
            const AcDbDatabase& database;
            void operator()(const std::wstring& text) const {
                dump.text_ << (text.starts_with(L'*') ? text.substr(0, 2) : text);
            }
            void operator()(double number) const { dump.text_ << number; }
            void operator()(std::int64_t number) const { dump.text_ << number; }
            void operator()(const AcGePoint3d& p) const { dump.text_ << p.x << L',' << p.y << L',' << p.z; }
            void operator()(const AcGePoint2d& p) const { dump.text_ << p.x << L',' << p.y; }
            void operator()(const std::vector<std::uint8_t>& bytes) const { dump.text_ << bytes.size(); }
            void operator()(const ObjectReference& reference) const {
                AcDbObjectId id = reference.id;
                if (id.isNull())
                    id = AcDbObjectId(database.impl().find(reference.handle));
                dump.text_ << (id.isErased() ? L"null" : dump.label(id));
            }
        };
        std::visit(Writer{*this, database}, group.value);
    }

    std::wstring label(AcDbObjectId id) {
        if (id == root_)
            return L"(root)";
        if (peek<AcDbSymbolTableRecord>(id)) {
            const std::wstring& name = recordName(id);
            return name.starts_with(L'*') ? name.substr(0, 2) : name;
        }
        return L'#' + std::to_wstring(labels_.try_emplace(id, labels_.size() + 1).first->second);
    }

    AcDbObjectId root_;
    std::wostringstream text_;
    std::deque<AcDbObjectId> blocks_;
    std::set<AcDbObjectId> seen_;
    std::unordered_map<AcDbObjectId, std::size_t> labels_;
};

}  // namespace drafthost
