#pragma once

#include "host/database/database_impl.h"

namespace drafthost {

// A stub with the next entity name of the process. It is never released.
AcDbStub* newStub(AcDbDatabase* database, AcDbHandle handle);

void registerDatabase(AcDbDatabase* database);
void unregisterDatabase(AcDbDatabase* database);

}  // namespace drafthost
