#include "host/editor/selection_filter.h"

#include <algorithm>
#include <cmath>
#include <cwctype>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/editor/value_conversion.h"

namespace drafthost::editor {

namespace {

constexpr short kOperator = -4, kXdata = -3, kApplication = 1001;
constexpr double kFuzz = 1e-9;

enum class Combination { All, Any, Odd, None };
struct Bracket {
    const wchar_t* begin;
    const wchar_t* end;
    Combination combination;
};
constexpr Bracket kBrackets[] = {{L"<AND", L"AND>", Combination::All},
                                 {L"<OR", L"OR>", Combination::Any},
                                 {L"<XOR", L"XOR>", Combination::Odd},
                                 {L"<NOT", L"NOT>", Combination::None}};

bool compare(const std::wstring& operation, double actual, double wanted) {
    const bool equal = std::abs(actual - wanted) <= kFuzz;
    if (operation == L"*")
        return true;
    if (operation == L"=" || operation == L"==")
        return equal;
    if (operation == L"!=" || operation == L"/=" || operation == L"<>")
        return !equal;
    if (operation == L"<")
        return actual < wanted && !equal;
    if (operation == L"<=")
        return actual < wanted || equal;
    if (operation == L">")
        return actual > wanted && !equal;
    if (operation == L">=")
        return actual > wanted || equal;
    const auto bits = static_cast<std::int64_t>(actual), mask = static_cast<std::int64_t>(wanted);
    if (operation == L"&")
        return (bits & mask) != 0;
    if (operation == L"&=")
        return (bits & mask) == mask;
    return false;
}

constexpr const wchar_t* kRelations[] = {L"*", L"=",  L"==", L"!=", L"/=", L"<>",
                                         L"<", L"<=", L">",  L">=", L"&",  L"&="};

// The operators of "<,<,*"; empty when one of them is no operator.
std::vector<std::wstring> relations(const std::wstring& text) {
    std::vector<std::wstring> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(L',', start);
        parts.push_back(text.substr(start, comma - start));
        if (std::find(std::begin(kRelations), std::end(kRelations), parts.back()) == std::end(kRelations))
            return {};
        if (comma == std::wstring::npos)
            return parts;
        start = comma + 1;
    }
}

struct NumberDefault {
    short code;
    double value;
};
// What groups that entity data leave out stand for.
constexpr NumberDefault kNumberDefaults[] = {{62, 256}, {48, 1}, {39, 0}, {60, 0}, {67, 0}, {370, -1}};

DxfGroup leftOut(short code) {
    for (const NumberDefault& row : kNumberDefaults) {
        if (row.code != code)
            continue;
        return dxfKind(code) == DxfKind::Real ? DxfGroup{code, row.value}
                                              : DxfGroup{code, static_cast<std::int64_t>(row.value)};
    }
    if (code == 6)
        return {code, std::wstring(L"BYLAYER")};
    if (code == 210)
        return {code, AcGePoint3d(0, 0, 1)};
    if (code == 410)
        return {code, std::wstring(L"Model")};
    return {code, std::wstring()};
}

}  // namespace

struct SelectionFilter::Test {
    Combination combination = Combination::All;
    std::vector<Test> parts;  // of a combination
    bool isGroup = false;
    DxfGroup group;                          // wanted
    std::vector<std::wstring> relation;      // empty: equal
    std::vector<std::wstring> applications;  // patterns; of a test for extended data

    bool holds(const class EntityData& data) const;
};

// The groups of one entity, fetched when a test needs more than type and layer.
class EntityData {
public:
    explicit EntityData(AcDbObjectId id) : id_(id), object_(peek<AcDbEntity>(id)) {}

    bool hasObject() const { return object_ != nullptr; }
    std::wstring type() const { return dxfNameOf(*object_); }
    const std::wstring& layer() const {
        return recordName(static_cast<const EntityState&>(*ObjectImp::of(object_).state).layer);
    }
    const std::vector<DxfGroup>& groups() const {
        fetch();
        return groups_;
    }
    const std::vector<std::wstring>& applications() const {
        fetch();
        return applications_;
    }

private:
    void fetch() const {
        if (fetched_)
            return;
        fetched_ = true;
        ads_name name = {0, 0};
        if (acdbGetAdsName(name, id_) != Acad::eOk)
            return;
        const ValueList all(acutBuildList(RTSTR, L"*", RTNONE));
        const ValueList list(acdbEntGetX(name, all.get()));
        bool extended = false;
        for (const resbuf* node = list.get(); node; node = node->rbnext) {
            extended = extended || node->restype == kXdata;
            if (!extended)
                groups_.push_back(fromResbuf(*node));
            if (extended && node->restype == kApplication)
                applications_.push_back(node->resval.rstring);
        }
    }

