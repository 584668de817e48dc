#include "host/database/class_records.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "host/database/class_registry.h"
#include "host/database/kept_contents.h"
#include "host/database/names.h"
#include "host/database/proxies.h"

namespace drafthost {
namespace {

constexpr short kDxfName = 1, kClassName = 2, kApplication = 3, kFlags = 90, kCount = 91;
constexpr short kWasProxy = 280, kIsEntity = 281;
// Every host is expected to have these classes, whether this one has or not.
constexpr const wchar_t* kCommonApplication = L"ObjectDBX Classes";

const std::wstring& textIn(const ClassGroups& record, short code) {
    static const std::wstring none;
    const auto found = std::ranges::find(record, code, &DxfGroup::code);
    const auto* const text = found == record.end() ? nullptr : std::get_if<std::wstring>(&found->value);
    return text ? *text : none;
}

std::int64_t numberIn(const ClassGroups& record, short code) {
    const auto found = std::ranges::find(record, code, &DxfGroup::code);
    const auto* const number = found == record.end() ? nullptr : std::get_if<std::int64_t>(&found->value);
    return number ? *number : 0;
}

void setNumber(ClassGroups& record, short code, std::int64_t value) {
    const auto found = std::ranges::find(record, code, &DxfGroup::code);
    if (found != record.end()) {
        found->value = value;
        return;
    }
    // Readers of old files take the groups in this order.
    const auto behind = std::ranges::find_if(
        record, [code](const DxfGroup& group) { return group.code > code && group.code != 100; });
    record.insert(behind, DxfGroup{code, value});
}

ClassGroups recordOf(const AcRxClass& cls) {
    return {{kDxfName, std::wstring(cls.dxfName())},
            {kClassName, std::wstring(cls.name())},
            {kApplication, std::wstring(cls.appName())},
            {kFlags, std::int64_t{cls.proxyFlags()}},
            {kWasProxy, std::int64_t{0}},
            {kIsEntity, std::int64_t{cls.isDerivedFrom(AcDbEntity::desc())}}};
}

// The objects of one DXF name.
struct Population {
    std::int64_t objects = 0;
    bool asProxies = false;
    const AcRxClass* cls = nullptr;  // of a module that is here; null: none
};

// By folded DXF name. Objects of the host's own classes are counted too: files may have records of them.
std::unordered_map<std::wstring, Population> populations(const AcDbDatabase& database) {
    std::unordered_map<std::wstring, Population> found;
    std::unordered_map<const AcRxClass*, Population*> ofClass;
    for (const AcDbStub* const stub : database.impl().stubs) {
        if (!stub->object || stub->erased)
            continue;
        const AcRxClass* const cls = stub->object->isA();
        const bool kept = keptContents(*stub->object) != nullptr;
        // Few classes, many objects: names are folded once a class.
        Population*& known = ofClass[cls];
        Population* const one = known && !kept ? known : &found[foldCase(dxfNameOf(*stub->object))];
        if (!kept)
            known = one;
        ++one->objects;
        one->asProxies = one->asProxies || kept;
        if (const AcRxClass* const ofModule = kept ? classOfProxy(*stub->object) : cls;
            ofModule && ofModule->appName())
            one->cls = ofModule;
    }
    return found;
}

ClassGroups counted(ClassGroups record, const Population& population, bool withCounts) {
    const bool hasCount = std::ranges::find(record, kCount, &DxfGroup::code) != record.end();
    if (withCounts || hasCount)
        setNumber(record, kCount, population.objects);
    if (population.objects > 0 && textIn(record, kApplication) != kCommonApplication)
        setNumber(record, kWasProxy, population.asProxies && !population.cls ? 1 : 0);
    return record;
}

}  // namespace

const ClassGroups* findClassRecord(const AcDbDatabase& database, std::wstring_view dxfName) {
    for (const ClassGroups& record : database.impl().classes)
        if (!dxfName.empty() && equalNames(textIn(record, kDxfName), dxfName))
            return &record;
    return nullptr;
}

int proxyFlagsIn(const ClassGroups& record) {
    return static_cast<int>(numberIn(record, kFlags));
}

std::wstring applicationIn(const ClassGroups& record) {
    std::wstring text(textIn(record, kApplication));
    std::erase(text, L'"');
    return text;
}

void keepClassRecord(AcDbDatabase& database, const AcRxClass& cls) {
    if (!cls.dxfName())
        return;
    auto& records = database.impl().classes;
    const auto known = std::ranges::find_if(records, [&cls](const ClassGroups& record) {
        return equalNames(textIn(record, kDxfName), cls.dxfName());
    });
    if (known != records.end())
        *known = recordOf(cls);
    else
        records.push_back(recordOf(cls));
}

std::vector<ClassGroups> classRecordsForFile(const AcDbDatabase& database, bool withCounts) {
    auto present = populations(database);
    std::vector<ClassGroups> records;
    std::unordered_set<std::wstring> written;
    for (const ClassGroups& record : database.impl().classes) {
        const std::wstring name = foldCase(textIn(record, kDxfName));
        if (!written.insert(name).second)
            continue;
        const Population& population = present[name];
        records.push_back(
            counted(population.cls ? recordOf(*population.cls) : record, population, withCounts));
    }
    std::vector<ClassGroups> added;
    for (const auto& [name, population] : present)
        if (population.cls && !name.empty() && !written.contains(name))
            added.push_back(counted(recordOf(*population.cls), population, withCounts));
    std::ranges::sort(added, {}, [](const ClassGroups& record) { return textIn(record, kDxfName); });
    records.insert(records.end(), added.begin(), added.end());
    return records;
}

}  // namespace drafthost
