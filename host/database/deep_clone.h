#pragma once

// Copies of objects together with all that they own, in the same drawing or in another one.
//
// A copy is made in three steps: objects are taken (nothing is changed yet), put into the target database,
// which gives them their ids, and settled, when all ids that they hold become those of the copies. What is
// referred to and has no copy keeps its id in the same drawing; in another one the reference becomes null.

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/database/database_impl.h"
#include "host/database/memory_filer.h"
#include "host/database/table_states.h"

namespace drafthost {

class DeepCopy {
public:
    // Both live longer. The source is not changed, unless it is the target too.
    DeepCopy(AcDbDatabase& source, AcDbDatabase& target);
    ~DeepCopy();  // closes what was put into the target
    DeepCopy(const DeepCopy&) = delete;
    DeepCopy& operator=(const DeepCopy&) = delete;

    // The object that stands for one of the source's; null: none, or one that has no id yet.
    AcDbObjectId copyOf(AcDbObjectId original) const;
    // Lets an object that the target has stand for one of the source's.
    void setCopy(AcDbObjectId original, AcDbObjectId copy);
    // True when the object was taken, or another one stands for it.
    bool knows(AcDbObjectId original) const { return copies_.contains(original); }

    // Takes the object and all that it owns. made: an empty object of its class to become the copy, null: one
    // is made. Afterwards wanted() has what the taken objects need. eNotApplicable for a class that cannot be
    // copied.
    Acad::ErrorStatus take(AcDbObjectId original, std::unique_ptr<AcDbObject> made = nullptr);

    struct Record {
        AcDbObjectId original;
        TableIndex table = TableIndex::Layer;
        std::wstring name;     // in the target
        AcDbObjectId present;  // the target's record that takes the contents; null: a new one
        // Changes the contents before they are looked at; may be empty.
        std::function<void(RecordState& state)> shape;
    };
    // Takes a record of a symbol table, with the entities of a block.
    Acad::ErrorStatus takeRecord(const Record& record);

    // Hard pointers of the taken objects, as they come; the caller takes them, lets others stand for them, or
    // leaves them. Emptied by the call.
    std::vector<AcDbObjectId> wanted() { return std::exchange(wanted_, {}); }
    // Applications whose extended data the taken objects have.
    std::vector<std::wstring> applications() const;
    // Names under which they are filed in DXF, each once.
    std::set<std::wstring> dxfNames() const;

    // Puts everything that was taken into the target. Its changes are the caller's to take back on failure:
    // eInvalidKey for a record whose name is impossible or taken.
    Acad::ErrorStatus place();
    // Translates all ids. Objects stay open for write until close(). The owner of what was taken alone must
    // have a copy, or is the same.
    Acad::ErrorStatus settle();
    void close();
    // The copy of the object, which stays open for write: the caller closes it.
    AcDbObject* keepOpen(AcDbObjectId original);

private:
    struct Copy {
        AcDbObjectId original;
        std::unique_ptr<AcDbObject> made;    // until it is in the database
        std::unique_ptr<ObjectState> state;  // contents of a class of the host
        std::optional<DwgRecord> filed;      // contents of a class of a module
        std::optional<Record> record;
        AcDbObject* object = nullptr;  // in the target
        bool open = false;
    };

    Acad::ErrorStatus read(Copy& copy);
    // What the copy owns, the last first.
    std::vector<AcDbObjectId> walk(const Copy& copy);
    Acad::ErrorStatus takeAll(std::vector<AcDbObjectId> stack, std::unique_ptr<AcDbObject> made);
    Acad::ErrorStatus placeRecord(Copy& copy);
    AcDbObjectId translated(AcDbObjectId id, ReferenceKind kind) const;
    AcDbHandle translatedHandle(AcDbHandle handle) const;
    void translate(ObjectState& state, bool idsToo) const;
    void settleState(Copy& copy);
    void settleRecord(Copy& copy);
    Acad::ErrorStatus settleFiled(Copy& copy);

    AcDbDatabase& source_;
    AcDbDatabase& target_;
    std::unordered_map<AcDbObjectId, AcDbObjectId> copies_;  // null id: taken and not yet placed
    std::vector<Copy> taken_;                                // in the order they came
    std::vector<AcDbObjectId> wanted_;
};

// Copies an entity into the block it is in, with attributes and extension dictionary. copy: open for write,
// the caller closes it. eProxyRefused or eNotApplicable for one that cannot be copied. The caller takes the
// changes back on failure.
Acad::ErrorStatus deepClone(const AcDbEntity& entity, AcDbEntity*& copy);

// Erases entities of a block with what they own; the block's open state is not asked.
void eraseContents(const AcDbBlockTableRecord& block);
// Erases an object and the entries of a dictionary, whatever their open state.
void eraseWithEntries(AcDbObjectId id);

}  // namespace drafthost
