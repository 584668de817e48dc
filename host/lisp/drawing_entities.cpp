// Entities as association lists: entget, entmake and their relatives.

#include "host/database/entity_data.h"
#include "host/database/names.h"
#include "host/documents/document.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

using editor::ValueList;

// The answer nil, with the reason in the system variable ERRNO.
Value refused(Interpreter& interpreter) {
    interpreter.attached<Document>().variables().set(L"ERRNO", lastEntityProblem().number);
    return {};
}

// The two words of an entity name argument.
struct Name {
    ads_name words;
    Name() { ads_name_clear(words); }
    Name(Arguments arguments, std::size_t index) {
        const EntityName name = arguments.entityName(index);
        words[0] = static_cast<std::int64_t>(name.first);
        words[1] = static_cast<std::int64_t>(name.second);
    }
    Value value(Interpreter& interpreter) const {
        return interpreter.entityName(static_cast<std::uint64_t>(words[0]),
                                      static_cast<std::uint64_t>(words[1]));
    }
    // The name when the host's call went well.
    Value valueOf(int status, Interpreter& interpreter) const {
        return status == RTNORM ? value(interpreter) : refused(interpreter);
    }
};

// Names of applications as a list of texts.
ValueList applicationNames(Value list) {
    editor::ListCollector nodes;
    for (Value name : elements(list)) {
        if (!name.isString())
            raiseBadArgumentType(L"stringp", name);
        nodes.append(editor::toValueList({&name, 1}));
    }
    return nodes.take();
}

Value entget(Interpreter& interpreter, Arguments arguments) {
    const Name name(arguments, 0);
    const ValueList applications = applicationNames(arguments.has(1) ? arguments.list(1) : Value());
    const ValueList groups(acdbEntGetX(name.words, applications.get()));
    return groups ? editor::valueFromGroups(interpreter, groups.get()) : refused(interpreter);
}

bool endsBlock(const resbuf* groups) {
    while (groups && groups->restype != 0)
        groups = groups->rbnext;
    return groups && equalNames(groups->resval.rstring, L"ENDBLK");
}

// The finished block answers with its name, which programs do not know of an anonymous one.
Value endBlock(Interpreter& interpreter, const resbuf* groups) {
    Name begin;
    if (acdbEntMakeX(groups, begin.words) != RTNORM)
        return refused(interpreter);
    const ValueList block(acdbEntGet(begin.words));
    for (const resbuf* node = block.get(); node; node = node->rbnext) {
        if (node->restype == 2)
            return interpreter.string(node->resval.rstring);
    }
    return {};
}

Value entmake(Interpreter& interpreter, Arguments arguments) {
    const ValueList groups = editor::groupsFromValue(arguments.list(0));
    if (endsBlock(groups.get()))
        return endBlock(interpreter, groups.get());
    return acdbEntMake(groups.get()) == RTNORM ? arguments[0] : refused(interpreter);
}

Value entmakex(Interpreter& interpreter, Arguments arguments) {
    const ValueList groups = editor::groupsFromValue(arguments.list(0));
    Name name;
    return name.valueOf(acdbEntMakeX(groups.get(), name.words), interpreter);
}

Value entmod(Interpreter& interpreter, Arguments arguments) {
    const ValueList groups = editor::groupsFromValue(arguments.list(0));
    return acdbEntMod(groups.get()) == RTNORM ? arguments[0] : refused(interpreter);
}

Value entdel(Interpreter& interpreter, Arguments arguments) {
    return acdbEntDel(Name(arguments, 0).words) == RTNORM ? arguments[0] : refused(interpreter);
}

Value entupd(Interpreter& interpreter, Arguments arguments) {
    return acdbEntUpd(Name(arguments, 0).words) == RTNORM ? arguments[0] : refused(interpreter);
}

Value entnext(Interpreter& interpreter, Arguments arguments) {
    const Name after = arguments.has(0) ? Name(arguments, 0) : Name();
    Name next;
    return next.valueOf(acdbEntNext(after.words, next.words), interpreter);
}

Value entlast(Interpreter& interpreter, Arguments) {
    Name last;
    return last.valueOf(acdbEntLast(last.words), interpreter);
}

Value handent(Interpreter& interpreter, Arguments arguments) {
    Name name;
    return name.valueOf(acdbHandEnt(arguments.string(0).c_str(), name.words), interpreter);
}

Value regapp(Interpreter&, Arguments arguments) {
    return acdbRegApp(arguments.string(0).c_str()) == RTNORM ? arguments[0] : Value();
}

// Bytes that a list of extended data takes: two for each code, and the value's.
constexpr int kLargestXdata = 16383;

int sizeOf(const resbuf& node) {
    switch (acutResultKind(node.restype)) {
        case ResultKind::Real: return 2 + 8;
        case ResultKind::Point: return 2 + 24;
        case ResultKind::Short: return 2 + 2;
        case ResultKind::Long: return 2 + 4;
        case ResultKind::String:
        case ResultKind::Handle:
            return 2 + 2 + 2 * static_cast<int>(std::char_traits<wchar_t>::length(node.resval.rstring));
        case ResultKind::Binary: return 2 + 1 + node.resval.rbinary.clen;
        default: return 2;
    }
}

int sizeOf(const resbuf* list) {
    int size = 0;
    for (; list; list = list->rbnext)
        size += sizeOf(*list);
    return size;
}

Value xdsize(Interpreter& interpreter, Arguments arguments) {
    // The list is what stands behind (-3 ...), or with it.
    Value list = arguments.list(0);
    if (list.isPair() && list.car() == Value::integer(-3))
        list = list.cdr();
    const ValueList groups =
        editor::groupsFromValue(interpreter.list({interpreter.cons(Value::integer(-3), list)}));
    return Value::integer(sizeOf(groups ? groups->rbnext : nullptr));
}

Value xdroom(Interpreter&, Arguments arguments) {
    AcDbObjectId id;
    if (acdbGetObjectId(id, Name(arguments, 0).words) != Acad::eOk)
        return {};
    const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForRead);
    if (!object)
        return {};
    const ValueList data(object->xData());
    return Value::integer(kLargestXdata - sizeOf(data.get()));
}

constexpr BuiltinDefinition kTable[] = {
    {L"entget", entget, 1, 2, L"(entget name [applications]) -> groups of the entity, or nil"},
    {L"entmake", entmake, 1, 1,
     L"(entmake groups) -> groups, or the name of the block that ENDBLK finishes, or nil"},
    {L"entmakex", entmakex, 1, 1, L"(entmakex groups) -> name of the new entity, or nil"},
    {L"entmod", entmod, 1, 1, L"(entmod groups) -> groups, or nil; changes the entity named by group -1"},
    {L"entdel", entdel, 1, 1, L"(entdel name) -> name, or nil; erases the entity, or restores an erased one"},
    {L"entupd", entupd, 1, 1, L"(entupd name) -> name, or nil"},
    {L"entnext", entnext, 0, 1, L"(entnext [name]) -> name of the first or next entity, or nil"},
    {L"entlast", entlast, 0, 0, L"(entlast) -> name of the last entity, or nil"},
    {L"handent", handent, 1, 1, L"(handent handle) -> name, or nil"},
    {L"regapp", regapp, 1, 1, L"(regapp name) -> name, or nil when it is registered already"},
    {L"xdsize", xdsize, 1, 1, L"(xdsize data) -> bytes that extended data take"},
    {L"xdroom", xdroom, 1, 1, L"(xdroom name) -> bytes left for extended data"},
};

}  // namespace

std::span<const BuiltinDefinition> drawingEntityFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp
