#pragma once

// Building a LISP result: lists node by node, and the single values that need more than one call of the host.
//
// A builder appends at the end of the list; the named ones append a dotted pair (name . value). Texts are
// copied. Where the host has no memory left, std::bad_alloc is thrown.

#include "host/api/entity.h"
#include "module/binding/value_list.h"

#include <windows.h>

#include <oaidl.h>

namespace tessary {

// A list under construction. Its nodes are released with it unless endAndReturnList did that before.
class ResultList {
public:
    ResultList() = default;
    ResultList(const ResultList&) = delete;
    ResultList& operator=(const ResultList&) = delete;

    resbuf* head() const { return head_.get(); }  // null before beginResultList
    resbuf* tail() const { return tail_; }        // last node, null before beginResultList
    // Appends all nodes of the list.
    void append(ValueList nodes);
    void clear();

private:
    ValueList head_;
    resbuf* tail_ = nullptr;
};

// Starts the list anew with its opening parenthesis.
void beginResultList(ResultList& list);
void addString(ResultList& list, const ACHAR* text);
// Texts are trimmed of white space.
void addVariantValue(ResultList& list, const VARIANT& value);
void addPoint(ResultList& list, const AcGePoint3d& point);
void addNamedString(ResultList& list, const ACHAR* name, const ACHAR* text);
void addNamedReal(ResultList& list, const ACHAR* name, double value);
void addNamedPoint(ResultList& list, const ACHAR* name, const AcGePoint3d& point);
// (name . nil) for null; nothing for an entity that is not in a drawing, which has no name.
void addNamedEntity(ResultList& list, const ACHAR* name, const AcDbEntity* entity);
// Texts are trimmed of white space, except under names that begin with "s_": those fields keep their blanks.
void addNamedVariant(ResultList& list, const ACHAR* name, const VARIANT& value);
// A new list (name . value) from one node. Null for anything but numbers, points and texts.
ValueList makeNamedPair(const ACHAR* name, const resbuf& value);
// Closes the list, makes it the result of the LISP call and releases it.
void endAndReturnList(ResultList& list);

// An integer when the value fits 16 bits, otherwise a real.
void returnInteger(int value);
// The object's entity name, nil when it has none.
void returnObjectId(AcDbObjectId id);
void returnEntity(const AcDbEntity& entity);

}  // namespace tessary
