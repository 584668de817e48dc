// System variables, coordinate systems, text measures, files and modules.

#include "host/api/text_entities.h"
#include "host/database/database_impl.h"
#include "host/documents/host.h"
#include "host/editor/commands.h"
#include "host/editor/object_snap.h"
#include "host/editor/system_variables.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/characters.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

using editor::VariableValue;

Document& documentOf(Interpreter& interpreter) {
    return interpreter.attached<Document>();
}

struct ValueMaker {
    Interpreter& interpreter;
    Value operator()(int value) const { return Value::integer(value); }
    Value operator()(double value) const { return Value::real(value); }
    Value operator()(const std::wstring& text) const { return interpreter.string(text); }
    Value operator()(const AcGePoint3d& p) const { return interpreter.point(p.x, p.y, p.z); }
    Value operator()(const AcGePoint2d& p) const { return interpreter.point(p.x, p.y); }
};

// Text or symbol.
std::wstring nameArgument(Arguments arguments, std::size_t index) {
    return arguments[index].isSymbol() ? arguments.symbol(index)->name : arguments.string(index);
}

Value getvar(Interpreter& interpreter, Arguments arguments) {
    const auto value = editor::getVariable(documentOf(interpreter), nameArgument(arguments, 0));
    return value ? std::visit(ValueMaker{interpreter}, *value) : Value();
}

std::optional<VariableValue> variableValue(Value value) {
    if (value.isInteger())
        return value.asInteger();
    if (value.isReal())
        return value.asReal();
    if (value.isString())
        return value.asString();
    if (!value.isPair())
        return std::nullopt;
    const Point point = pointOf(value);
    return AcGePoint3d(point.x, point.y, point.z);
}

Value setvar(Interpreter& interpreter, Arguments arguments) {
    const std::wstring name = nameArgument(arguments, 0);
    const auto value = variableValue(arguments[1]);
    const auto outcome =
        value ? editor::setVariable(documentOf(interpreter), name, *value) : editor::SetOutcome::WrongType;
    if (outcome != editor::SetOutcome::Done) {
        throw LispError(L"variable setting rejected: \"" + toUpper(name) + L"\" " +
                        interpreter.prin1ToString(arguments[1]));
    }
    return arguments[1];
}

Value trans(Interpreter& interpreter, Arguments arguments) {
    const Point given = arguments.point(0);
    const editor::ValueList from = editor::toValueList(arguments.values().subspan(1, 1));
    const editor::ValueList to = editor::toValueList(arguments.values().subspan(2, 1));
    // A normal may be written with integers.
    const auto vectorNode = [](resbuf* node, Value value) {
        if (!value.isPair())
            return;
        const Point normal = pointOf(value);
        node->restype = RT3DPOINT;
        const ads_real coordinates[] = {normal.x, normal.y, normal.z};
        std::copy(coordinates, coordinates + 3, node->resval.rpoint);
    };
    vectorNode(from.get(), arguments[1]);
    vectorNode(to.get(), arguments[2]);
    const ads_point point = {given.x, given.y, given.z};
    ads_point result = {0, 0, 0};
    if (acedTrans(point, from.get(), to.get(), arguments.has(3), result) != RTNORM)
        return {};
    return interpreter.point(result[0], result[1], result[2]);
}

Value assocOf(Value list, int code) {
    for (Value group : elements(list)) {
        if (group.isPair() && group.car() == Value::integer(code))
            return group.cdr();
    }
    return {};
}

double numberIn(Value list, int code, double fallback) {
    const Value value = assocOf(list, code);
    return value.isNumber() ? value.asNumber() : fallback;
}

// Corners of the box around a text, relative to its insertion point and before it is turned.
Value textbox(Interpreter& interpreter, Arguments arguments) {
    const Value list = arguments.list(0);
    const Value content = assocOf(list, 1);
    if (!content.isString())
        return {};
    const AcDbDatabase& database = *documentOf(interpreter).database();
    AcDbObjectId style = database.textstyle();
    if (const Value name = assocOf(list, 7); name.isString()) {
        const AcDbObjectId named = findRecord(&database, TableIndex::TextStyle, name.asString());
        if (!named.isNull())
            style = named;
    }
    const AcDbText text({}, content.asString().c_str(), style, numberIn(list, 40, database.textsize()), 0);
    AcDbExtents box;
    if (text.getGeomExtents(box) != Acad::eOk || !box.isValid())
        return {};
    return interpreter.list(
        {editor::pointValue(interpreter, box.minPoint()), editor::pointValue(interpreter, box.maxPoint())});
}

Value osnap(Interpreter& interpreter, Arguments arguments) {
    const Point given = arguments.point(0);
    const auto modes = editor::snapModes(arguments.string(1));
    if (!modes)
        return {};
    const auto found = editor::snappedPoint(documentOf(interpreter), {given.x, given.y, given.z}, *modes);
    return found ? editor::pointValue(interpreter, *found) : Value();
}

Value findfile(Interpreter& interpreter, Arguments arguments) {
    const auto path = theHost().services().find(arguments.string(0), documentOf(interpreter).database());
    return path ? interpreter.string(*path) : Value();
}

Value arx(Interpreter& interpreter, Arguments) {
    ListBuilder names(interpreter);
    for (const auto& module : theHost().modules().all())
        names.append(interpreter.string(module->fileName()));
    return names.list();
}

// The second argument is what a failure answers; without it a failure is an error.
Value failed(Arguments arguments, const std::wstring& message) {
    if (arguments.size() > 1)
        return arguments[1];
    throw LispError(message);
}

Value arxload(Interpreter&, Arguments arguments) {
    std::wstring message;
    return theHost().modules().load(arguments.string(0), message) ? arguments[0] : failed(arguments, message);
}

Value arxunload(Interpreter&, Arguments arguments) {
    std::wstring message;
    return theHost().modules().unload(arguments.string(0), false, message) ? arguments[0]
                                                                           : failed(arguments, message);
}

Value getcname(Interpreter& interpreter, Arguments arguments) {
    const editor::CommandDefinition* const command = editor::findCommand(arguments.string(0));
    if (!command)
        return {};
    const bool global = arguments.string(0).starts_with(L"_");
    return interpreter.string((global ? L"" : L"_") + std::wstring(command->name));
}

Value ver(Interpreter& interpreter, Arguments) {
    return interpreter.string(L"drafthost LISP 1.0");
}

constexpr BuiltinDefinition kTable[] = {
    {L"getvar", getvar, 1, 1, L"(getvar name) -> value of the system variable, or nil"},
    {L"setvar", setvar, 2, 2, L"(setvar name value) -> value"},
    {L"trans", trans, 3, 4,
     L"(trans point from to [displacement]) -> point in the other coordinate system, or nil"},
    {L"textbox", textbox, 1, 1,
     L"(textbox groups) -> (lower-left upper-right) of a text at the origin, or nil"},
    {L"osnap", osnap, 2, 2, L"(osnap point modes) -> the nearest such point of the entities there, or nil"},
    {L"findfile", findfile, 1, 1, L"(findfile name) -> full path, or nil"},
    {L"arx", arx, 0, 0, L"(arx) -> names of the loaded modules"},
    {L"arxload", arxload, 1, 2, L"(arxload file [onfailure]) -> file"},
    {L"arxunload", arxunload, 1, 2, L"(arxunload file [onfailure]) -> file"},
    {L"getcname", getcname, 1, 1, L"(getcname command) -> its language-independent name, or nil"},
    {L"ver", ver, 0, 0, L"(ver) -> version of the LISP"},
};

}  // namespace

std::span<const BuiltinDefinition> drawingSettingFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp
