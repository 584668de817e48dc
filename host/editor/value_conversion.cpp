#include "host/editor/value_conversion.h"

#include <limits>

#include "host/api/database.h"
#include "host/database/resbuf_text.h"
#include "host/documents/host.h"
#include "host/editor/selection_set.h"

namespace drafthost::editor {

using lisp::Value;

namespace {

// Deeper lists would exhaust the thread's stack.
constexpr int kDeepest = 5000;

bool fitsShort(std::int32_t number) {
    return number == static_cast<std::int16_t>(number);
}

// Two or three for a list of that many reals, 0 for other values.
int pointDimension(Value value) {
    int count = 0;
    for (; value.isPair(); value = value.cdr(), ++count) {
        if (count == 3 || !value.car().isReal())
            return 0;
    }
    return value.isNil() && count >= 2 ? count : 0;
}

void setPoint(resbuf& node, Value list) {
    for (int i = 0; list.isPair() && i < 3; list = list.cdr(), ++i)
        node.resval.rpoint[i] = list.car().asNumber();
}

void addObject(ListCollector& nodes, Value value) {
    if (value.isEntityName()) {
        const lisp::EntityName name = static_cast<lisp::EntityNameObject*>(value.asObject())->name;
        resbuf& node = nodes.add(RTENAME);
        node.resval.rlname[0] = static_cast<std::int64_t>(name.first);
        node.resval.rlname[1] = static_cast<std::int64_t>(name.second);
    } else if (value.isSelectionSet()) {
        const auto& set = static_cast<lisp::SelectionSetObject*>(value.asObject())->set;
        SelectionSets::nameOf(static_cast<const SelectionSet&>(*set), nodes.add(RTPICKS).resval.rlname);
    } else {
        nodes.add(RTNIL);
    }
}

void addValue(ListCollector& nodes, Value value, int depth);

void addList(ListCollector& nodes, Value list, int depth) {
    if (depth > kDeepest)
        throw lisp::LispError(L"list nested too deeply");
    nodes.add(RTLB);
    for (; list.isPair(); list = list.cdr())
        addValue(nodes, list.car(), depth + 1);
    if (!list.isNil()) {
        nodes.add(RTDOTE);
        addValue(nodes, list, depth + 1);
    }
    nodes.add(RTLE);
}

void addValue(ListCollector& nodes, Value value, int depth) {
    switch (value.type()) {
        case lisp::Type::nothing: nodes.add(RTNIL); return;
        case lisp::Type::integer: {
            const std::int32_t number = value.asInteger();
            nodes.add(fitsShort(number) ? RTSHORT : RTLONG).resval.rlong = number;
            return;
        }
        case lisp::Type::real: nodes.add(RTREAL).resval.rreal = value.asReal(); return;
        case lisp::Type::string: setText(nodes.add(RTSTR), value.asString()); return;
        case lisp::Type::symbol:
            if (value.asSymbol()->name == L"T") {
                nodes.add(RTT);
            } else {
                setText(nodes.add(RTSTR), value.asSymbol()->name);
            }
            return;
        case lisp::Type::list:
            if (const int dimension = pointDimension(value)) {
                setPoint(nodes.add(dimension == 2 ? RTPOINT : RT3DPOINT), value);
            } else {
                addList(nodes, value, depth);
            }
            return;
        default: addObject(nodes, value); return;
    }
}

bool isGroup(const resbuf& node) {
    return node.restype < RTNONE_TYPE;
}

Value plainValue(lisp::Interpreter& interpreter, const resbuf& node) {
    const ads_u_val& value = node.resval;
    switch (acutResultKind(node.restype)) {
        case ResultKind::Real: return Value::real(value.rreal);
        case ResultKind::Point:
            return node.restype == RTPOINT
                       ? interpreter.point(value.rpoint[0], value.rpoint[1])
                       : interpreter.point(value.rpoint[0], value.rpoint[1], value.rpoint[2]);
        case ResultKind::Short: return Value::integer(value.rint);
        case ResultKind::Long: return Value::integer(value.rlong);
        case ResultKind::Int64: return Value::real(static_cast<double>(value.rlname[0]));
        case ResultKind::String:
        case ResultKind::Handle: return interpreter.string(value.rstring ? value.rstring : L"");
        case ResultKind::Name:
            if (node.restype == RTPICKS) {
                auto set = theHost().selectionSets().find(value.rlname);
                return set ? interpreter.selectionSet(std::move(set)) : Value();
            }
            return interpreter.entityName(static_cast<std::uint64_t>(value.rlname[0]),
                                          static_cast<std::uint64_t>(value.rlname[1]));
        case ResultKind::Binary: {
            static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
            std::wstring text;
            for (int i = 0; i < value.rbinary.clen; ++i) {
                const auto byte = static_cast<unsigned char>(value.rbinary.buf[i]);
                text += {kDigits[byte >> 4], kDigits[byte & 15]};
            }
            return interpreter.string(std::move(text));
        }
        case ResultKind::None: break;
    }
    switch (node.restype) {
        case RTT: return interpreter.t();
        case RTVOID: return interpreter.nullSymbol();
        default: return Value();
    }
}

// A list that is being read: its elements so far, and what stands behind the dot.
struct OpenList {
    std::vector<Value> elements;
    bool dotted = false;
    Value tail;
};

Value closed(lisp::Interpreter& interpreter, const OpenList& open) {
    Value list = open.tail;
    for (auto element = open.elements.rbegin(); element != open.elements.rend(); ++element) {
        list = interpreter.cons(*element, list);
    }
    return list;
}

void addElement(OpenList& open, Value value) {
    if (open.dotted) {
        open.tail = value;
    } else {
        open.elements.push_back(value);
    }
}

[[noreturn]] void raiseBadGroup(Value group) {
    lisp::raiseBadArgumentType(L"DXF group:", group);
}

// Puts a value into a node of a group code; false when it is of another kind.
bool setGroup(resbuf& node, Value value) {
    switch (acutResultKind(node.restype)) {
        case ResultKind::Real:
            if (!value.isNumber())
                return false;
            node.resval.rreal = value.asNumber();
            return true;
        case ResultKind::Short:
        case ResultKind::Long:
            if (!value.isNumber())
                return false;
            node.resval.rlong = static_cast<std::int32_t>(value.asNumber());
            return true;
        case ResultKind::Int64:
            if (!value.isNumber())
                return false;
            node.resval.rlname[0] = static_cast<std::int64_t>(value.asNumber());
            return true;
        case ResultKind::String:
        case ResultKind::Handle: return value.isString() && setText(node, value.asString());
        case ResultKind::Point:
            if (!value.isPair() || !value.car().isNumber())
                return false;
            setPoint(node, value);
            return true;
        case ResultKind::Name: {
            if (!value.isEntityName())
                return false;
            const lisp::EntityName name = static_cast<lisp::EntityNameObject*>(value.asObject())->name;
            node.resval.rlname[0] = static_cast<std::int64_t>(name.first);
            node.resval.rlname[1] = static_cast<std::int64_t>(name.second);
            return true;
        }
        case ResultKind::Binary: {
            if (!value.isString())
                return false;
            const std::wstring& digits = value.asString();
            std::vector<std::uint8_t> bytes;
            for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
                wchar_t* end = nullptr;
                const std::wstring pair = digits.substr(i, 2);
                bytes.push_back(static_cast<std::uint8_t>(std::wcstoul(pair.c_str(), &end, 16)));
                if (*end)
                    return false;
            }
            return setBinary(node, bytes.data(), bytes.size());
        }
        case ResultKind::None: return false;
    }
    return false;
}

constexpr short kXdata = -3;
constexpr short kXdataApplication = 1001;

void addGroup(ListCollector& nodes, Value group);

// ("APP" (1000 . "x") ...)
void addApplication(ListCollector& nodes, Value application) {
    if (!application.isPair() || !application.car().isString())
        raiseBadGroup(application);
    setText(nodes.add(kXdataApplication), application.car().asString());
    for (Value group : lisp::elements(application.cdr()))
        addGroup(nodes, group);
}

void addGroup(ListCollector& nodes, Value group) {
    if (!group.isPair() || !group.car().isInteger() || !fitsShort(group.car().asInteger()))
        raiseBadGroup(group);
    const std::int32_t code = group.car().asInteger();
    if (code == kXdata) {
        nodes.add(code);
        for (Value application : lisp::elements(group.cdr()))
            addApplication(nodes, application);
        return;
    }
    if (!setGroup(nodes.add(code), group.cdr()))
        raiseBadGroup(group);
}

}  // namespace

