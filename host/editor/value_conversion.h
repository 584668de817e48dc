#pragma once

// LISP values as value lists and back.
//
// A list of two or three reals is RTPOINT or RT3DPOINT; other lists are RTLB ... RTLE, dotted pairs with
// RTDOTE. An integer that fits 16 bits is RTSHORT, another RTLONG. T is RTT, nil RTNIL, another symbol its
// name as RTSTR. Values that modules know nothing of (functions, files) are RTNIL. In the other direction a
// node with a group code becomes the pair (code . value), a point (code x y z), as entity data is written in
// LISP.

#include <optional>
#include <span>
#include <vector>

#include "host/api/resbuf.h"
#include "host/database/dxf_group.h"
#include "host/editor/answer.h"
#include "host/lisp/interpreter.h"

namespace drafthost::editor {

// Releases a value list.
struct ReleaseList {
    void operator()(resbuf* list) const { acutRelRb(list); }
};
using ValueList = std::unique_ptr<resbuf, ReleaseList>;

// Collects nodes front to back.
class ListCollector {
public:
    // The node, zero or empty; raises a LISP error when memory is exhausted.
    resbuf& add(int type);
    void append(ValueList list);
    ValueList take() { return std::move(first_); }

private:
    ValueList first_;
    resbuf* last_ = nullptr;
};

ValueList toValueList(std::span<const lisp::Value> values);
// The values of the list in order; sub-lists are made. Unbalanced ends are closed at the end of the list.
// interpreter: whose values they become.
lisp::Value fromValueList(lisp::Interpreter& interpreter, const resbuf* list);
lisp::Value fromNode(lisp::Interpreter& interpreter, const resbuf& node);

// Entity data: an association list as group nodes and back. Extended data stand in (-3 ("APP" (1000 . "x")
// ...) ...). Raises "bad DXF group: ..." for elements that are no groups.
ValueList groupsFromValue(lisp::Value list);
lisp::Value valueFromGroups(lisp::Interpreter& interpreter, const resbuf* groups);

// A value given where the drafter is asked: a point, number, text or entity; nothing for other values.
std::optional<Answer> answerFromValue(lisp::Value value);

lisp::Value entityValue(lisp::Interpreter& interpreter, AcDbObjectId id);
// The null id when the name names nothing.
AcDbObjectId entityOf(lisp::Value name);
lisp::Value pointValue(lisp::Interpreter& interpreter, const AcGePoint3d& point);

}  // namespace drafthost::editor
