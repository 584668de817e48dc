#pragma once

// The members of object states, in one fixed order for each class: what the exact filing of objects writes
// and reads, and where the ids are that copying into another place translates. Each state struct lists its
// members once (ObjectState::file); the walkers here decide what happens to them.

#include <functional>
#include <string>
#include <vector>

#include "host/api/filer.h"
#include "host/database/dxf_group.h"

namespace drafthost {

struct ObjectState;

enum class ReferenceKind { SoftOwner, HardOwner, SoftPointer, HardPointer };

class StateWalker {
public:
    virtual ~StateWalker() = default;
    virtual void value(bool& value) = 0;
    virtual void value(std::int32_t& value) = 0;
    virtual void value(std::int64_t& value) = 0;
    virtual void value(double& value) = 0;
    virtual void value(std::wstring& text) = 0;
    virtual void value(AcGePoint2d& point) = 0;
    virtual void value(AcGePoint3d& point) = 0;
    virtual void value(AcGeVector3d& vector) = 0;
    virtual void value(AcDbHandle& handle) = 0;
    virtual void value(std::vector<std::uint8_t>& bytes) = 0;
    virtual void reference(AcDbObjectId& id, ReferenceKind kind) = 0;
    // The number of elements of a list, before them: given the present one, returns the one to walk over.
    virtual std::size_t count(std::size_t present) = 0;
    // What was walked over cannot be: an unknown kind of value. For readers, whose reading has failed then.
    virtual void reject() {}
    virtual bool failed() const { return false; }

    // Members one after another.
    template <class... Members>
    void values(Members&... members) {
        (value(members), ...);
    }
    // A list, element by element: each(element).
    template <class Element, class Each>
    void list(std::vector<Element>& elements, Each each) {
        const std::size_t number = count(elements.size());
        if (number < elements.size())
            elements.resize(number);
        // One by one: a number that was read where none was written must not cost memory.
        for (std::size_t i = 0; i < number && !failed(); ++i) {
            if (i == elements.size())
                elements.emplace_back();
            each(elements[i]);
        }
    }
    void references(std::vector<AcDbObjectId>& ids, ReferenceKind kind);
    void groups(std::vector<DxfGroup>& groups);
    void group(DxfGroup& group);
};

// What a reference in a group of that code means (330 to 369, 390, 1005 and so on).
ReferenceKind referenceKind(short code);

// Writes the state into the filer. Reads one written for an object of the same class: on failure the state is
// half read, so read into a copy.
Acad::ErrorStatus fileStateOut(AcDbDwgFiler& filer, const ObjectState& state);
Acad::ErrorStatus fileStateIn(AcDbDwgFiler& filer, ObjectState& state);

// Every id that the state holds, null ones left out, with its meaning; each may be changed.
void forEachReference(ObjectState& state,
                      const std::function<void(AcDbObjectId& id, ReferenceKind kind)>& visit);

}  // namespace drafthost