resbuf& ListCollector::add(int type) {
    resbuf* const node = acutNewRb(type);
    if (!node)
        throw lisp::LispError(L"insufficient memory");
    if (last_) {
        last_->rbnext = node;
    } else {
        first_.reset(node);
    }
    last_ = node;
    return *node;
}

void ListCollector::append(ValueList list) {
    resbuf* const first = list.release();
    if (!first)
        return;
    if (last_) {
        last_->rbnext = first;
    } else {
        first_.reset(first);
    }
    for (last_ = first; last_->rbnext;)
        last_ = last_->rbnext;
}

ValueList toValueList(std::span<const Value> values) {
    ListCollector nodes;
    for (Value value : values)
        addValue(nodes, value, 0);
    return nodes.take();
}

Value fromNode(lisp::Interpreter& interpreter, const resbuf& node) {
    const Value value = plainValue(interpreter, node);
    return isGroup(node) ? interpreter.dotted(node.restype, value) : value;
}

Value fromValueList(lisp::Interpreter& interpreter, const resbuf* list) {
    std::vector<OpenList> open(1);
    for (; list; list = list->rbnext) {
        switch (list->restype) {
            case RTLB: open.emplace_back(); break;
            case RTDOTE: open.back().dotted = true; break;
            case RTLE:
                if (open.size() > 1) {
                    const Value value = closed(interpreter, open.back());
                    open.pop_back();
                    addElement(open.back(), value);
                }
                break;
            default: addElement(open.back(), fromNode(interpreter, *list)); break;
        }
    }
    while (open.size() > 1) {
        const Value value = closed(interpreter, open.back());
        open.pop_back();
        addElement(open.back(), value);
    }
    return closed(interpreter, open.front());
}

