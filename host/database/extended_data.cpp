#include "host/database/extended_data.h"

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/database/handles.h"
#include "host/database/names.h"

namespace drafthost {
namespace {

constexpr std::size_t kMaxText = 255;

std::size_t valueSize(const DxfGroup& group) {
    struct Size {
        short code;
        std::size_t operator()(const std::wstring& text) const { return 2 + 2 * text.size(); }
        std::size_t operator()(double) const { return 8; }
        std::size_t operator()(const AcGePoint3d&) const { return 24; }
        std::size_t operator()(const AcGePoint2d&) const { return 24; }
        std::size_t operator()(std::int64_t) const { return code == 1071 ? 4 : 2; }
        std::size_t operator()(const ObjectReference& reference) const {
            return 2 + 2 * handleText(reference.handle).size();
        }
        std::size_t operator()(const std::vector<std::uint8_t>& bytes) const { return 1 + bytes.size(); }
    };
    return std::visit(Size{group.code}, group.value);
}

const std::wstring* textOf(const DxfGroup& group) {
    return std::get_if<std::wstring>(&group.value);
}

bool isKnownCode(short code) {
    return (code >= 1000 && code <= 1005) || (code >= 1010 && code <= 1013) ||
           (code >= 1040 && code <= 1042) || code == 1070 || code == 1071;
}

// Follows the braces of one application's data.
bool followBrace(const DxfGroup& group, int& depth) {
    const std::wstring* const text = textOf(group);
    if (!text || (*text != L"{" && *text != L"}"))
        return false;
    depth += *text == L"{" ? 1 : -1;
    return depth >= 0;
}

Acad::ErrorStatus checkGroup(const DxfGroup& group, const AcDbDatabase* database, int& depth) {
    if (!isKnownCode(group.code) || !hasFiniteValue(group))
        return Acad::eInvalidXdata;
    const std::wstring* const text = textOf(group);
    if (text && text->size() > kMaxText)
        return Acad::eInvalidXdata;
    if (group.code == 1002)
        return followBrace(group, depth) ? Acad::eOk : Acad::eInvalidXdata;
    if (group.code != 1001)
        return Acad::eOk;
    if (depth != 0 || !text || text->empty())
        return Acad::eInvalidXdata;
    return findRecord(database, TableIndex::RegApp, *text).isNull() ? Acad::eRegappIdNotFound : Acad::eOk;
}

using Groups = std::span<const DxfGroup>;

// End of the run that begins at the index with an application's name.
std::size_t runEnd(Groups data, std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < data.size() && data[end].code != 1001)
        ++end;
    return end;
}

void removeApplication(std::vector<DxfGroup>& data, const std::wstring& application) {
    for (std::size_t begin = 0; begin < data.size();) {
        const std::size_t end = runEnd(data, begin);
        const std::wstring* const name = textOf(data[begin]);
        if (name && equalNames(*name, application)) {
            data.erase(data.begin() + static_cast<std::ptrdiff_t>(begin),
                       data.begin() + static_cast<std::ptrdiff_t>(end));
        } else {
            begin = end;
        }
    }
}

resbuf* toList(const std::vector<DxfGroup>& groups) {
    resbuf* first = nullptr;
    resbuf** end = &first;
    for (const DxfGroup& group : groups) {
        *end = toResbuf(group, true);
        if (!*end)
            break;
        end = &(*end)->rbnext;
    }
    return first;
}

}  // namespace

std::size_t extendedDataSize(Groups groups) {
    std::size_t size = 0;
    for (const DxfGroup& group : groups)
        size += 2 + valueSize(group);
    return size;
}

Acad::ErrorStatus checkExtendedData(Groups groups, const AcDbDatabase* database) {
    if (groups.empty() || groups.front().code != 1001)
        return Acad::eInvalidXdata;
    int depth = 0;
    for (const DxfGroup& group : groups) {
        if (const auto status = checkGroup(group, database, depth); status != Acad::eOk)
            return status;
    }
    return depth == 0 ? Acad::eOk : Acad::eInvalidXdata;
}

void mergeExtendedData(std::vector<DxfGroup>& data, Groups changes) {
    for (std::size_t begin = 0; begin < changes.size();) {
        const std::size_t end = runEnd(changes, begin);
        if (const std::wstring* const name = textOf(changes[begin]))
            removeApplication(data, *name);
        if (end - begin > 1) {
            data.insert(data.end(), changes.begin() + static_cast<std::ptrdiff_t>(begin),
                        changes.begin() + static_cast<std::ptrdiff_t>(end));
        }
        begin = end;
    }
}

std::vector<DxfGroup> selectExtendedData(Groups data, std::wstring_view patterns) {
    std::vector<DxfGroup> selected;
    for (std::size_t begin = 0; begin < data.size();) {
        const std::size_t end = runEnd(data, begin);
        const std::wstring* const name = textOf(data[begin]);
        if (name && matchesPattern(*name, patterns)) {
            selected.insert(selected.end(), data.begin() + static_cast<std::ptrdiff_t>(begin),
                            data.begin() + static_cast<std::ptrdiff_t>(end));
        }
        begin = end;
    }
    return selected;
}

}  // namespace drafthost

using namespace drafthost;

resbuf* AcDbObject::xData(const ACHAR* application) const {
    const auto& data = ObjectImp::of(this).state->xdata;
    if (!application || !*application)
        return toList(data);
    std::vector<DxfGroup> selected;
    for (std::size_t begin = 0; begin < data.size();) {
        const std::size_t end = runEnd(data, begin);
        const std::wstring* const name = textOf(data[begin]);
        if (name && equalNames(*name, application)) {
            selected.assign(data.begin() + static_cast<std::ptrdiff_t>(begin),
                            data.begin() + static_cast<std::ptrdiff_t>(end));
        }
        begin = end;
    }
    return toList(selected);
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* data) {
    std::vector<DxfGroup> changes;
    for (; data; data = data->rbnext)
        changes.push_back(fromResbuf(*data));
    if (const auto status = checkExtendedData(changes, databaseOrWorking(*this)); status != Acad::eOk)
        return status;
    std::vector<DxfGroup> merged = imp_->state->xdata;
    mergeExtendedData(merged, changes);
    if (extendedDataSize(merged) > kMaxExtendedData)
        return Acad::eXdataSizeExceeded;
    if (!prepareWrite(this))
        return Acad::eNotOpenForWrite;
    imp_->state->xdata = std::move(merged);
    imp_->state->extendedDataChanged();
    return Acad::eOk;
}
