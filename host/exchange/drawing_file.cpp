// Reading drawing files of whatever format.

#include "host/api/database.h"

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int, ACHAR** message) {
    return readDxfFile(fileName, message);
}