ValueList groupsFromValue(Value list) {
    ListCollector nodes;
    for (Value group : lisp::elements(list))
        addGroup(nodes, group);
    return nodes.take();
}

Value valueFromGroups(lisp::Interpreter& interpreter, const resbuf* groups) {
    lisp::ListBuilder list(interpreter);
    bool flatPoints = false;  // vertices of lightweight polylines have no z
    for (; groups && groups->restype != kXdata; groups = groups->rbnext) {
        if (groups->restype == 0)
            flatPoints = std::wstring_view(groups->resval.rstring) == L"LWPOLYLINE";
        const ads_real* const p = groups->resval.rpoint;
        list.append(flatPoints && groups->restype == 10
                        ? interpreter.dotted(10, interpreter.point(p[0], p[1]))
                        : fromNode(interpreter, *groups));
    }
    if (!groups || !groups->rbnext)
        return list.list();
    lisp::ListBuilder applications(interpreter);
    const resbuf* node = groups->rbnext;
    while (node && node->restype == kXdataApplication) {
        lisp::ListBuilder application(interpreter);
        application.append(plainValue(interpreter, *node));
        for (node = node->rbnext; node && node->restype != kXdataApplication; node = node->rbnext) {
            application.append(fromNode(interpreter, *node));
        }
        applications.append(application.list());
    }
    list.append(interpreter.dotted(kXdata, applications.list()));
    return list.list();
}

std::optional<Answer> answerFromValue(Value value) {
    Answer answer;
    switch (value.type()) {
        case lisp::Type::integer:
            answer.kind = Answer::Kind::Integer;
            answer.integer = value.asInteger();
            return answer;
        case lisp::Type::real:
            answer.kind = Answer::Kind::Real;
            answer.number = value.asReal();
            return answer;
        case lisp::Type::string: return Answer::ofText(Answer::Kind::Typed, value.asString());
        case lisp::Type::entityName:
            answer.kind = Answer::Kind::Entity;
            answer.entity = entityOf(value);
            return answer;
        case lisp::Type::selectionSet:
            answer.kind = Answer::Kind::Set;
            answer.set = std::static_pointer_cast<SelectionSet>(
                static_cast<lisp::SelectionSetObject*>(value.asObject())->set);
            return answer;
        case lisp::Type::list: {
            // (<Entity name> point), as entsel answers
            if (value.car().isEntityName())
                return answerFromValue(value.car());
            for (Value element : lisp::elements(value)) {
                if (!element.isNumber())
                    return std::nullopt;
            }
            const std::size_t count = lisp::lengthOf(value);
            if (count < 2 || count > 3)
                return std::nullopt;
            const lisp::Point point = lisp::pointOf(value);
            return Answer::ofPoint(Answer::Kind::Point, {point.x, point.y, point.z}, point.dimension);
        }
        default: return std::nullopt;
    }
}

Value entityValue(lisp::Interpreter& interpreter, AcDbObjectId id) {
    ads_name name = {0, 0};
    if (acdbGetAdsName(name, id) != Acad::eOk)
        return Value();
    return interpreter.entityName(static_cast<std::uint64_t>(name[0]), static_cast<std::uint64_t>(name[1]));
}

AcDbObjectId entityOf(Value value) {
    const lisp::EntityName words = static_cast<lisp::EntityNameObject*>(value.asObject())->name;
    const ads_name name = {static_cast<std::int64_t>(words.first), static_cast<std::int64_t>(words.second)};
    AcDbObjectId id;
    return acdbGetObjectId(id, name) == Acad::eOk ? id : AcDbObjectId();
}

Value pointValue(lisp::Interpreter& interpreter, const AcGePoint3d& point) {
    return interpreter.point(point.x, point.y, point.z);
}

}  // namespace drafthost::editor
