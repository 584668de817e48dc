#pragma once

// Extended data: groups 1000 to 1071 that applications attach to objects.

#include <span>

#include "host/api/status.h"
#include "host/database/dxf_group.h"

class AcDbDatabase;

namespace drafthost {

constexpr std::size_t kMaxExtendedData = 16383;  // bytes for one object

// Bytes that the groups count for: two for the code, and the value (a text: two for its length and two a
// character).
std::size_t extendedDataSize(std::span<const DxfGroup> groups);

// eOk; eInvalidXdata: not starting with 1001, codes outside the range, braces that do not match, texts over
// 255 characters; eRegappIdNotFound: an application that is not registered in the database.
Acad::ErrorStatus checkExtendedData(std::span<const DxfGroup> groups, const AcDbDatabase* database);

// The data of the applications named in changes replace those in data; an application with nothing behind its
// 1001 is removed.
void mergeExtendedData(std::vector<DxfGroup>& data, std::span<const DxfGroup> changes);

// The runs of applications whose name matches the patterns ("*" for all).
std::vector<DxfGroup> selectExtendedData(std::span<const DxfGroup> data, std::wstring_view patterns);

}  // namespace drafthost
