// Asking the drafter: getpoint and its relatives, entsel, grread.

#include "host/api/color_dialog.h"
#include "host/api/symbol_tables.h"
#include "host/documents/document.h"
#include "host/editor/entity_pick.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

using editor::InputRequest;
using editor::InputResult;
using Kind = InputRequest::Kind;

Document& documentOf(Interpreter& interpreter) {
    return interpreter.attached<Document>();
}

bool takesBase(Kind kind) {
    return kind != Kind::Integer && kind != Kind::Real && kind != Kind::Keyword;
}

// [point] [prompt] in this order, either left out; without the point where no base makes sense.
InputRequest requestOf(Kind kind, Arguments arguments) {
    InputRequest request;
    request.kind = kind;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i].isNil())
            continue;
        if (arguments[i].isString() || !takesBase(kind)) {
            request.prompt = arguments.string(i);
        } else {
            const Point base = arguments.point(i);
            request.base = AcGePoint3d(base.x, base.y, base.z);
        }
    }
    return request;
}

// The answer as a value: nil for an empty response, the keyword's text; an answer of the kind through `make`.
template <class Make>
Value answered(Interpreter& interpreter, const InputResult& answer, Make make) {
    switch (answer.status) {
        case RTNORM: return make(answer);
        case RTKWORD: return interpreter.string(answer.text);
        case RTCAN: raiseCancelled();
        default: return {};
    }
}

template <Kind kind>
Value getPointOf(Interpreter& interpreter, Arguments arguments) {
    const InputResult answer = documentOf(interpreter).prompts().ask(requestOf(kind, arguments));
    return answered(interpreter, answer,
                    [&](const InputResult& given) { return editor::pointValue(interpreter, given.point); });
}

template <Kind kind>
Value getNumberOf(Interpreter& interpreter, Arguments arguments) {
    const InputResult answer = documentOf(interpreter).prompts().ask(requestOf(kind, arguments));
    return answered(interpreter, answer, [](const InputResult& given) { return Value::real(given.number); });
}

Value getcorner(Interpreter& interpreter, Arguments arguments) {
    arguments.point(0);
    return getPointOf<Kind::Corner>(interpreter, arguments);
}

Value getint(Interpreter& interpreter, Arguments arguments) {
    const InputResult answer = documentOf(interpreter).prompts().ask(requestOf(Kind::Integer, arguments));
    return answered(interpreter, answer,
                    [](const InputResult& given) { return Value::integer(given.integer); });
}

Value getkword(Interpreter& interpreter, Arguments arguments) {
    const InputResult answer = documentOf(interpreter).prompts().ask(requestOf(Kind::Keyword, arguments));
    return answered(interpreter, answer,
                    [&](const InputResult& given) { return interpreter.string(given.text); });
}

// (getstring [blanks] [prompt])
Value getstring(Interpreter& interpreter, Arguments arguments) {
    InputRequest request;
    const bool promptOnly = arguments.size() == 1 && arguments[0].isString();
    request.allowBlanks = !promptOnly && arguments.has(0);
    if (promptOnly || arguments.has(1))
        request.prompt = arguments.string(promptOnly ? 0 : 1);
    const InputResult answer = documentOf(interpreter).prompts().ask(request);
    return answered(interpreter, answer,
                    [&](const InputResult& given) { return interpreter.string(given.text); });
}

// (initget [bits] [keywords])
Value initget(Interpreter& interpreter, Arguments arguments) {
    int bits = 0;
    std::wstring keywords;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i].isString()) {
            keywords = arguments.string(i);
        } else {
            bits = arguments.integerOr(i, 0);
        }
    }
    documentOf(interpreter).prompts().initGet(bits, keywords);
    return {};
}

// The pick, or the value that ends the call (nil, a keyword) in `ended`.
std::optional<editor::EntityPick> pickEntity(Interpreter& interpreter, const std::wstring& prompt,
                                             Value& ended) {
    Document& document = documentOf(interpreter);
    const editor::EntityPick pick = editor::askEntity(document, prompt);
    if (pick.status == RTCAN)
        raiseCancelled();
    if (pick.status == RTNORM)
        return pick;
    if (pick.status == RTKWORD)
        ended = interpreter.string(document.prompts().lastInput());
    return std::nullopt;
}

Value entsel(Interpreter& interpreter, Arguments arguments) {
    Value ended;
    const auto pick = pickEntity(interpreter, std::wstring(arguments.stringOr(0, L"")), ended);
    if (!pick)
        return ended;
    return interpreter.list(
        {editor::entityValue(interpreter, pick->entity), editor::pointValue(interpreter, pick->point)});
}

// Columns of the matrix as nentsel gives it (four points: the axes and the origin), rows as nentselp does.
Value matrixValue(Interpreter& interpreter, const AcGeMatrix3d& matrix, bool asRows) {
    ListBuilder lines(interpreter);
    for (int i = 0; i < 4; ++i) {
        ListBuilder line(interpreter);
        for (int j = 0; j < (asRows ? 4 : 3); ++j) {
            line.append(Value::real(asRows ? matrix.entry[i][j] : matrix.entry[j][i]));
        }
        lines.append(line.list());
    }
    return lines.list();
}

Value nestedValue(Interpreter& interpreter, AcDbObjectId entity, const AcGePoint3d& point, bool asRows) {
    const editor::NestedPick nested = editor::nestedAt(documentOf(interpreter), entity, point);
    const Value part = editor::entityValue(interpreter, nested.part);
    const Value at = editor::pointValue(interpreter, point);
    if (nested.parents.empty())
        return interpreter.list({part, at});
    ListBuilder parents(interpreter);
    for (const AcDbObjectId id : nested.parents)
        parents.append(editor::entityValue(interpreter, id));
    return interpreter.list({part, at, matrixValue(interpreter, nested.toWorld, asRows), parents.list()});
}

