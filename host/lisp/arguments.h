#pragma once

// The arguments of one call as a built-in function sees them.

#include "host/lisp/lisp_error.h"
#include "host/lisp/value.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace drafthost::lisp {

struct FileObject;

// A point argument in drawing units. `dimension` is 2 when the list has no z; z is then 0.
struct Point {
    double x = 0;
    double y = 0;
    double z = 0;
    int dimension = 3;
};

// A view of values on the interpreter's stack: valid, and kept alive, until the function returns.
// The typed getters raise the language's own error ("bad argument type: ...") for a value of
// another type. An index behind the last argument reads as nil, so a required argument that is
// missing raises the same error as nil does; the table's arity check comes first.
class Arguments {
public:
    Arguments(const Value* first, std::size_t count) : first_(first), count_(count) {}

    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    // true when the argument was given and is not nil
    bool has(std::size_t index) const { return index < count_ && !first_[index].isNil(); }
    Value operator[](std::size_t index) const { return index < count_ ? first_[index] : Value(); }
    std::span<const Value> values() const { return {first_, count_}; }
    Arguments from(std::size_t index) const {
        return index < count_ ? Arguments(first_ + index, count_ - index) : Arguments(first_, 0);
    }
    const Value* begin() const { return first_; }
    const Value* end() const { return first_ + count_; }

    std::int32_t integer(std::size_t index) const;        // fixnump:
    double real(std::size_t index) const;                 // numberp: (integers are widened)
    const std::wstring& string(std::size_t index) const;  // stringp
    Value list(std::size_t index) const;                  // listp: nil or a pair
    Value pair(std::size_t index) const;                  // consp
    Symbol* symbol(std::size_t index) const;              // symbolp
    Point point(std::size_t index) const;                 // 2D/3D point:
    EntityName entityName(std::size_t index) const;       // lentityp
    const std::shared_ptr<SelectionSetBase>& selectionSet(std::size_t index) const;  // lselsetp
    FileObject& file(std::size_t index) const;                                       // streamp

    // the same with a value for an argument that is missing or nil
    std::int32_t integerOr(std::size_t index, std::int32_t fallback) const {
        return has(index) ? integer(index) : fallback;
    }
    double realOr(std::size_t index, double fallback) const { return has(index) ? real(index) : fallback; }
    std::wstring_view stringOr(std::size_t index, std::wstring_view fallback) const {
        return has(index) ? std::wstring_view(string(index)) : fallback;
    }

private:
    const Value* first_;
    std::size_t count_;
};

// A list of two or three numbers as a point; anything else raises "bad argument type: 2D/3D point: ...".
Point pointOf(Value value);

}  // namespace drafthost::lisp
