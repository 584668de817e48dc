#pragma once

// Where the host finds files: the drawing's folder, the support folders, the folders of the modules.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/api/database.h"
#include "host/lisp/console.h"

namespace drafthost {

class Host;

class HostServices final : public AcDbHostApplicationServices {
public:
    explicit HostServices(Host& host) : host_(host) {}
    Acad::ErrorStatus findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName,
                               AcDbDatabase* database, FindFileHint hint) override;
    AcDbDatabase* workingDatabase() const override { return workingDatabase_; }
    void setWorkingDatabase(AcDbDatabase* database) override { workingDatabase_ = database; }

    // Full path of an existing file. database: whose folder is searched; may be null.
    std::optional<std::wstring> find(std::wstring_view name, const AcDbDatabase* database) const;
    const std::vector<std::wstring>& supportFolders() const { return supportFolders_; }
    void addSupportFolder(std::wstring folder);
    // The support folders as ACADPREFIX shows them, each ended by a semicolon.
    std::wstring searchPath() const;
    void setSearchPath(std::wstring_view folders);

private:
    Host& host_;
    AcDbDatabase* workingDatabase_ = nullptr;
    std::vector<std::wstring> supportFolders_;
};

// What LISP reads: programs are searched on the support path, other files are named from the current folder.
class SupportFiles final : public lisp::FileAccess {
public:
    explicit SupportFiles(HostServices& services) : services_(services) {}
    std::optional<std::filesystem::path> resolveProgram(std::wstring_view name) override;

private:
    HostServices& services_;
};

// Full path with the platform's separators; the name itself when the platform cannot say.
std::wstring fullPath(std::wstring_view name);
bool isFile(const std::wstring& path);
bool isFolder(const std::wstring& path);
// Folder of a path, with the separator at its end; empty when it has none.
std::wstring folderOf(std::wstring_view path);

}  // namespace drafthost
