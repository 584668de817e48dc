#include "host/exchange/name_repairs.h"

#include <algorithm>

#include "host/database/loading.h"
#include "host/exchange/dxf_error.h"

namespace drafthost::exchange {

// A group that holds a name: in records of the types, or (types empty) among the properties of all entities.
struct NameRepairs::Rule {
    std::wstring_view types;  // with blanks around each
    short code;
    TableIndex table;
    AuditCode finding;
    const wchar_t* what;
    const wchar_t* kind;      // of the record to add
    const wchar_t* standard;  // name that is put in the place of an empty one
};

const NameRepairs::Rule NameRepairs::kRules[] = {
    {L"", 8, TableIndex::Layer, AuditCode::MissingLayer, L"layer", L"LAYER", L"0"},
    {L"", 6, TableIndex::Linetype, AuditCode::MissingLinetype, L"linetype", L"LTYPE", L"ByLayer"},
    {L" LAYER ", 6, TableIndex::Linetype, AuditCode::MissingLinetype, L"linetype", L"LTYPE", L"Continuous"},
    {L" TEXT MTEXT ATTRIB ATTDEF ", 7, TableIndex::TextStyle, AuditCode::MissingTextStyle, L"text style",
     L"STYLE", L"Standard"},
    {L" DIMENSION LEADER TOLERANCE ", 3, TableIndex::DimStyle, AuditCode::MissingDimensionStyle,
     L"dimension style", L"DIMSTYLE", L"Standard"},
    {L" INSERT ", 2, TableIndex::Block, AuditCode::MissingBlock, L"block", L"BLOCK_RECORD", L"_None"},
};

namespace {

constexpr short kSubclassMarker = 100;
constexpr short kApplication = 1001;

// Where the properties that all entities have end: before the second subclass marker.
auto endOfCommonPart(std::vector<DxfGroup>& groups) {
    int markers = 0;
    return std::find_if(groups.begin(), groups.end(), [&](const DxfGroup& group) {
        return group.code >= kApplication || (group.code == kSubclassMarker && ++markers == 2);
    });
}

}  // namespace

bool NameRepairs::known(TableIndex table, const std::wstring& name) {
    auto& known = known_[static_cast<std::size_t>(table)];
    if (known.contains(name))
        return true;
    if (findRecord(&database_, table, name).isNull())
        return false;
    known.insert(name);
    return true;
}

void NameRepairs::addRecord(const wchar_t* kind, const std::wstring& name) {
    std::vector<DxfGroup> groups = {{0, std::wstring(kind)}, {2, name}, {70, std::int64_t{0}}};
    if (kind == std::wstring_view(L"LAYER"))
        groups.push_back({6, std::wstring(L"Continuous")});
    const LoadResult result = loadRecord(database_, std::move(groups));
    if (result.status != Acad::eOk)
        throw DxfError(0, "a table record could not be added");
}

void NameRepairs::addStandardRecords(std::string_view kind) {
    struct Standard {
        TableIndex table;
        std::string_view kind;
        const wchar_t* name;
    };
    constexpr Standard kStandards[] = {
        {TableIndex::Linetype, "LTYPE", L"ByBlock"},
        {TableIndex::Linetype, "LTYPE", L"ByLayer"},
        {TableIndex::Linetype, "LTYPE", L"Continuous"},
        {TableIndex::TextStyle, "STYLE", L"Standard"},
        {TableIndex::Layer, "LAYER", L"0"},
    };
    for (const Standard& standard : kStandards)
        if (standard.kind == kind && !known(standard.table, standard.name))
            addRecord(std::wstring(kind.begin(), kind.end()).c_str(), standard.name);
}

void NameRepairs::apply(const Rule& rule, DxfGroup& group, std::size_t line) {
    auto* const name = std::get_if<std::wstring>(&group.value);
    if (!name)
        return;
    if (name->empty())
        *name = rule.standard;
    if (rule.table == TableIndex::Layer)
        repairLayerName(*name, line);
    if (known(rule.table, *name))
        return;
    addRecord(rule.kind, *name);
    report_.add(rule.finding, std::wstring(rule.what) + L" \"" + *name + L"\" was missing and has been added",
                line);
}

void NameRepairs::repairApplications(const std::vector<DxfGroup>& groups, std::size_t line) {
    for (const DxfGroup& group : groups) {
        if (group.code != kApplication)
            continue;
        const auto* const name = std::get_if<std::wstring>(&group.value);
        if (!name || name->empty() || known(TableIndex::RegApp, *name))
            continue;
        addRecord(L"APPID", *name);
        report_.add(AuditCode::MissingApplication,
                    L"application \"" + *name + L"\" was not registered and has been added", line);
    }
}

void NameRepairs::repairLayerName(std::wstring& name, std::size_t line) {
    // A bar stands between the name of an external reference and that of its layer.
    constexpr std::wstring_view kForbidden = L"<>/\\\":;?*=`,";
    // The host's own layers of external references and the like are allowed to begin with a star.
    const auto isForbidden = [&](wchar_t c) { return kForbidden.find(c) != std::wstring_view::npos; };
    if (name.starts_with(L'*') || std::none_of(name.begin(), name.end(), isForbidden))
        return;
    const std::wstring before = name;
    std::replace_if(name.begin(), name.end(), isForbidden, L'_');
    if (!known(TableIndex::Layer, name))
        report_.add(AuditCode::InvalidLayerName, L"layer \"" + before + L"\" is called \"" + name + L"\" now",
                    line);
}

void NameRepairs::repair(std::vector<DxfGroup>& groups, RecordKind kind, std::size_t line) {
    repairApplications(groups, line);
    if (std::get<std::wstring>(groups.front().value) == L"LAYER" && kind == RecordKind::TableRecord)
        for (DxfGroup& group : groups)
            if (auto* const name = std::get_if<std::wstring>(&group.value); name && group.code == 2)
                repairLayerName(*name, line);
    if (kind == RecordKind::Object)
        return;  // their groups have meanings of their own
    const std::wstring type = L" " + std::get<std::wstring>(groups.front().value) + L" ";
    const auto commonEnd = endOfCommonPart(groups);
    for (const Rule& rule : kRules) {
        const bool common = rule.types.empty();
        if (common ? kind != RecordKind::Entity : rule.types.find(type) == std::wstring_view::npos)
            continue;
        const auto end = common ? commonEnd : groups.end();
        const auto found =
            std::find_if(groups.begin() + 1, end, [&](const DxfGroup& g) { return g.code == rule.code; });
        if (found != end)
            apply(rule, *found, line);
    }
}

}  // namespace drafthost::exchange
