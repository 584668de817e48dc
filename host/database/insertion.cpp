// Insertion of whole drawings as block definitions.

#include "host/api/database.h"

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& id, const ACHAR*, AcDbDatabase*, bool,
                                       AcDb::DuplicateRecordCloning) {
    id = AcDbObjectId();
    return Acad::eNotApplicable;
}
