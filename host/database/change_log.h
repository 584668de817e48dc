#pragma once

// What was changed since a moment, kept so that it can be taken back: one log stands behind each running
// transaction, and the editor's undo keeps one for each step.
//
// An object's contents are saved once, before its first change. Objects that were added are remembered as
// such; taking back removes them. All logs of a database are told of every change (AcDbDatabase::Impl::logs).
//
// That an entity or record went to the end of its owner's list is not saved: lists hold erased members
// anyway, and saving a block's whole list with each entity that is drawn would cost more than the drawing.

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/database/header_variables.h"
#include "host/database/object_imp.h"
#include "host/database/saved_fields.h"

namespace drafthost {

// Ids that the database itself remembers, and its header.
struct DatabaseSettings {
    HeaderVariables header;
    AcDbObjectId layer, textStyle, linetype, dimensionStyle;  // of new entities
};

class ChangeLog {
public:
    // Before a change to the object's contents or to its erased mark. Nothing happens when it is saved
    // already.
    void beforeChange(AcDbStub* stub);
    void added(AcDbStub* stub);
    void beforeSettingsChange(const DatabaseSettings& settings);

    bool empty() const { return entries_.empty() && !settings_; }

    // One of its objects is open, so nothing may be taken back now.
    bool holdsOpenObject() const;
    // Drops objects that ended for good since.
    void forgetRemoved();

    // Adds what this log knows to an older one that covers a longer time.
    void mergeInto(ChangeLog& older);

    enum class Removal { ForGood, AsErased };
    // Takes all changes back. Removal: objects that were added either end for good (their ids go stale) or
    // become erased, so that a redo can bring them back. Returns the log that redoes what was taken back.
    ChangeLog revert(AcDbDatabase& database, Removal removal);

private:
    struct Saved {
        std::unique_ptr<ObjectState> state;   // null for objects that were added
        std::unique_ptr<SavedFields> fields;  // of an object of a module's class, beside its state
        bool erased = false;
        bool undone = false;
        bool added = false;
    };
    static Saved snapshot(const AcDbStub& stub);
    static void restore(AcDbStub& stub, Saved& saved);
    std::unordered_map<AcDbStub*, Saved> entries_;
    std::vector<AcDbStub*> order_;  // of the entries, oldest first
    std::optional<DatabaseSettings> settings_;
};

}  // namespace drafthost
