#include "module/standards/layer_system_record.h"

#include <utility>

namespace tessary {

namespace {

// In the order of the list below. The five fields of each kind of duct follow each other.
enum Field : std::size_t { key, description, sortOrder, solid, prefix, suffix, hatches };
enum HatchField : std::size_t { on, type, pattern, angle, scale, hatchFields };
constexpr std::size_t ductKinds = 4;
constexpr std::size_t hatchFlexDucts = hatches + ductKinds * hatchFields;
constexpr std::size_t hatchOverhang = hatchFlexDucts + 1;

constexpr StandardsField fields[] = {
    {L"ixLayerSystem", FieldType::number},
    {L"sDescription", FieldType::text},
    {L"iSortOrder", FieldType::number},
    {L"bSolid", FieldType::yesNo},
    {L"sPrefix", FieldType::text},
    {L"sSuffix", FieldType::text},
    {L"supplyHatchOn", FieldType::yesNo},
    {L"supplyHatchType", FieldType::text},
    {L"supplyHatchPattern", FieldType::text},
    {L"supplyHatchAngle", FieldType::real},
    {L"supplyHatchScale", FieldType::real},
    {L"returnHatchOn", FieldType::yesNo},
    {L"returnHatchType", FieldType::text},
    {L"returnHatchPattern", FieldType::text},
    {L"returnHatchAngle", FieldType::real},
    {L"returnHatchScale", FieldType::real},
    {L"exhaustHatchOn", FieldType::yesNo},
    {L"exhaustHatchType", FieldType::text},
    {L"exhaustHatchPattern", FieldType::text},
    {L"exhaustHatchAngle", FieldType::real},
    {L"exhaustHatchScale", FieldType::real},
    {L"outsideHatchOn", FieldType::yesNo},
    {L"outsideHatchType", FieldType::text},
    {L"outsideHatchPattern", FieldType::text},
    {L"outsideHatchAngle", FieldType::real},
    {L"outsideHatchScale", FieldType::real},
    {L"bHatchFlexDucts", FieldType::yesNo},
    {L"dHatchOverhang", FieldType::real},
    {L"ixMasterDatabase", FieldType::number, true},
    {L"iMasterDatabaseIndex", FieldType::number, true},
};
static_assert(std::size(fields) == hatchOverhang + 3);

constexpr StandardsTable table = {L"tblLayerSystem", L"ixLayerSystem", fields};

// The first of a kind's five fields.
std::size_t hatchOf(HatchedDuct duct) {
    return hatches + static_cast<std::size_t>(duct) * hatchFields;
}

}  // namespace

CTblLayerSystem::CTblLayerSystem(bool skipMasterLink, ConnectionPointer connection)
    : StandardsRecord(table, skipMasterLink, std::move(connection)) {}

int CTblLayerSystem::ixLayerSystem() const {
    return value<int>(key);
}

const std::wstring& CTblLayerSystem::sDescription() const {
    return value<std::wstring>(description);
}

int CTblLayerSystem::iSortOrder() const {
    return value<int>(sortOrder);
}

bool CTblLayerSystem::bSolid() const {
    return value<bool>(solid);
}

const std::wstring& CTblLayerSystem::sPrefix() const {
    return value<std::wstring>(prefix);
}

const std::wstring& CTblLayerSystem::sSuffix() const {
    return value<std::wstring>(suffix);
}

DuctHatch CTblLayerSystem::hatch(HatchedDuct duct) const {
    const std::size_t first = hatchOf(duct);
    return {.on = value<bool>(first + on),
            .type = value<std::wstring>(first + type),
            .pattern = value<std::wstring>(first + pattern),
            .angle = value<double>(first + angle),
            .scale = value<double>(first + scale)};
}

bool CTblLayerSystem::bHatchFlexDucts() const {
    return value<bool>(hatchFlexDucts);
}

double CTblLayerSystem::dHatchOverhang() const {
    return value<double>(hatchOverhang);
}

void CTblLayerSystem::setDescription(const std::wstring& text) {
    set(description, text);
}

void CTblLayerSystem::setSortOrder(int position) {
    set(sortOrder, position);
}

void CTblLayerSystem::setSolid(bool isSolid) {
    set(solid, isSolid);
}

void CTblLayerSystem::setPrefix(const std::wstring& text) {
    set(prefix, text);
}

void CTblLayerSystem::setSuffix(const std::wstring& text) {
    set(suffix, text);
}

void CTblLayerSystem::setHatch(HatchedDuct duct, const DuctHatch& hatch) {
    const std::size_t first = hatchOf(duct);
    set(first + on, hatch.on);
    set(first + type, hatch.type);
    set(first + pattern, hatch.pattern);
    set(first + angle, hatch.angle);
    set(first + scale, hatch.scale);
}

void CTblLayerSystem::setHatchFlexDucts(bool hatched) {
    set(hatchFlexDucts, hatched);
}

void CTblLayerSystem::setHatchOverhang(double distance) {
    set(hatchOverhang, distance);
}

}  // namespace tessary
