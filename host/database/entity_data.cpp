#include "host/database/entity_data.h"

#include <algorithm>
#include <iterator>

#include "host/database/extended_data.h"
#include "host/database/group_filer.h"
#include "host/database/sequence_entities.h"
#include "host/database/table_states.h"

namespace drafthost {
namespace {

using Groups = std::vector<DxfGroup>;

// The first entity of a block, null when it is empty.
AcDbObjectId firstEntity(const AcDbBlockTableRecord& block) {
    for (const AcDbObjectId id : readState<BlockState>(&block).entities) {
        if (!id.isErased())
            return id;
    }
    return {};
}

// What the type says nothing about: where the block's entities begin, whose attributes end here.
void addLinks(const AcDbObject& object, Groups& groups) {
    if (AcDbSequenceEnd::cast(&object))
        groups.push_back({-2, ObjectReference{object.handle(), object.ownerId()}});
    if (!AcDbBlockBegin::cast(&object))
        return;
    const auto* const block = peek<AcDbBlockTableRecord>(object.ownerId());
    const AcDbObjectId first = block ? firstEntity(*block) : AcDbObjectId();
    if (!first.isNull())
        groups.push_back({-2, ObjectReference{first.handle(), first}});
}

// A subclass marker with the groups behind it; the first section of a list has no marker.
struct Section {
    std::wstring marker;
    int occurrence = 0;  // of the marker in the list: some classes have one twice
    Groups groups;
};

std::vector<Section> sectionsOf(const Groups& groups) {
    std::vector<Section> sections(1);
    for (const DxfGroup& group : groups) {
        const auto* const name = std::get_if<std::wstring>(&group.value);
        if (group.code != 100 || !name) {
            sections.back().groups.push_back(group);
            continue;
        }
        const auto before = std::ranges::count(sections, *name, &Section::marker);
        sections.push_back({*name, static_cast<int>(before), {}});
    }
    return sections;
}

bool hasCode(const Groups& groups, short code) {
    return std::ranges::find(groups, code, &DxfGroup::code) != groups.end();
}

std::ptrdiff_t countCode(const Groups& groups, short code) {
    return std::ranges::count(groups, code, &DxfGroup::code);
}

bool isEntityCode(short code) {
    static constexpr short kCodes[] = {8, 6, 62, 48, 60, 67, 370, 410, 420};
    return std::ranges::find(kCodes, code) != std::end(kCodes);
}

Section& sectionFor(std::vector<Section>& sections, short code) {
    for (Section& section : sections) {
        if (section.marker != L"AcDbEntity" && hasCode(section.groups, code) && !isEntityCode(code))
            return section;
    }
    for (Section& section : sections) {
        if (section.marker == L"AcDbEntity" && isEntityCode(code))
            return section;
    }
    return sections.back();
}

// Groups without markers are given to the sections that have such groups.
std::vector<Section> distribute(const Groups& given, std::vector<Section>& present) {
    std::vector<Section> sections;
    for (const Section& section : present)
        sections.push_back({section.marker, section.occurrence, {}});
    for (const DxfGroup& group : given) {
        const auto index = static_cast<std::size_t>(&sectionFor(present, group.code) - present.data());
        sections[index].groups.push_back(group);
    }
    return sections;
}

bool hasAllCodes(const Groups& given, const Groups& present) {
    return std::ranges::all_of(present, [&](const DxfGroup& group) { return hasCode(given, group.code); });
}

// A list that has everything of a section stands for it in the order given, on which hatches and records of
// data depend.
bool isWholeSection(const Section& present, const Groups& given) {
    return present.marker == L"AcDbXrecord" || hasAllCodes(given, present.groups);
}

// The pieces of a long text go with its last one: a text without them replaces them all.
void dropTextPieces(Section& present, const Groups& given) {
    if (present.marker == L"AcDbMText" && hasCode(given, 1) && !hasCode(given, 3))
        std::erase_if(present.groups, [](const DxfGroup& group) { return group.code == 3; });
}

void mergeSection(Section& present, const Groups& given) {
    dropTextPieces(present, given);
    const auto repeats = [&](short code) {
        return countCode(present.groups, code) > 1 || countCode(given, code) > 1;
    };
    const bool replacesRepeated =
        std::ranges::any_of(given, [&](const DxfGroup& group) { return repeats(group.code); });
    Groups merged;
    for (const DxfGroup& group : present.groups) {
        if (repeats(group.code)) {
            if (!replacesRepeated)
                merged.push_back(group);
            continue;
        }
        const auto next = std::ranges::find(given, group.code, &DxfGroup::code);
        merged.push_back(next == given.end() ? group : *next);
    }
    // Vertices and what belongs to them keep the order in which they are given.
    for (const DxfGroup& group : given) {
        const bool single = hasCode(present.groups, group.code) && !repeats(group.code);
        if (!single)
            merged.push_back(group);
    }
    present.groups = std::move(merged);
}

// Programs add groups of every entity, such as a colour, at the end of a list; they go where the entity's own
// are, unless the class has such groups itself.
void moveEntityGroups(std::vector<Section>& changes, const std::vector<Section>& present) {
    const auto own = std::ranges::find(changes, L"AcDbEntity", &Section::marker);
    if (own == changes.end())
        return;
    for (Section& change : changes) {
        if (change.marker.empty() || change.marker == L"AcDbEntity")
            continue;
        const auto same = std::ranges::find(present, change.marker, &Section::marker);
        const auto isMisplaced = [&](const DxfGroup& group) {
            return isEntityCode(group.code) && (same == present.end() || !hasCode(same->groups, group.code));
        };
        std::ranges::copy_if(change.groups, std::back_inserter(own->groups), isMisplaced);
        std::erase_if(change.groups, isMisplaced);
    }
}

Groups joined(const std::vector<Section>& sections) {
    Groups groups;
    for (const Section& section : sections) {
        if (!section.marker.empty())
            groups.push_back({100, section.marker});
        groups.insert(groups.end(), section.groups.begin(), section.groups.end());
    }
    return groups;
}

}  // namespace

EntityProblem& lastEntityProblem() {
    static EntityProblem problem;
    return problem;
}

int entityError(int number, std::wstring text) {
    lastEntityProblem() = {number, std::move(text)};
    return RTERROR;
}

int entityError(Acad::ErrorStatus status) {
    switch (status) {
        case Acad::eOnLockedLayer: return entityError(kErrnoOnLockedLayer, L"the layer is locked");
        case Acad::eWasErased:
        case Acad::ePermanentlyErased: return entityError(kErrnoDeletedEntity, L"the entity was erased");
        case Acad::eInvalidAdsName:
        case Acad::eNullObjectId: return entityError(kErrnoInvalidEntity, L"no such entity");
        case Acad::eProxyRefused:
            return entityError(kErrnoBadList,
                               L"the entity's class is not loaded and does not allow the change");
        case Acad::eWasOpenForRead:
        case Acad::eWasOpenForWrite:
        case Acad::eWasOpenForNotify: return entityError(kErrnoOpenConflict, L"the entity is open already");
        default: return entityError(kErrnoBadList, acadErrorStatusText(status));
    }
}

Groups entityGroups(AcDbObjectId id) {
    const AcDbObject* const object = id.isErased() ? nullptr : peek<AcDbObject>(id);
    if (!object)
        return {};
    GroupFiler filer(object->database(), AcDb::kBagFiler);
    object->dxfOut(&filer);
    Groups all = std::move(filer.groups());
    Groups links;  // reactors and the like, which stand between the handle and the first subclass
    Groups groups{{-1, ObjectReference{id.handle(), id}}};
    const DxfGroup* handle = nullptr;
    std::size_t i = 0;
    bool inBraces = false;
    for (; i < all.size() && all[i].code != 100 && all[i].code < 1000; ++i) {
        if (all[i].code == 102)
            inBraces = !inBraces;
        const bool isHandle = all[i].code == 5 || all[i].code == 105;
        if (isHandle)
            handle = &all[i];
        else if (inBraces || (all[i].code != 0 && all[i].code != 330))
            links.push_back(all[i]);
        else
            groups.push_back(all[i]);
    }
    if (handle)
        groups.push_back(*handle);
    groups.insert(groups.end(), links.begin(), links.end());
    for (; i < all.size() && all[i].code < 1000; ++i)
        groups.push_back(std::move(all[i]));
    addLinks(*object, groups);
    return groups;
}

Groups groupsOfList(const resbuf* list) {
    Groups groups;
    for (; list; list = list->rbnext)
        groups.push_back(fromResbuf(*list));
    return groups;
}

resbuf* listOfGroups(const Groups& groups) {
    resbuf* first = nullptr;
    resbuf** end = &first;
    for (const DxfGroup& group : groups) {
        *end = toResbuf(group, true);
        if (!*end)
            break;
        end = &(*end)->rbnext;
    }
    return first;
}

Groups contentGroups(const Groups& groups, Groups& xdata) {
    Groups content;
    bool inXdata = false, inBraces = false, inCommonPart = true;
    for (const DxfGroup& group : groups) {
        if (group.code == 100)
            inCommonPart = false;
        if (group.code == -3 || group.code == 1001)
            inXdata = true;
        if (group.code == 102 && inCommonPart)
            inBraces = !inBraces;
        if (inXdata) {
            if (group.code != -3)
                xdata.push_back(group);
            continue;
        }
        const bool identifies = group.code < 0 || group.code == 5 || group.code == 105 ||
                                (inCommonPart && (group.code == 102 || group.code == 330 || inBraces));
        if (!identifies)
            content.push_back(group);
    }
    return content;
}

Groups mergedGroups(const Groups& present, const Groups& given) {
    std::vector<Section> sections = sectionsOf(present);
    std::vector<Section> changes = sectionsOf(given);
    const bool hasMarkers = changes.size() > 1;
    if (!hasMarkers) {
        changes = distribute(given, sections);
    } else {
        // Entity groups in front of the first marker belong to every entity's own subclass.
        moveEntityGroups(changes, sections);
        std::vector<Section> early = distribute(changes.front().groups, sections);
        changes.erase(changes.begin());
        changes.insert(changes.begin(), early.begin(), early.end());
    }
    for (const Section& change : changes) {
        const auto same = std::ranges::find_if(sections, [&](const Section& section) {
            return section.marker == change.marker && section.occurrence == change.occurrence;
        });
        if (same == sections.end() || change.groups.empty())
            continue;
        if (hasMarkers && isWholeSection(*same, change.groups))
            same->groups = change.groups;
        else
            mergeSection(*same, change.groups);
    }
    return joined(sections);
}

const std::wstring& textGroup(const Groups& groups, short code) {
    static const std::wstring none;
    for (const DxfGroup& group : groups) {
        const auto* const text = std::get_if<std::wstring>(&group.value);
        if (group.code == code && text)
            return *text;
    }
    return none;
}

Acad::ErrorStatus readEntityData(AcDbObject& object, AcDbDatabase& database, Groups groups,
                                 std::wstring& problem) {
    // Classes of modules need not look at their numbers, and files cannot hold such as are none.
    if (const auto unusable = std::ranges::find_if_not(groups, hasFiniteValue); unusable != groups.end()) {
        problem = L"group " + std::to_wstring(unusable->code) + L": not a finite number";
        return Acad::eInvalidInput;
    }
    ChangeLog log;
    auto& logs = database.impl().logs;
    logs.push_back(&log);
    GroupFiler filer(&database, groups, AcDb::kBagFiler);
    Acad::ErrorStatus status = object.dxfIn(&filer);
    problem = filer.problem();
    if (status == Acad::eBadDxfSequence && filer.hasMarkers()) {
        std::erase_if(groups, [](const DxfGroup& group) { return group.code == 100; });
        GroupFiler unmarked(&database, std::move(groups), AcDb::kBagFiler);
        status = object.dxfIn(&unmarked);
        if (!unmarked.problem().empty())
            problem = unmarked.problem();
    }
    std::erase(logs, &log);
    if (status == Acad::eOk)
        return status;
    if (problem.empty())
        problem = acadErrorStatusText(status);
    log.revert(database, ChangeLog::Removal::ForGood);
    return status;
}

AcDbDatabase* workingDatabase() {
    AcDbHostApplicationServices* const services = acdbHostApplicationServices();
    return services ? services->workingDatabase() : nullptr;
}

}  // namespace drafthost

using namespace drafthost;

resbuf* acdbEntGetX(const ads_name name, const resbuf* applications) {
    AcDbObjectId id;
    if (const auto status = acdbGetObjectId(id, name); status != Acad::eOk) {
        entityError(status);
        return nullptr;
    }
    std::vector<DxfGroup> groups = entityGroups(id);
    if (groups.empty()) {
        entityError(Acad::eWasErased);
        return nullptr;
    }
    std::wstring patterns;
    for (; applications; applications = applications->rbnext) {
        if (applications->restype != RTSTR || !applications->resval.rstring)
            continue;
        if (!patterns.empty())
            patterns += L',';
        patterns += applications->resval.rstring;
    }
    if (patterns.empty())
        return listOfGroups(groups);
    std::vector<DxfGroup> xdata = selectExtendedData(ObjectImp::of(id.stub()->object).state->xdata, patterns);
    if (!xdata.empty())
        groups.push_back({-3, std::wstring()});
    groups.insert(groups.end(), std::make_move_iterator(xdata.begin()), std::make_move_iterator(xdata.end()));
    return listOfGroups(groups);
}

resbuf* acdbEntGet(const ads_name name) {
    return acdbEntGetX(name, nullptr);
}