Value nentsel(Interpreter& interpreter, Arguments arguments) {
    Value ended;
    const auto pick = pickEntity(interpreter, std::wstring(arguments.stringOr(0, L"")), ended);
    return pick ? nestedValue(interpreter, pick->entity, pick->point, false) : ended;
}

// (nentselp [prompt] [point]): with a point nobody is asked.
Value nentselp(Interpreter& interpreter, Arguments arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!arguments[i].isPair())
            continue;
        const Point given = arguments.point(i);
        const AcGePoint3d point(given.x, given.y, given.z);
        const AcDbObjectId id = editor::entityAt(documentOf(interpreter), point);
        return id.isNull() ? Value() : nestedValue(interpreter, id, point, true);
    }
    Value ended;
    const auto pick = pickEntity(interpreter, std::wstring(arguments.stringOr(0, L"")), ended);
    return pick ? nestedValue(interpreter, pick->entity, pick->point, true) : ended;
}

// Codes of what grread answers.
constexpr int kKey = 2, kClick = 3, kMovement = 5, kReturn = 13;

Value grread(Interpreter& interpreter, Arguments arguments) {
    InputRequest request;
    request.kind = Kind::Cursor;
    request.tracking = arguments.has(0);
    const InputResult answer = documentOf(interpreter).prompts().ask(request);
    const auto event = [&](int code, Value value) { return interpreter.list({Value::integer(code), value}); };
    if (answer.status == RTCAN)
        raiseCancelled();
    if (answer.status == RTNONE)
        return event(kKey, Value::integer(kReturn));
    if (!answer.text.empty())
        return event(kKey, Value::integer(answer.text[0]));
    const int code = answer.answer.kind == editor::Answer::Kind::Move ? kMovement : kClick;
    return event(code, editor::pointValue(interpreter, answer.point));
}

// The file dialog is asked for at the command line, as with dialogs switched off.
Value getfiled(Interpreter& interpreter, Arguments arguments) {
    InputRequest request;
    const std::wstring& usual = arguments.string(1);
    request.prompt = L"\n" + arguments.string(0) + (usual.empty() ? L": " : L" <" + usual + L">: ");
    request.allowBlanks = true;
    const InputResult answer = documentOf(interpreter).prompts().ask(request);
    if (answer.status != RTNORM || answer.text.empty())
        return {};
    return interpreter.string(answer.text);
}

// What ByLayer stands for when something is drawn now.
int currentLayerColor(const AcDbDatabase& database) {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(database.clayer(), AcDb::kForRead);
    return layer ? layer->colorIndex() : 7;
}

// (acad_colordlg color [flag])
Value colorDialog(Interpreter& interpreter, Arguments arguments) {
    int color = arguments.integer(0);
    if (color < 0 || color > 256)
        raiseBadArgumentValue(L"color index", arguments[0]);
    const bool allowByBlockByLayer = arguments.size() < 2 || arguments.has(1);
    const AcDbDatabase& database = *documentOf(interpreter).database();
    return acedSetColorDialog(color, allowByBlockByLayer, currentLayerColor(database)) ? Value::integer(color)
                                                                                       : Value();
}

constexpr BuiltinDefinition kTable[] = {
    {L"initget", initget, 0, 2, L"(initget [bits] [keywords]) -> nil; for the next input"},
    {L"getpoint", getPointOf<Kind::Point>, 0, 2, L"(getpoint [base] [prompt]) -> point, keyword or nil"},
    {L"getcorner", getcorner, 1, 2, L"(getcorner base [prompt]) -> point, keyword or nil"},
    {L"getdist", getNumberOf<Kind::Distance>, 0, 2, L"(getdist [base] [prompt]) -> distance, keyword or nil"},
    {L"getangle", getNumberOf<Kind::Angle>, 0, 2, L"(getangle [base] [prompt]) -> radians, keyword or nil"},
    {L"getorient", getNumberOf<Kind::Orientation>, 0, 2,
     L"(getorient [base] [prompt]) -> radians, keyword or nil"},
    {L"getreal", getNumberOf<Kind::Real>, 0, 1, L"(getreal [prompt]) -> real, keyword or nil"},
    {L"getint", getint, 0, 1, L"(getint [prompt]) -> integer, keyword or nil"},
    {L"getkword", getkword, 0, 1, L"(getkword [prompt]) -> keyword of initget, or nil"},
    {L"getstring", getstring, 0, 2, L"(getstring [blanks] [prompt]) -> text"},
    {L"entsel", entsel, 0, 1, L"(entsel [prompt]) -> (name point), keyword or nil"},
    {L"nentsel", nentsel, 0, 1, L"(nentsel [prompt]) -> (name point [matrix (parents)]), keyword or nil"},
    {L"nentselp", nentselp, 0, 2, L"(nentselp [prompt] [point]) -> (name point [matrix (parents)]), or nil"},
    {L"grread", grread, 0, 3, L"(grread [track [bits [cursor]]]) -> (3 point), (5 point) or (2 character)"},
    {L"getfiled", getfiled, 4, 4,
     L"(getfiled title default extension flags) -> name typed at the command line, or nil"},
    {L"acad_colordlg", colorDialog, 1, 2,
     L"(acad_colordlg color [flag]) -> color index chosen in the color dialog, or nil; flag nil: neither "
     L"ByBlock (0) nor ByLayer (256)"},
};

}  // namespace

std::span<const BuiltinDefinition> inputPromptFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp
