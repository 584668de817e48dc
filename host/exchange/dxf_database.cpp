// The database's own entry points to DXF files.

#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"

Acad::ErrorStatus AcDbDatabase::readDxfFile(const ACHAR* fileName, ACHAR** message) {
    if (message)
        *message = nullptr;
    if (!fileName || !*fileName)
        return Acad::eInvalidInput;
    const auto result = drafthost::exchange::readDxf(*this, fileName);
    if (message && result.status != Acad::eOk)
        acutNewString(result.message.c_str(), *message);
    return result.status;
}

Acad::ErrorStatus AcDbDatabase::dxfOut(const ACHAR* fileName) {
    if (!fileName || !*fileName)
        return Acad::eInvalidInput;
    return drafthost::exchange::writeDxf(*this, fileName);
}
