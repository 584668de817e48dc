#include "host/lisp/value.h"

#include "host/lisp/interpreter.h"

#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

namespace drafthost::lisp {

Type Value::type() const {
    if (isReal()) {
        return Type::real;
    }
    switch (bits_ & tagMask) {
        case integerTag: return Type::integer;
        case pairTag: return Type::list;
        case symbolTag: return Type::symbol;
        case stringTag: return Type::string;
        case objectTag: return asObject()->type;
        default: return Type::nothing;
    }
}

std::size_t lengthOf(Value list) {
    std::size_t count = 0;
    for (; list.isPair(); list = list.cdr()) {
        ++count;
    }
    return count;
}

bool isEq(Value left, Value right) {
    if (left == right) {
        return true;
    }
    if (!left.isEntityName() || !right.isEntityName()) {
        return false;
    }
    return static_cast<EntityNameObject*>(left.asObject())->name ==
           static_cast<EntityNameObject*>(right.asObject())->name;
}

namespace {

bool atomsEqual(Value left, Value right, double fuzz) {
    if (left.isNumber() && right.isNumber()) {
        const double a = left.asNumber();
        const double b = right.asNumber();
        return a == b || std::abs(a - b) <= fuzz;
    }
    if (left.isString() && right.isString()) {
        return left.asString() == right.asString();
    }
    return isEq(left, right);
}

}  // namespace

bool isEqual(Value left, Value right, double fuzz, Interpreter* pollCancel) {
    std::vector<std::pair<Value, Value>> pending;
    for (;;) {
        while (left.isPair() && right.isPair() && left != right) {
            if (pollCancel) {
                pollCancel->pollCancel();
            }
            pending.emplace_back(left.cdr(), right.cdr());
            left = left.car();
            right = right.car();
        }
        if (!atomsEqual(left, right, fuzz)) {
            return false;
        }
        if (pending.empty()) {
            return true;
        }
        std::tie(left, right) = pending.back();
        pending.pop_back();
    }
}

std::wstring_view typeName(Type type) {
    static constexpr std::wstring_view names[] = {L"",
                                                  L"INT",
                                                  L"REAL",
                                                  L"SYM",
                                                  L"LIST",
                                                  L"STR",
                                                  L"SUBR",
                                                  L"EXRXSUBR",
                                                  L"USUBR",
                                                  L"ENAME",
                                                  L"PICKSET",
                                                  L"FILE",
                                                  L"VL-CATCH-ALL-APPLY-ERROR"};
    return names[static_cast<std::size_t>(type)];
}

}  // namespace drafthost::lisp
