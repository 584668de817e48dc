#include "module/standards/layer_key_record.h"

#include <utility>

namespace tessary {

namespace {

enum Field : std::size_t { layer = 2 };

constexpr StandardsField fields[] = {
    {L"ixLayerKey", FieldType::number},
    {L"ixLayerSystem", FieldType::number, true},  // null: a key of the general system
    {L"ixLayer", FieldType::number},
    {L"sKey", FieldType::text},
    {L"ixMasterDatabase", FieldType::number, true},
    {L"iMasterDatabaseIndex", FieldType::number, true},
};

constexpr StandardsTable table = {L"tblLayerKey", L"ixLayerKey", fields};

}  // namespace

CTblLayerKey::CTblLayerKey(bool skipMasterLink, ConnectionPointer connection)
    : StandardsRecord(table, skipMasterLink, std::move(connection)) {}

void CTblLayerKey::setLayer(int ixLayer) {
    set(layer, ixLayer);
}

}  // namespace tessary
