#include "host/exchange/file_replace.h"

#include <cstdio>
#include <memory>

#include "host/exchange/file_handle.h"

#if defined(_WIN32)
#include <windows.h>

#include <io.h>
#else
#include <unistd.h>
#endif

namespace drafthost::exchange {
namespace {

namespace fs = std::filesystem;

// Removes the file at the end unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(fs::path path) : path_(std::move(path)) {}
    ~TemporaryFile() {
        std::error_code ignored;  // there is nothing more to be done about a file that cannot be removed
        if (!renamed_)
            fs::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const fs::path& path() const { return path_; }
    bool renameTo(const fs::path& target);

private:
    fs::path path_;
    bool renamed_ = false;
};

#if defined(_WIN32)
unsigned long processNumber() {
    return GetCurrentProcessId();
}
File create(const fs::path& path) {
    return File(_wfopen(path.c_str(), L"wb"));
}
bool flushToDisk(std::FILE* file) {
    return std::fflush(file) == 0 && _commit(_fileno(file)) == 0;
}
bool TemporaryFile::renameTo(const fs::path& target) {
    return renamed_ = MoveFileExW(path_.c_str(), target.c_str(),
                                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}
#else
unsigned long processNumber() {
    return static_cast<unsigned long>(getpid());
}
File create(const fs::path& path) {
    return File(std::fopen(path.c_str(), "wb"));
}
bool flushToDisk(std::FILE* file) {
    return std::fflush(file) == 0 && fsync(fileno(file)) == 0;
}
bool TemporaryFile::renameTo(const fs::path& target) {
    return renamed_ = std::rename(path_.c_str(), target.c_str()) == 0;
}
#endif

// Renaming over a write-protected file may succeed all the same, depending on the file system.
bool isWriteProtected(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

}  // namespace

Acad::ErrorStatus replaceFile(const fs::path& target, std::string_view bytes) {
    std::error_code error;
    const fs::path full = fs::absolute(target, error);
    if (error || !full.has_filename())
        return Acad::eFileAccessErr;
    if (!fs::is_directory(full.parent_path(), error))
        return Acad::eFileNotFound;
    if (fs::is_directory(full, error) || isWriteProtected(full))
        return Acad::eFileAccessErr;

    fs::path name = full.filename();
    name += "." + std::to_string(processNumber()) + ".tmp";
    File file = create(full.parent_path() / name);
    if (!file)
        return Acad::eFileAccessErr;
    TemporaryFile temporary(full.parent_path() / name);
    const bool written =
        std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() && flushToDisk(file.get());
    const bool closed = std::fclose(file.release()) == 0;
    if (!written || !closed)
        return Acad::eFilerError;
    return temporary.renameTo(full) ? Acad::eOk : Acad::eFileAccessErr;
}

}  // namespace drafthost::exchange