    AcDbObjectId id_;
    const AcDbEntity* object_;
    mutable bool fetched_ = false;
    mutable std::vector<DxfGroup> groups_;
    mutable std::vector<std::wstring> applications_;
};

namespace {

bool pointMatches(const AcGePoint3d& actual, const AcGePoint3d& wanted,
                  const std::vector<std::wstring>& relation) {
    for (int i = 0; i < 3; ++i) {
        const std::wstring operation = relation.empty()                                ? L"="
                                       : static_cast<std::size_t>(i) < relation.size() ? relation[i]
                                       : relation.size() == 1                          ? relation[0]
                                                                                       : L"*";
        if (!compare(operation, actual[i], wanted[i]))
            return false;
    }
    return true;
}

std::optional<AcGePoint3d> pointIn(const DxfValue& value) {
    if (const auto* p = std::get_if<AcGePoint3d>(&value))
        return *p;
    if (const auto* p = std::get_if<AcGePoint2d>(&value))
        return AcGePoint3d(p->x, p->y, 0);
    return std::nullopt;
}

std::optional<double> numberIn(const DxfValue& value) {
    if (const auto* real = std::get_if<double>(&value))
        return *real;
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    return std::nullopt;
}

bool groupMatches(const DxfGroup& actual, const DxfGroup& wanted, const std::vector<std::wstring>& relation) {
    if (const auto* pattern = std::get_if<std::wstring>(&wanted.value)) {
        const auto* text = std::get_if<std::wstring>(&actual.value);
        const bool matches = text && (matchesPattern(*text, *pattern) || equalNames(*text, *pattern));
        const bool negated =
            !relation.empty() && relation[0] != L"=" && relation[0] != L"==" && relation[0] != L"*";
        return text && matches != negated;
    }
    if (const auto point = pointIn(wanted.value)) {
        const auto other = pointIn(actual.value);
        return other && pointMatches(*other, *point, relation);
    }
    if (const auto number = numberIn(wanted.value)) {
        const auto other = numberIn(actual.value);
        return other && compare(relation.empty() ? L"=" : relation[0], *other, *number);
    }
    if (const auto* reference = std::get_if<ObjectReference>(&wanted.value)) {
        const auto* other = std::get_if<ObjectReference>(&actual.value);
        return other && (other->id.isNull() || reference->id.isNull() ? other->handle == reference->handle
                                                                      : other->id == reference->id);
    }
    return false;
}

bool holdsForSomeGroup(const EntityData& data, const DxfGroup& wanted,
                       const std::vector<std::wstring>& relation) {
    if (wanted.code == 0)
        return groupMatches({0, data.type()}, wanted, relation);
    if (wanted.code == 8)
        return groupMatches({8, data.layer()}, wanted, relation);
    bool present = false;
    for (const DxfGroup& group : data.groups()) {
        if (group.code != wanted.code)
            continue;
        if (groupMatches(group, wanted, relation))
            return true;
        present = true;
    }
    return !present && groupMatches(leftOut(wanted.code), wanted, relation);
}

bool hasApplications(const EntityData& data, const std::vector<std::wstring>& patterns) {
    return std::all_of(patterns.begin(), patterns.end(), [&](const std::wstring& pattern) {
        return std::any_of(data.applications().begin(), data.applications().end(),
                           [&](const std::wstring& name) { return matchesPattern(name, pattern); });
    });
}

}  // namespace

bool SelectionFilter::Test::holds(const EntityData& data) const {
    if (!applications.empty())
        return hasApplications(data, applications);
    if (isGroup)
        return holdsForSomeGroup(data, group, relation);
    const auto count =
        std::count_if(parts.begin(), parts.end(), [&](const Test& part) { return part.holds(data); });
    switch (combination) {
        case Combination::All: return static_cast<std::size_t>(count) == parts.size();
        case Combination::Any: return count > 0;
        case Combination::Odd: return count % 2 == 1;
        case Combination::None: return count == 0;
    }
    return false;
}

