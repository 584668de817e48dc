#pragma once

// The records of a drawing's classes section: what a drawing says of the classes that its objects need. A
// record is kept as it was read; of a module's class that goes, a record is made, so that the drawing knows
// what may be done to the proxies. Codes: 1 DXF name, 2 class name, 3 application, 90 proxy flags, 91 number
// of objects, 280 1 when the class was away as the file was written, 281 1 for entities.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/database/database_impl.h"

namespace drafthost {

// The record of the class with that DXF name, without regard to case; null when the drawing has none.
const ClassGroups* findClassRecord(const AcDbDatabase& database, std::wstring_view dxfName);
// The flags of a record: AcRxProxyFlags together.
int proxyFlagsIn(const ClassGroups& record);
// The application that brings the class, as drafters are told of it: without the quotes it is kept in.
std::wstring applicationIn(const ClassGroups& record);

// Gives the drawing the record of a class that is here now, in the place of one it has.
void keepClassRecord(AcDbDatabase& database, const AcRxClass& cls);

// The records as a file has them now: each class once, one for every class of a module that has objects in
// the drawing, with their numbers. withCounts: the file's version has group 91 (AC1018 and later); records
// that were read with one keep it in any version.
std::vector<ClassGroups> classRecordsForFile(const AcDbDatabase& database, bool withCounts);

}  // namespace drafthost
