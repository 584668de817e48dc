#pragma once

// What stands behind an AcDbObject: where it lives (ObjectImp) and what it holds (ObjectState).
//
// The state is everything that undo, transaction abort and copying treat as the object's contents: saving it
// is one clone, restoring it one swap. Each class keeps a state struct derived from its parent's. Positions
// are kept as the object's groups give them (entity coordinates plus normal where DXF has them so); the API
// converts, so that filing is a table walk and round trips are exact.

#include <memory>
#include <string>
#include <vector>

#include "host/api/object.h"
#include "host/database/dxf_group.h"
#include "host/database/state_filing.h"

struct AcDbStub;

namespace drafthost {

// Groups that no class here knows, kept with the subclass they stood in and written back there.
struct ExtraGroup {
    std::wstring subclass;
    DxfGroup group;
};

struct ObjectState {
    AcDbObjectId owner;
    AcDbObjectId extensionDictionary;
    std::vector<AcDbObjectId> reactors;
    std::vector<DxfGroup> xdata;  // starts with group 1001; one run for each application
    std::vector<ExtraGroup> extras;

    ObjectState() = default;
    ObjectState(const ObjectState&) = default;
    ObjectState& operator=(const ObjectState&) = default;
    virtual ~ObjectState() = default;
    virtual std::unique_ptr<ObjectState> clone() const = 0;
    // Called on the state of a copy: drops what belongs to the original's place in its database.
    virtual void becomeCopy() {
        owner = extensionDictionary = AcDbObjectId();
        reactors.clear();
    }
    // Walks over all members. Each class walks over its parent's first.
    virtual void file(StateWalker& walker);
    // For classes that keep a quick copy of what extended data say.
    virtual void extendedDataChanged() {}
};

// Gives a state struct its clone.
template <class Derived, class Base>
struct ClonedState : Base {
    std::unique_ptr<ObjectState> clone() const override {
        return std::make_unique<Derived>(static_cast<const Derived&>(*this));
    }
};

struct EntityState : ObjectState {
    AcDbObjectId layer;     // null: the current layer when the entity is appended
    AcDbObjectId linetype;  // null: by layer
    double linetypeScale = 1.0;
    std::int32_t color = 256;
    std::int32_t trueColor = -1;
    std::int32_t lineWeight = AcDb::kLnWtByLayer;
    std::int32_t invisible = 0;

    void file(StateWalker& walker) override;
};

struct ObjectImp {
    explicit ObjectImp(std::unique_ptr<ObjectState> initial) : state(std::move(initial)) {}

    AcDbStub* stub = nullptr;  // null: not in a database
    std::unique_ptr<ObjectState> state;

    static ObjectImp& of(const AcDbObject* object) { return *object->imp_; }
};

template <class State>
ObjectImp* newImp() {
    return new ObjectImp(std::make_unique<State>());
}

// The state for reading. Modules must have objects of a database open for it; inside the host, look-ups and
// drawing read closed ones too.
template <class State>
const State& readState(const AcDbObject* object) {
    return static_cast<const State&>(*ObjectImp::of(object).state);
}

// Prepares an object for a change: true when it is outside a database or open for write. Saves its state for
// the running transactions before the first change.
bool prepareWrite(AcDbObject* object);

// The state for changing, or null when the object is not open for write.
template <class State>
State* writeState(AcDbObject* object) {
    return prepareWrite(object) ? static_cast<State*>(ObjectImp::of(object).state.get()) : nullptr;
}

}  // namespace drafthost
