#include "host/lisp/arguments.h"

#include "host/lisp/file_object.h"

namespace drafthost::lisp {

std::int32_t Arguments::integer(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isInteger()) {
        raiseBadArgumentType(L"fixnump:", value);
    }
    return value.asInteger();
}

double Arguments::real(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isNumber()) {
        raiseBadArgumentType(L"numberp:", value);
    }
    return value.asNumber();
}

const std::wstring& Arguments::string(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isString()) {
        raiseBadArgumentType(L"stringp", value);
    }
    return value.asString();
}

Value Arguments::list(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isList()) {
        raiseBadArgumentType(L"listp", value);
    }
    return value;
}

Value Arguments::pair(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isPair()) {
        raiseBadArgumentType(L"consp", value);
    }
    return value;
}

Symbol* Arguments::symbol(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isSymbol()) {
        raiseBadArgumentType(L"symbolp", value);
    }
    return value.asSymbol();
}

Point Arguments::point(std::size_t index) const {
    return pointOf((*this)[index]);
}

EntityName Arguments::entityName(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isEntityName()) {
        raiseBadArgumentType(L"lentityp", value);
    }
    return static_cast<EntityNameObject*>(value.asObject())->name;
}

const std::shared_ptr<SelectionSetBase>& Arguments::selectionSet(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isSelectionSet()) {
        raiseBadArgumentType(L"lselsetp", value);
    }
    return static_cast<SelectionSetObject*>(value.asObject())->set;
}

FileObject& Arguments::file(std::size_t index) const {
    const Value value = (*this)[index];
    if (!value.isFile()) {
        raiseBadArgumentType(L"streamp", value);
    }
    return static_cast<FileObject&>(*value.asObject());
}

Point pointOf(Value value) {
    double coordinates[3] = {};
    int count = 0;
    Value rest = value;
    for (; rest.isPair() && count < 3 && rest.car().isNumber(); rest = rest.cdr()) {
        coordinates[count++] = rest.car().asNumber();
    }
    if (count < 2 || !rest.isNil()) {
        raiseBadArgumentType(L"2D/3D point:", value);
    }
    return Point{coordinates[0], coordinates[1], coordinates[2], count};
}

}  // namespace drafthost::lisp
