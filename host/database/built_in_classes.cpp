#include "host/database/built_in_classes.h"

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/database.h"
#include "host/api/face.h"
#include "host/api/point.h"
#include "host/api/text_entities.h"
#include "host/database/sequence_entities.h"
#include "host/database/unknown_objects.h"

namespace drafthost {

std::span<const ClassDescriptor> builtInClasses() {
    static constexpr ClassDescriptor kClasses[] = {
        &AcRxObject::desc,
        &AcGiDrawable::desc,
        &AcDbDatabase::desc,
        &AcDbObject::desc,
        &AcDbEntity::desc,
        &AcDbCurve::desc,
        &AcDbLine::desc,
        &AcDbCircle::desc,
        &AcDbArc::desc,
        &AcDbPolyline::desc,
        &AcDbPoint::desc,
        &AcDbFace::desc,
        &AcDbText::desc,
        &AcDbAttributeDefinition::desc,
        &AcDbAttribute::desc,
        &AcDbMText::desc,
        &AcDbBlockReference::desc,
        &AcDbBlockBegin::desc,
        &AcDbBlockEnd::desc,
        &AcDbSequenceEnd::desc,
        &AcDbUnknownEntity::desc,
        &AcDbUnknownObject::desc,
        &AcDbDictionary::desc,
        &AcDbSymbolTable::desc,
        &AcDbBlockTable::desc,
        &AcDbLayerTable::desc,
        &AcDbLinetypeTable::desc,
        &AcDbTextStyleTable::desc,
        &AcDbRegAppTable::desc,
        &AcDbDimStyleTable::desc,
        &AcDbViewTable::desc,
        &AcDbUCSTable::desc,
        &AcDbViewportTable::desc,
        &AcDbSymbolTableRecord::desc,
        &AcDbBlockTableRecord::desc,
        &AcDbLayerTableRecord::desc,
        &AcDbLinetypeTableRecord::desc,
        &AcDbTextStyleTableRecord::desc,
        &AcDbRegAppTableRecord::desc,
        &AcDbPlainTableRecord::desc,
    };
    return kClasses;
}

}  // namespace drafthost
