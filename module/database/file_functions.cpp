#include "module/database/file_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"

#include <windows.h>

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <optional>

namespace tessary {

namespace {

// A file opened for reading through the C library, which others may read and write meanwhile.
class ReadableFile {
public:
    explicit ReadableFile(const std::wstring& path) {
        if (_wsopen_s(&descriptor_, path.c_str(), _O_RDONLY, _SH_DENYNO, _S_IREAD) != 0) {
            descriptor_ = notOpen;
        }
    }
    ~ReadableFile() {
        if (isOpen()) {
            _close(descriptor_);
        }
    }
    ReadableFile(const ReadableFile&) = delete;
    ReadableFile& operator=(const ReadableFile&) = delete;

    bool isOpen() const { return descriptor_ != notOpen; }

    // In whole seconds since 1970: copies made within the same second count as equal.
    std::optional<__time64_t> modificationTime() const {
        struct _stat64 status = {};
        if (_fstat64(descriptor_, &status) != 0) {
            return std::nullopt;
        }
        return status.st_mtime;
    }

private:
    static constexpr int notOpen = -1;
    int descriptor_ = notOpen;
};

// A search for files by pattern, standing at one of them as long as it is valid.
class FileSearch {
public:
    explicit FileSearch(const std::wstring& pattern) : handle_(FindFirstFileW(pattern.c_str(), &found_)) {}
    ~FileSearch() {
        if (isValid()) {
            FindClose(handle_);
        }
    }
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;

    bool isValid() const { return handle_ != INVALID_HANDLE_VALUE; }
    const wchar_t* fileName() const { return found_.cFileName; }  // without its folder
    bool moveOn() { return FindNextFileW(handle_, &found_) != 0; }

private:
    WIN32_FIND_DATAW found_ = {};
    HANDLE handle_;
};

void returnTWhen(bool succeeded) {
    if (succeeded) {
        acedRetT();
    } else {
        acedRetNil();
    }
}

bool replaceFile(const std::wstring& source, const std::wstring& target) {
    return CopyFileW(source.c_str(), target.c_str(), FALSE) != 0;
}

// A target that does not exist is not created: programs refresh the copies that somebody has installed, and
// install none.
bool replaceOlderFile(const std::wstring& source, const std::wstring& target) {
    const ReadableFile sourceFile(source);
    const ReadableFile targetFile(target);
    if (!sourceFile.isOpen() || !targetFile.isOpen()) {
        return false;
    }
    const auto sourceTime = sourceFile.modificationTime();
    const auto targetTime = targetFile.modificationTime();
    return sourceTime && targetTime && *targetTime < *sourceTime && replaceFile(source, target);
}

using PathOperation = bool (*)(const std::wstring& path);
using TwoPathsOperation = bool (*)(const std::wstring& source, const std::wstring& target);

// invalid: the status of a call whose argument is missing or no text.
HandlerStatus runOnPath(PathOperation operation, HandlerStatus invalid) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring path;
    if (!readString(cursor, path)) {
        return invalid;
    }
    returnTWhen(operation(path));
    return HandlerStatus::success;
}

// missing: the status of a call with fewer than two arguments.
HandlerStatus runOnTwoPaths(TwoPathsOperation operation, HandlerStatus missing) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor || !cursor->rbnext) {
        return missing;
    }
    std::wstring source;
    std::wstring target;
    if (!readString(cursor, source) || !readString(cursor, target)) {
        return HandlerStatus::wrongType;
    }
    returnTWhen(operation(source, target));
    return HandlerStatus::success;
}

}  // namespace

HandlerStatus makeFolder() {
    return runOnPath([](const std::wstring& path) { return _wmkdir(path.c_str()) == 0; },
                     HandlerStatus::wrongType);
}

HandlerStatus removeFolder() {
    return runOnPath([](const std::wstring& path) { return _wrmdir(path.c_str()) == 0; },
                     HandlerStatus::wrongType);
}

// Programs hand on a file name that may be nil, so that is no error here, nor in listFiles.
HandlerStatus deleteFile() {
    return runOnPath([](const std::wstring& path) { return DeleteFileW(path.c_str()) != 0; },
                     HandlerStatus::success);
}

HandlerStatus listFiles() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring pattern;
    if (!readString(cursor, pattern)) {
        return HandlerStatus::success;
    }
    FileSearch search(pattern);
    if (!search.isValid()) {
        return HandlerStatus::success;
    }
    ResultList names;
    beginResultList(names);
    do {
        addString(names, search.fileName());
    } while (search.moveOn());
    endAndReturnList(names);
    return HandlerStatus::success;
}

HandlerStatus copyFile() {
    return runOnTwoPaths(replaceFile, HandlerStatus::tooFewArguments);
}

HandlerStatus copyFileIfChanged() {
    return runOnTwoPaths(replaceOlderFile, HandlerStatus::tooFewArguments);
}

HandlerStatus moveFile() {
    const auto move = [](const std::wstring& source, const std::wstring& target) {
        return MoveFileW(source.c_str(), target.c_str()) != 0;
    };
    return runOnTwoPaths(move, HandlerStatus::wrongType);
}

}  // namespace tessary