namespace {

// (code . value) pairs of a LISP list, written RTLB code [RTDOTE] value RTLE, as group nodes; other lists are
// copied.
ValueList asGroups(const resbuf* list) {
    ListCollector nodes;
    for (const resbuf* node = list; node; node = node->rbnext) {
        if (node->restype == RTLB || node->restype == RTLE || node->restype == RTDOTE ||
            node->restype == RTNIL)
            continue;
        const bool beginsPair = (node->restype == RTSHORT || node->restype == RTLONG) && node->rbnext;
        if (!beginsPair) {
            // Texts inside (-3 ("APP")) name applications.
            const bool application = node->restype == RTSTR;
            resbuf& copy = nodes.add(application ? kApplication : node->restype);
            const auto kind = acutResultKind(node->restype);
            if (kind == ResultKind::String || kind == ResultKind::Handle) {
                copy.resval.rstring = nullptr;
                acutNewString(node->resval.rstring, copy.resval.rstring);
            } else if (kind != ResultKind::Binary) {
                copy.resval = node->resval;
            }
            continue;
        }
        resbuf& group = nodes.add(node->resval.rlong);
        const resbuf* value = node->rbnext;
        if (value->restype == RTDOTE && value->rbnext)
            value = value->rbnext;
        if (group.restype == kXdata)
            continue;
        const auto kind = acutResultKind(group.restype);
        if (kind == ResultKind::String || kind == ResultKind::Handle) {
            acutDelString(group.resval.rstring);
            acutNewString(value->restype == RTSTR ? value->resval.rstring : L"", group.resval.rstring);
        } else if (kind == ResultKind::Real && value->restype != RTREAL) {
            group.resval.rreal = value->resval.rlong;
        } else if (kind == ResultKind::Short && value->restype == RTREAL) {
            group.resval.rlong = static_cast<std::int16_t>(value->resval.rreal);
        } else {
            group.resval = value->resval;
        }
        node = value;
    }
    return nodes.take();
}

// Reads tests up to the closing bracket, or the end of the list when there is none.
class Parser {
public:
    explicit Parser(const resbuf* groups) : node_(groups) {}

    bool parse(SelectionFilter::Test& test, const wchar_t* end) {
        while (node_) {
            if (node_->restype == kOperator) {
                const std::wstring text = node_->resval.rstring;
                node_ = node_->rbnext;
                if (end && equalNames(text, end))
                    return true;
                if (!operation(text, test))
                    return false;
            } else if (node_->restype == kXdata) {
                extendedData(test);
            } else {
                group(test, {});
            }
        }
        return end ? fail(std::wstring(L"(-4 . \"") + end + L"\") is missing") : true;
    }

    const std::wstring& problem() const { return problem_; }

private:
    bool fail(std::wstring text) {
        problem_ = std::move(text);
        return false;
    }

    bool operation(const std::wstring& text, SelectionFilter::Test& test) {
        for (const Bracket& bracket : kBrackets) {
            if (!equalNames(text, bracket.begin))
                continue;
            test.parts.emplace_back();
            test.parts.back().combination = bracket.combination;
            return parse(test.parts.back(), bracket.end);
        }
        const std::vector<std::wstring> relation = relations(text);
        if (relation.empty())
            return fail(L"\"" + text + L"\" is no operator");
        if (!node_ || node_->restype < 0)
            return fail(L"no group follows (-4 . \"" + text + L"\")");
        group(test, relation);
        return true;
    }

    void group(SelectionFilter::Test& test, std::vector<std::wstring> relation) {
        test.parts.emplace_back();
        test.parts.back().isGroup = true;
        test.parts.back().group = fromResbuf(*node_);
        test.parts.back().relation = std::move(relation);
        node_ = node_->rbnext;
    }

    void extendedData(SelectionFilter::Test& test) {
        SelectionFilter::Test wanted;
        node_ = node_->rbnext;
        for (; node_ && node_->restype == kApplication; node_ = node_->rbnext) {
            wanted.applications.push_back(node_->resval.rstring);
        }
        if (!wanted.applications.empty())
            test.parts.push_back(std::move(wanted));
    }

    const resbuf* node_;
    std::wstring problem_;
};

}  // namespace

SelectionFilter::SelectionFilter() = default;
SelectionFilter::~SelectionFilter() = default;
SelectionFilter::SelectionFilter(SelectionFilter&&) noexcept = default;
SelectionFilter& SelectionFilter::operator=(SelectionFilter&&) noexcept = default;

bool SelectionFilter::parse(const resbuf* groups, std::wstring& problem) {
    root_.reset();
    const ValueList plain = asGroups(groups);
    if (!plain)
        return true;
    root_ = std::make_unique<Test>();
    Parser parser(plain.get());
    if (parser.parse(*root_, nullptr))
        return true;
    problem = parser.problem();
    return false;
}

bool SelectionFilter::matches(AcDbObjectId entity) const {
    const EntityData data(entity);
    return data.hasObject() && (!root_ || root_->holds(data));
}

}  // namespace drafthost::editor
