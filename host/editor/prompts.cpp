#include "host/editor/prompts.h"

#include <numbers>

#include "host/editor/typed_text.h"

namespace drafthost::editor {

namespace {

using Kind = InputRequest::Kind;

bool wantsPoint(Kind kind) {
    return kind == Kind::Point || kind == Kind::Corner;
}
bool wantsAngle(Kind kind) {
    return kind == Kind::Angle || kind == Kind::Orientation;
}
bool measuresBetweenPoints(Kind kind) {
    return kind == Kind::Distance || wantsAngle(kind);
}

// Texts and selections know no keywords; the rest of what acedInitGet set does not matter to them either.
bool takesInitGet(Kind kind) {
    return kind != Kind::Text && kind != Kind::Cursor;
}

InputResult ofStatus(int status, const Answer& answer) {
    InputResult result;
    result.status = status;
    result.answer = answer;
    return result;
}

InputResult ofText(int status, const Answer& answer, std::wstring text) {
    InputResult result = ofStatus(status, answer);
    result.text = std::move(text);
    return result;
}

InputResult ofNumber(const Answer& answer, double number) {
    InputResult result = ofStatus(RTNORM, answer);
    result.number = number;
    return result;
}

// The number of an expression stands for what would have been typed: degrees.
Answer asTypedAngle(Answer answer) {
    if (answer.kind != Answer::Kind::Integer && answer.kind != Answer::Kind::Real)
        return answer;
    const double degrees = answer.kind == Answer::Kind::Integer ? answer.integer : answer.number;
    answer.kind = Answer::Kind::Angle;
    answer.number = degrees * std::numbers::pi / 180;
    return answer;
}

// The complaint about a number that acedInitGet excludes; null when it is allowed.
const wchar_t* refusedNumber(int control, double value) {
    const bool zero = (control & RSG_NOZERO) && value == 0;
    const bool negative = (control & RSG_NONEG) && value < 0;
    if (!zero && !negative)
        return nullptr;
    if ((control & RSG_NOZERO) && (control & RSG_NONEG))
        return L"Value must be positive and nonzero.";
    return zero ? L"Value must be nonzero." : L"Value must be positive.";
}

// acedGetInt hands out what fits the LISP of old: 16 bits.
constexpr int kLargestInteger = 32767;
constexpr const wchar_t* kIntegerRange = L"Requires an integer between -32768 and 32767.";

std::optional<InputResult> fromNumber(const InputRequest& request, const Answer& answer,
                                      std::wstring& complaint) {
    const double value = answer.kind == Answer::Kind::Integer ? answer.integer : answer.number;
    if (const wchar_t* refused = refusedNumber(request.control, value)) {
        complaint = refused;
        return std::nullopt;
    }
    InputResult result = ofNumber(answer, value);
    if (request.kind == Kind::Integer) {
        if (answer.kind != Answer::Kind::Integer)
            return std::nullopt;
        if (answer.integer > kLargestInteger || answer.integer < -kLargestInteger - 1) {
            complaint = kIntegerRange;
            return std::nullopt;
        }
        result.integer = answer.integer;
    }
    return result;
}

// An expression, or !name for the value of a variable.
bool mustBeEvaluated(const std::wstring& text) {
    return text.starts_with(L'(') || text.starts_with(L'!');
}

std::optional<InputResult> fromSelectionAnswer(const Answer& answer) {
    switch (answer.kind) {
        case Answer::Kind::Window:
        case Answer::Kind::Crossing:
        case Answer::Kind::Add:
        case Answer::Kind::Pick:
        case Answer::Kind::Point:
        case Answer::Kind::Entity:
        case Answer::Kind::Set:
        case Answer::Kind::Typed:
        case Answer::Kind::All: return ofStatus(RTNORM, answer);
        case Answer::Kind::Done: return ofStatus(RTNONE, answer);
        default: return std::nullopt;
    }
}

std::optional<InputResult> fromCursorAnswer(const InputRequest& request, const Answer& answer) {
    switch (answer.kind) {
        case Answer::Kind::Move:
            if (!request.tracking)
                return std::nullopt;
            [[fallthrough]];
        case Answer::Kind::Point:
        case Answer::Kind::Text:
        case Answer::Kind::Keyword:
        case Answer::Kind::Typed: {
            InputResult result = ofText(RTNORM, answer, answer.text);
            result.point = answer.point;
            return result;
        }
        default: return std::nullopt;
    }
}

}  // namespace

void Prompts::initGet(int control, std::wstring_view keywords) {
    control_ = control;
    keywords_ = Keywords(keywords);
}

void Prompts::show(const InputRequest& request) {
    if (surroundings_.source().showsPrompts())
        surroundings_.commandLine().write(request.prompt);
}

void Prompts::echo(const Answer& answer) {
    if (answer.kind == Answer::Kind::Exhausted || !surroundings_.source().needsEcho())
        return;
    surroundings_.commandLine().write(shownText(answer) + L"\n");
}

InputResult Prompts::ask(InputRequest request) {
    // Commands give their bits and keywords with the request.
    if (takesInitGet(request.kind) && (control_ || !keywords_.empty())) {
        request.control = control_;
        request.keywords = keywords_;
    }
    control_ = 0;
    keywords_ = Keywords();
    // Without keywords nothing that could be typed would fit.
    if (request.kind == Kind::Keyword && request.keywords.empty() && !(request.control & RSG_OTHER))
        return ofStatus(RTERROR, {});
    show(request);
    for (;;) {
        if (surroundings_.stopped())
            return ofStatus(RTCAN, Answer::of(Answer::Kind::Cancel));
        surroundings_.commandLine().flush();
        InputSource& source = surroundings_.source();
        const Answer answer = source.next(request);
        // Without a click a movement answers nothing; it only drags what hangs at the cursor.
        if (answer.kind == Answer::Kind::Move && request.kind != Kind::Cursor && wantsPoint(request.kind))
            continue;
        echo(answer);
        std::wstring problem;
        if (std::optional<InputResult> result = interpret(request, answer, problem)) {
            if (result->status == RTKWORD || request.kind == Kind::Keyword)
                lastInput_ = result->text;
            if (result->status == RTNORM && wantsPoint(request.kind))
                lastPoint_ = result->point;
            return *result;
        }
        if (problem.empty())
            problem = complaint(request);
        if (!source.refuse(answer, describe(request), problem)) {
            return ofStatus(RTCAN, Answer::of(Answer::Kind::Cancel));
        }
        show(request);
    }
}

std::optional<InputResult> Prompts::interpretEmpty(const InputRequest& request, const Answer& answer) const {
    if (request.kind == Kind::Text)
        return ofText(RTNORM, answer, L"");
    if (!(request.control & RSG_NONULL))
        return ofStatus(RTNONE, answer);
    if (answer.kind == Answer::Kind::Exhausted)
        return ofStatus(RTCAN, answer);
    return std::nullopt;
}

std::optional<InputResult> Prompts::interpret(const InputRequest& request, const Answer& answer,
                                              std::wstring& complaint) {
    switch (answer.kind) {
        case Answer::Kind::Cancel: return ofStatus(RTCAN, answer);
        case Answer::Kind::Enter:
        case Answer::Kind::Exhausted: return interpretEmpty(request, answer);
        case Answer::Kind::Typed: return interpretTyped(request, answer, complaint);
        case Answer::Kind::Keyword:
            if (request.kind == Kind::Cursor)
                break;
            if (const auto keyword = request.keywords.match(answer.text)) {
                return ofText(request.kind == Kind::Keyword ? RTNORM : RTKWORD, answer, *keyword);
            }
            if (request.control & RSG_OTHER)
                return ofText(RTKWORD, answer, answer.text);
            return std::nullopt;
        default: break;
    }
    if (request.kind == Kind::Selection)
        return fromSelectionAnswer(answer);
    if (request.kind == Kind::Cursor)
        return fromCursorAnswer(request, answer);
    if (answer.kind == Answer::Kind::Point)
        return fromPoint(request, answer, complaint);
    if (answer.kind == Answer::Kind::Text) {
        if (request.kind == Kind::Text)
            return ofText(RTNORM, answer, answer.text);
        if (request.control & RSG_OTHER)
            return ofText(RTKWORD, answer, answer.text);
        return std::nullopt;
    }
    if (request.kind == Kind::Entity) {
        const bool picked = answer.kind == Answer::Kind::Pick || answer.kind == Answer::Kind::Entity;
        return picked ? std::optional(ofStatus(RTNORM, answer)) : std::nullopt;
    }
    if (answer.kind == Answer::Kind::Angle && wantsAngle(request.kind)) {
        return fromNumber(request, answer, complaint);
    }
    const bool number = answer.kind == Answer::Kind::Real || answer.kind == Answer::Kind::Integer;
    if (number &&
        (request.kind == Kind::Integer || request.kind == Kind::Real || request.kind == Kind::Distance)) {
        return fromNumber(request, answer, complaint);
    }
    return std::nullopt;
}

std::optional<InputResult> Prompts::fromPoint(const InputRequest& request, const Answer& answer,
                                              std::wstring& complaint) {
    InputResult result = ofStatus(RTNORM, answer);
    result.point = answer.point;
    result.dimension = answer.dimension;
    if (wantsPoint(request.kind))
        return result;
    if (!measuresBetweenPoints(request.kind))
        return std::nullopt;
    AcGePoint3d from = answer.point, to = answer.point;
    if (request.base) {
        from = *request.base;
    } else {
        InputRequest second;
        second.kind = Kind::Point;
        second.prompt = L"Specify second point: ";
        second.control = RSG_NONULL;
        second.base = from;
        const InputResult other = ask(second);
        if (other.status != RTNORM)
            return ofStatus(RTCAN, other.answer);
        to = other.point;
    }
    AcGeVector3d difference = to - from;
    if (request.control & RSG_2D)
        difference.z = 0;
    Answer measured = answer;
    measured.kind = wantsAngle(request.kind) ? Answer::Kind::Angle : Answer::Kind::Real;
    measured.number = wantsAngle(request.kind) ? difference.convert2d().angle() : difference.length();
    return fromNumber(request, measured, complaint);
}

// The typed line as an answer of the kind that is waited for.
std::optional<Answer> Prompts::understand(const InputRequest& request, const std::wstring& text) const {
    Answer answer;
    const auto number = [&](Answer::Kind kind, std::optional<double> value) -> std::optional<Answer> {
        if (!value)
            return std::nullopt;
        answer.kind = kind;
        answer.number = *value;
        return answer;
    };
    if (request.kind == Kind::Integer) {
        const auto value = typedInteger(text);
        if (!value)
            return std::nullopt;
        answer.kind = Answer::Kind::Integer;
        answer.integer = *value;
        return answer;
    }
    const LengthUnits units = surroundings_.lengthUnits();
    if (request.kind == Kind::Real || request.kind == Kind::Distance) {
        if (auto real = number(Answer::Kind::Real, typedLength(text, units)))
            return real;
    }
    if (wantsAngle(request.kind)) {
        auto angle = typedAngle(text);
        if (angle && request.kind == Kind::Orientation)
            *angle += surroundings_.angleBase();
        if (angle)
            return number(Answer::Kind::Angle, angle);
    }
    const auto point = typedPoint(text, lastPoint_, surroundings_.worldToUcs(), units);
    if (!point)
        return std::nullopt;
    return Answer::ofPoint(request.kind == Kind::Entity ? Answer::Kind::Pick : Answer::Kind::Point,
                           point->point, point->dimension);
}

std::optional<InputResult> Prompts::interpretTyped(const InputRequest& request, const Answer& answer,
                                                   std::wstring& complaint) {
    const std::wstring& text = answer.text;
    if (text.empty())
        return interpretEmpty(request, answer);
    const bool isExpression = mustBeEvaluated(text);
    if (request.kind == Kind::Cursor || (request.kind == Kind::Selection && !isExpression)) {
        const auto point =
            typedPoint(text, lastPoint_, surroundings_.worldToUcs(), surroundings_.lengthUnits());
        if (point)
            return interpret(request, Answer::ofPoint(Answer::Kind::Point, point->point), complaint);
        return request.kind == Kind::Cursor ? fromCursorAnswer(request, answer) : fromSelectionAnswer(answer);
    }
    if (request.kind != Kind::Text && isExpression) {
        std::optional<Answer> value = surroundings_.evaluateTyped(text);
        // A variable may hold its own name: texts are evaluated once.
        if (value && value->kind == Answer::Kind::Typed && mustBeEvaluated(value->text))
            return std::nullopt;
        if (value && wantsAngle(request.kind))
            value = asTypedAngle(*value);
        return value ? interpret(request, *value, complaint) : std::nullopt;
    }
    if (request.kind == Kind::Text) {
        return ofText(RTNORM, answer, request.allowBlanks ? text : text.substr(0, text.find(L' ')));
    }
    if (const auto keyword = request.keywords.match(text)) {
        return ofText(request.kind == Kind::Keyword ? RTNORM : RTKWORD, answer, *keyword);
    }
    if (request.kind != Kind::Keyword) {
        if (const std::optional<Answer> understood = understand(request, text)) {
            return interpret(request, *understood, complaint);
        }
    }
    if (request.control & RSG_OTHER)
        return ofText(RTKWORD, answer, text);
    return std::nullopt;
}

}  // namespace drafthost::editor
