#include "host/documents/host_services.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>

#include "host/database/database_impl.h"
#include "host/documents/host.h"

namespace drafthost {

namespace {

bool isAbsolute(std::wstring_view name) {
    return (name.size() > 1 && name[1] == L':') || name.starts_with(L'\\') || name.starts_with(L'/');
}

std::wstring joined(std::wstring folder, std::wstring_view name) {
    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/')
        folder += L'\\';
    return folder.append(name);
}

}  // namespace

std::wstring fullPath(std::wstring_view name) {
    const std::wstring given(name);
    std::wstring path(GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length =
        GetFullPathNameW(given.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    if (length == 0 || length >= path.size())
        return given;
    path.resize(length);
    return path;
}

bool isFile(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool isFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::wstring folderOf(std::wstring_view path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring_view::npos ? std::wstring()
                                                : std::wstring(path.substr(0, separator + 1));
}

std::optional<std::wstring> HostServices::find(std::wstring_view name, const AcDbDatabase* database) const {
    if (name.empty())
        return std::nullopt;
    const std::wstring asGiven = fullPath(name);
    if (isFile(asGiven))
        return asGiven;
    if (isAbsolute(name))
        return std::nullopt;
    std::vector<std::wstring> folders;
    if (database)
        folders.push_back(folderOf(database->impl().fileName));
    folders.insert(folders.end(), supportFolders_.begin(), supportFolders_.end());
    for (const auto& module : host_.modules().all())
        folders.push_back(folderOf(module->path));
    for (const std::wstring& folder : folders) {
        if (folder.empty())
            continue;
        const std::wstring path = fullPath(joined(folder, name));
        if (isFile(path))
            return path;
    }
    return std::nullopt;
}

Acad::ErrorStatus HostServices::findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName,
                                         AcDbDatabase* database, FindFileHint) {
    if (!pathOut || bufferLength <= 0 || !fileName)
        return Acad::eInvalidInput;
    const auto path = find(fileName, database ? database : workingDatabase_);
    if (!path)
        return Acad::eFileNotFound;
    if (path->size() >= static_cast<std::size_t>(bufferLength))
        return Acad::eInvalidInput;
    std::wmemcpy(pathOut, path->c_str(), path->size() + 1);
    return Acad::eOk;
}

void HostServices::addSupportFolder(std::wstring folder) {
    supportFolders_.push_back(fullPath(folder));
}

std::wstring HostServices::searchPath() const {
    std::wstring path;
    for (const std::wstring& folder : supportFolders_)
        path += folder + L";";
    return path;
}

void HostServices::setSearchPath(std::wstring_view folders) {
    supportFolders_.clear();
    while (!folders.empty()) {
        const std::size_t end = folders.find(L';');
        const std::wstring_view folder = folders.substr(0, end);
        if (!folder.empty())
            addSupportFolder(std::wstring(folder));
        folders.remove_prefix(end == std::wstring_view::npos ? folders.size() : end + 1);
    }
}

std::optional<std::filesystem::path> SupportFiles::resolveProgram(std::wstring_view name) {
    const AcDbDatabase* database = services_.workingDatabase();
    const std::wstring given(name);
    const std::size_t dot = given.find_last_of(L".\\/");
    const bool hasExtension = dot != std::wstring::npos && given[dot] == L'.';
    auto path = services_.find(given, database);
    if (!path && !hasExtension)
        path = services_.find(given + L".lsp", database);
    return path ? std::optional<std::filesystem::path>(*path) : std::nullopt;
}

}  // namespace drafthost

AcDbHostApplicationServices* acdbHostApplicationServices() {
    return &drafthost::theHost().services();
}
