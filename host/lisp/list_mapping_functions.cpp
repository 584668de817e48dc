// Functions that call a function for the elements of lists.

#include "host/lisp/language_functions.h"
#include "host/lisp/machine.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace drafthost::lisp {

namespace {

// Takes one element off each list; false when one is exhausted.
bool takeElements(std::vector<Value>& lists, std::vector<Value>& row) {
    for (std::size_t index = 0; index < lists.size(); ++index) {
        if (!lists[index].isPair()) {
            return false;
        }
        row[index] = lists[index].car();
        lists[index] = lists[index].cdr();
    }
    return true;
}

// Calls the first argument with the elements of the list arguments side by side until one list ends or
// `keepGoing` answers false for a result. The tails walked along are parts of the arguments, so they stay
// alive.
template <class Receive>
void walk(Interpreter& interpreter, Arguments arguments, Receive keepGoing) {
    const Root function(interpreter, interpreter.machine().resolve(arguments[0]));
    if (arguments.size() == 2) {
        for (const Value element : elements(arguments.list(1))) {
            if (!keepGoing(interpreter.call(function.get(), std::span(&element, 1)))) {
                return;
            }
        }
        return;
    }
    std::vector<Value> lists;
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        lists.push_back(arguments.list(index));
    }
    std::vector<Value> row(lists.size());
    while (takeElements(lists, row)) {
        if (!keepGoing(interpreter.call(function.get(), row))) {
            return;
        }
    }
}

Value mapcar(Interpreter& interpreter, Arguments arguments) {
    ListBuilder results(interpreter);
    walk(interpreter, arguments, [&](Value result) {
        results.append(result);
        return true;
    });
    return results.list();
}

Value some(Interpreter& interpreter, Arguments arguments) {
    Value found;
    walk(interpreter, arguments, [&](Value result) {
        found = result;
        return result.isNil();
    });
    return found;
}

Value every(Interpreter& interpreter, Arguments arguments) {
    bool all = true;
    walk(interpreter, arguments, [&](Value result) { return all = !result.isNil(); });
    return interpreter.boolean(all);
}

Value apply(Interpreter& interpreter, Arguments arguments) {
    std::vector<Value> values;
    for (const Value element : elements(arguments.list(1))) {
        values.push_back(element);
    }
    return interpreter.call(arguments[0], values);
}

Value memberWhere(Interpreter& interpreter, Arguments arguments, bool wanted) {
    for (Value rest = arguments.list(1); rest.isPair(); rest = rest.cdr()) {
        if (!interpreter.call(arguments[0], {rest.car()}).isNil() == wanted) {
            return rest;
        }
    }
    return Value();
}

Value memberIf(Interpreter& interpreter, Arguments arguments) {
    return memberWhere(interpreter, arguments, true);
}

Value memberIfNot(Interpreter& interpreter, Arguments arguments) {
    return memberWhere(interpreter, arguments, false);
}

Value removeWhere(Interpreter& interpreter, Arguments arguments, bool unwanted) {
    ListBuilder kept(interpreter);
    for (const Value element : elements(arguments.list(1))) {
        if (!interpreter.call(arguments[0], {element}).isNil() != unwanted) {
            kept.append(element);
        }
    }
    return kept.list();
}

Value removeIf(Interpreter& interpreter, Arguments arguments) {
    return removeWhere(interpreter, arguments, true);
}

Value removeIfNot(Interpreter& interpreter, Arguments arguments) {
    return removeWhere(interpreter, arguments, false);
}

// Indices of the values in the order the comparison function wants. A merge sort of our own: it stays
// within bounds whatever a comparison function of the program answers. Stable.
std::vector<std::size_t> sortedIndices(Interpreter& interpreter, Value function,
                                       const std::vector<Value>& values) {
    const auto isBefore = [&](std::size_t left, std::size_t right) {
        return !interpreter.call(function, {values[left], values[right]}).isNil();
    };
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::vector<std::size_t> merged(order.size());
    for (std::size_t width = 1; width < order.size(); width *= 2) {
        for (std::size_t start = 0; start < order.size(); start += 2 * width) {
            const std::size_t middle = std::min(start + width, order.size());
            const std::size_t end = std::min(start + 2 * width, order.size());
            std::size_t left = start;
            std::size_t right = middle;
            for (std::size_t target = start; target < end; ++target) {
                const bool takeRight = left == middle || (right < end && isBefore(order[right], order[left]));
                merged[target] = order[takeRight ? right++ : left++];
            }
        }
        order.swap(merged);
    }
    return order;
}

std::vector<Value> collected(Value list) {
    std::vector<Value> values;
    for (const Value element : elements(list)) {
        values.push_back(element);
    }
    return values;
}

// Programs know that equal integers and symbols come out only once.
Value sort(Interpreter& interpreter, Arguments arguments) {
    const std::vector<Value> values = collected(arguments.list(0));
    const Root function(interpreter, interpreter.machine().resolve(arguments[1]));
    std::vector<Value> sorted;
    for (const std::size_t index : sortedIndices(interpreter, function.get(), values)) {
        const Value value = values[index];
        const bool mergesWithEqual = value.isInteger() || value.isSymbol();
        if (!mergesWithEqual || sorted.empty() || sorted.back() != value) {
            sorted.push_back(value);
        }
    }
    return interpreter.list(sorted);
}

Value sortIndices(Interpreter& interpreter, Arguments arguments) {
    const std::vector<Value> values = collected(arguments.list(0));
    const Root function(interpreter, interpreter.machine().resolve(arguments[1]));
    ListBuilder result(interpreter);
    for (const std::size_t index : sortedIndices(interpreter, function.get(), values)) {
        result.append(Value::integer(static_cast<std::int32_t>(index)));
    }
    return result.list();
}

constexpr BuiltinDefinition table[] = {
    {L"apply", apply, 2, 2, L"(apply f list) -> value of f called with the elements as arguments"},
    {L"mapcar", mapcar, 2, anyNumber, L"(mapcar f list ...) -> list of the values of f for the elements"},
    {L"vl-every", every, 2, anyNumber, L"(vl-every f list ...) -> T when f is never nil for the elements"},
    {L"vl-member-if", memberIf, 2, 2, L"(vl-member-if f list) -> rest from the first element f is true for"},
    {L"vl-member-if-not", memberIfNot, 2, 2,
     L"(vl-member-if-not f list) -> rest from the first element f is nil for"},
    {L"vl-remove-if", removeIf, 2, 2, L"(vl-remove-if f list) -> elements f is nil for"},
    {L"vl-remove-if-not", removeIfNot, 2, 2, L"(vl-remove-if-not f list) -> elements f is true for"},
    {L"vl-some", some, 2, anyNumber, L"(vl-some f list ...) -> first value of f that is not nil"},
    {L"vl-sort", sort, 2, 2, L"(vl-sort list f) -> sorted by f; equal integers and symbols only once"},
    {L"vl-sort-i", sortIndices, 2, 2, L"(vl-sort-i list f) -> indices of the elements in sorted order"},
};

}  // namespace

std::span<const BuiltinDefinition> listMappingFunctions() {
    return table;
}

}  // namespace drafthost::lisp
