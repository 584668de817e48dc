#include "host/database/entity_recipes.h"

#include <algorithm>

#include "host/database/names.h"

namespace drafthost {
namespace {

constexpr short kPoint[] = {10};
constexpr short kTwoPoints[] = {10, 11};
constexpr short kThreePoints[] = {10, 11, 12};
constexpr short kCircle[] = {10, 40};
constexpr short kArc[] = {10, 40, 50, 51};
constexpr short kText[] = {1, 10, 40};
constexpr short kMText[] = {1, 10};
constexpr short kAttribute[] = {1, 2, 10, 40};
constexpr short kInsert[] = {2, 10};
constexpr short kEllipse[] = {10, 11, 40, 41, 42};
constexpr short kSpline[] = {70, 71};
constexpr short kLeader[] = {3, 10};
constexpr short kDimension[] = {70, 10};

constexpr EntityRecipe kRecipes[] = {
    {L"LINE", nullptr, kTwoPoints, false},
    {L"CIRCLE", nullptr, kCircle, false},
    {L"ARC", nullptr, kArc, false},
    {L"LWPOLYLINE", nullptr, kPoint, false},
    {L"TEXT", nullptr, kText, false},
    {L"MTEXT", nullptr, kMText, false},
    {L"ATTDEF", nullptr, kAttribute, false},
    {L"ATTRIB", nullptr, kAttribute, false},
    {L"INSERT", nullptr, kInsert, false},
    {L"POINT", nullptr, kPoint, false},
    {L"SOLID", L"AcDbTrace", kThreePoints, false},
    {L"TRACE", L"AcDbTrace", kThreePoints, false},
    {L"3DFACE", nullptr, kThreePoints, false},
    {L"RAY", L"AcDbRay", kTwoPoints, false},
    {L"XLINE", L"AcDbXline", kTwoPoints, false},
    {L"ELLIPSE", L"AcDbEllipse", kEllipse, false},
    {L"SPLINE", L"AcDbSpline", kSpline, false},
    {L"LEADER", L"AcDbLeader", kLeader, false},
    {L"SHAPE", L"AcDbShape", kInsert, false},
    {L"HATCH", L"AcDbHatch", kInsert, false},
    {L"DIMENSION", L"AcDbDimension", kDimension, false},
    {L"POLYLINE", L"AcDb2dPolyline", {}, true},
    {L"VERTEX", L"AcDbVertex", kPoint, false},
};

}  // namespace

const EntityRecipe* findRecipe(const std::wstring& type) {
    const auto* const found = std::ranges::find_if(
        kRecipes, [&](const EntityRecipe& recipe) { return equalNames(recipe.type, type); });
    return found == std::end(kRecipes) ? nullptr : found;
}

short missingGroup(const EntityRecipe& recipe, const std::vector<DxfGroup>& groups) {
    for (const short code : recipe.required) {
        if (std::ranges::find(groups, code, &DxfGroup::code) == groups.end())
            return code;
    }
    return 0;
}

}  // namespace drafthost
