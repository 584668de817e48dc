// The part of the editor interface that works on selection sets.

#include "host/api/database.h"
#include "host/api/editor.h"
#include "host/documents/host.h"
#include "host/editor/selection.h"

using drafthost::Document;
using drafthost::theHost;
using drafthost::editor::SelectionSet;
using drafthost::editor::SelectRequest;

namespace {

bool isPointNode(const resbuf* node) {
    return node->restype == RTPOINT || node->restype == RT3DPOINT ||
           (node->restype >= 10 && node->restype <= 17);
}

std::vector<AcGePoint3d> pointsOf(const resbuf* list) {
    std::vector<AcGePoint3d> points;
    for (; list; list = list->rbnext) {
        const ads_real* const p = list->resval.rpoint;
        if (isPointNode(list))
            points.emplace_back(p[0], p[1], list->restype == RTPOINT ? 0 : p[2]);
    }
    return points;
}

AcGePoint3d pointAt(const void* point) {
    const auto* const p = static_cast<const ads_real*>(point);
    return {p[0], p[1], p[2]};
}

// What point1 and point2 are depends on the mode: prompts and keywords, a list of points, or points.
void takeArguments(SelectRequest& request, const void* point1, const void* point2) {
    const std::size_t colon = request.mode.find(L':');
    const std::wstring flags = colon == std::wstring::npos ? L"" : request.mode.substr(colon);
    if (flags.find(L'$') != std::wstring::npos && point1) {
        const auto* const prompts = static_cast<const ACHAR* const*>(point1);
        request.addPrompt = prompts[0] ? prompts[0] : L"";
        request.removePrompt = prompts[1] ? prompts[1] : L"";
        point1 = nullptr;
    }
    if ((flags.find(L'K') != std::wstring::npos || flags.find(L'k') != std::wstring::npos)) {
        if (point2)
            request.keywords = static_cast<const ACHAR*>(point2);
        point2 = nullptr;
    }
    std::wstring method = request.mode.substr(0, colon);
    if (method.starts_with(L"_"))
        method.erase(0, 1);
    const bool polygon = method == L"CP" || method == L"cp" || method == L"WP" || method == L"wp" ||
                         method == L"F" || method == L"f";
    if (polygon) {
        request.points = pointsOf(static_cast<const resbuf*>(point1));
        return;
    }
    if (point1)
        request.points.push_back(pointAt(point1));
    if (point2)
        request.points.push_back(pointAt(point2));
}

std::shared_ptr<SelectionSet> setOf(const ads_name name) {
    return theHost().selectionSets().find(name);
}

// The entity of a name, the null id when there is none.
AcDbObjectId idOf(const ads_name name) {
    AcDbObjectId id;
    return acdbGetObjectId(id, name) == Acad::eOk ? id : AcDbObjectId();
}

}  // namespace

int acedSSGet(const ACHAR* mode, const void* point1, const void* point2, const resbuf* filter,
              ads_name selection) {
    Document* const document = theHost().documents().current();
    if (!document || !selection)
        return RTERROR;
    ads_name_clear(selection);
    SelectRequest request;
    request.mode = mode ? mode : L"";
    takeArguments(request, point1, point2);
    std::wstring problem;
    if (!request.filter.parse(filter, problem))
        return RTERROR;
    const auto result = drafthost::editor::select(*document, request);
    if (result.status != RTNORM)
        return result.status;
    theHost().selectionSets().hold(result.set);
    drafthost::editor::SelectionSets::nameOf(*result.set, selection);
    return RTNORM;
}

int acedSSAdd(const ads_name entity, const ads_name selection, ads_name result) {
    Document* const document = theHost().documents().current();
    if (!document || !result)
        return RTERROR;
    const bool makeNew = !selection || ads_name_nil(selection);
    const auto set = makeNew ? theHost().selectionSets().make(*document) : setOf(selection);
    if (!set)
        return RTERROR;
    if (entity && !ads_name_nil(entity)) {
        const AcDbObjectId id = idOf(entity);
        if (id.isNull() || id.isErased())
            return RTERROR;
        set->add(id);
    }
    if (makeNew)
        theHost().selectionSets().hold(set);
    drafthost::editor::SelectionSets::nameOf(*set, result);
    return RTNORM;
}

int acedSSDel(const ads_name entity, const ads_name selection) {
    const auto set = setOf(selection);
    return set && set->remove(idOf(entity)) ? RTNORM : RTERROR;
}

int acedSSMemb(const ads_name entity, const ads_name selection) {
    const auto set = setOf(selection);
    return set && set->contains(idOf(entity)) ? RTNORM : RTERROR;
}

int acedSSLength(const ads_name selection, std::int32_t* length) {
    const auto set = setOf(selection);
    if (!set || !length)
        return RTERROR;
    *length = static_cast<std::int32_t>(set->members().size());
    return RTNORM;
}

int acedSSName(const ads_name selection, std::int32_t index, ads_name entity) {
    const auto set = setOf(selection);
    if (!set || index < 0 || static_cast<std::size_t>(index) >= set->members().size())
        return RTERROR;
    return acdbGetAdsName(*reinterpret_cast<ads_name*>(entity),
                          set->members()[static_cast<std::size_t>(index)]) == Acad::eOk
               ? RTNORM
               : RTERROR;
}

int acedSSFree(const ads_name selection) {
    return theHost().selectionSets().release(selection) ? RTNORM : RTERROR;
}
