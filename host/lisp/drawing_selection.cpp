// Selection sets.

#include "host/documents/host.h"
#include "host/editor/selection.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/characters.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

using editor::SelectionSet;

SelectionSet& setArgument(Arguments arguments, std::size_t index) {
    return static_cast<SelectionSet&>(*arguments.selectionSet(index));
}

Document& documentOf(Interpreter& interpreter) {
    return interpreter.attached<Document>();
}

bool isPoint(Value value) {
    return value.isPair() && value.car().isNumber();
}
bool isPointList(Value value) {
    return value.isPair() && isPoint(value.car()) && !value.car().car().isNil() &&
           value.car().cdr().isPair() && value.car().cdr().car().isNumber();
}

AcGePoint3d toPoint(Value value) {
    const Point point = pointOf(value);
    return {point.x, point.y, point.z};
}

// (ssget [mode] [point [point]] [points] [filter]): what an argument is shows in its own form.
void takeArgument(editor::SelectRequest& request, Value argument, bool first) {
    if (argument.isNil())
        return;
    if (argument.isString() && first) {
        request.mode = argument.asString();
    } else if (isPoint(argument)) {
        request.points.push_back(toPoint(argument));
    } else if (isPointList(argument)) {
        for (Value point : elements(argument))
            request.points.push_back(toPoint(point));
    } else if (argument.isPair()) {
        std::wstring problem;
        const editor::ValueList groups = editor::groupsFromValue(argument);
        if (!request.filter.parse(groups.get(), problem))
            throw LispError(L"bad ssget list: " + problem);
    } else {
        raiseBadArgumentType(L"ssget argument:", argument);
    }
}

bool isKnownMode(std::wstring mode) {
    const std::size_t start = mode.starts_with(L"_") ? 1 : 0;
    mode = toUpper(
        mode.substr(start, mode.find(L':') == std::wstring::npos ? mode.npos : mode.find(L':') - start));
    for (const wchar_t* known : {L"", L"X", L"A", L"L", L"P", L"I", L"W", L"C", L"BOX", L"WP", L"CP", L"F"}) {
        if (mode == known)
            return true;
    }
    return false;
}

Value ssget(Interpreter& interpreter, Arguments arguments) {
    editor::SelectRequest request;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        takeArgument(request, arguments[i], i == 0);
    if (!isKnownMode(request.mode))
        throw LispError(L"bad ssget mode string");
    editor::SelectResult result = editor::select(documentOf(interpreter), request);
    if (result.status == RTCAN)
        raiseCancelled();
    return result.set ? interpreter.selectionSet(std::move(result.set)) : Value();
}

Value ssadd(Interpreter& interpreter, Arguments arguments) {
    if (arguments.size() < 2) {
        auto set = theHost().selectionSets().make(documentOf(interpreter));
        if (arguments.has(0)) {
            arguments.entityName(0);
            set->add(editor::entityOf(arguments[0]));
        }
        return interpreter.selectionSet(std::move(set));
    }
    arguments.entityName(0);
    const AcDbObjectId id = editor::entityOf(arguments[0]);
    SelectionSet& set = setArgument(arguments, 1);
    if (id.isNull() || id.isErased())
        return {};
    set.add(id);
    return arguments[1];
}

Value ssdel(Interpreter&, Arguments arguments) {
    arguments.entityName(0);
    return setArgument(arguments, 1).remove(editor::entityOf(arguments[0])) ? arguments[1] : Value();
}

Value ssmemb(Interpreter&, Arguments arguments) {
    arguments.entityName(0);
    return setArgument(arguments, 1).contains(editor::entityOf(arguments[0])) ? arguments[0] : Value();
}

Value sslength(Interpreter&, Arguments arguments) {
    return Value::integer(static_cast<std::int32_t>(setArgument(arguments, 0).members().size()));
}

Value ssname(Interpreter& interpreter, Arguments arguments) {
    const SelectionSet& set = setArgument(arguments, 0);
    const double index = arguments.real(1);
    if (index < 0 || index >= static_cast<double>(set.members().size()))
        return {};
    return editor::entityValue(interpreter, set.members()[static_cast<std::size_t>(index)]);
}

// How each entity was selected is not recorded: all count as named by a program (method 0).
Value ssnamex(Interpreter& interpreter, Arguments arguments) {
    const SelectionSet& set = setArgument(arguments, 0);
    ListBuilder list(interpreter);
    for (std::size_t i = 0; i < set.members().size(); ++i) {
        if (arguments.has(1) && static_cast<std::size_t>(arguments.integer(1)) != i)
            continue;
        list.append(interpreter.list(
            {Value::integer(0), editor::entityValue(interpreter, set.members()[i]), Value::integer(0)}));
    }
    return list.list();
}

Value sssetfirst(Interpreter& interpreter, Arguments arguments) {
    // The set may be given as the second of two, the first being grips without selection.
    const std::size_t index = arguments.size() > 1 ? 1 : 0;
    Document& document = documentOf(interpreter);
    document.setPickFirst(arguments.has(index)
                              ? std::static_pointer_cast<SelectionSet>(arguments.selectionSet(index))
                              : nullptr);
    return interpreter.list({Value(), arguments[index]});
}

Value ssgetfirst(Interpreter& interpreter, Arguments) {
    const auto& set = documentOf(interpreter).pickFirst();
    return interpreter.list({Value(), set ? interpreter.selectionSet(set) : Value()});
}

constexpr BuiltinDefinition kTable[] = {
    {L"ssget", ssget, 0, 4, L"(ssget [mode] [point [point]] [points] [filter]) -> selection set, or nil"},
    {L"ssadd", ssadd, 0, 2, L"(ssadd [name [set]]) -> the set, or a new one"},
    {L"ssdel", ssdel, 2, 2, L"(ssdel name set) -> the set, or nil"},
    {L"ssmemb", ssmemb, 2, 2, L"(ssmemb name set) -> name, or nil"},
    {L"sslength", sslength, 1, 1, L"(sslength set) -> number of entities"},
    {L"ssname", ssname, 2, 2, L"(ssname set index) -> name, or nil"},
    {L"ssnamex", ssnamex, 1, 2, L"(ssnamex set [index]) -> list of (0 name 0)"},
    {L"sssetfirst", sssetfirst, 1, 2, L"(sssetfirst gripset [pickset]) -> (nil pickset)"},
    {L"ssgetfirst", ssgetfirst, 0, 0, L"(ssgetfirst) -> (nil pickset)"},
};

}  // namespace

std::span<const BuiltinDefinition> drawingSelectionFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp
