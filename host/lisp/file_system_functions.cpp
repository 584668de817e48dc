// Files and folders as a whole, and their names.

#include "host/lisp/characters.h"
#include "host/lisp/language_functions.h"
#include "host/lisp/wildcard.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

namespace drafthost::lisp {

namespace {

namespace fs = std::filesystem;

fs::path pathArgument(Interpreter& interpreter, Arguments arguments, std::size_t index) {
    return interpreter.files().resolvePath(arguments.string(index));
}

// Answers the number of bytes copied. With a third argument the source is appended to an existing target.
Value copyFile(Interpreter& interpreter, Arguments arguments) {
    const fs::path source = pathArgument(interpreter, arguments, 0);
    const fs::path target = pathArgument(interpreter, arguments, 1);
    std::error_code failure;
    const auto size = fs::file_size(source, failure);
    if (failure || (!arguments.has(2) && fs::exists(target, failure))) {
        return Value();
    }
    const bool copied = arguments.has(2) ? interpreter.files().append(source, target)
                                         : fs::copy_file(source, target, failure);
    return copied && !failure ? Value::integer(static_cast<std::int32_t>(size)) : Value();
}

Value deleteFile(Interpreter& interpreter, Arguments arguments) {
    const fs::path path = pathArgument(interpreter, arguments, 0);
    std::error_code failure;
    const bool removed = fs::is_regular_file(path, failure) && fs::remove(path, failure);
    return interpreter.boolean(removed && !failure);
}

Value renameFile(Interpreter& interpreter, Arguments arguments) {
    const fs::path target = pathArgument(interpreter, arguments, 1);
    std::error_code failure;
    if (fs::exists(target, failure)) {
        return Value();
    }
    fs::rename(pathArgument(interpreter, arguments, 0), target, failure);
    return interpreter.boolean(!failure);
}

// 0 for a folder, a real beyond the integers
Value fileSize(Interpreter& interpreter, Arguments arguments) {
    const fs::path path = pathArgument(interpreter, arguments, 0);
    std::error_code failure;
    if (fs::is_directory(path, failure)) {
        return Value::integer(0);
    }
    const auto size = fs::file_size(path, failure);
    if (failure) {
        return Value();
    }
    const bool fits = size <= static_cast<std::uintmax_t>(std::numeric_limits<std::int32_t>::max());
    return fits ? Value::integer(static_cast<std::int32_t>(size)) : Value::real(static_cast<double>(size));
}

// (year month weekday day hour minute second thousandth) of the last change, local time; weekday 0 is Sunday
Value fileTime(Interpreter& interpreter, Arguments arguments) {
    std::error_code failure;
    const auto changed = fs::last_write_time(pathArgument(interpreter, arguments, 0), failure);
    if (failure) {
        return Value();
    }
    using namespace std::chrono;
    const auto moment =
        time_point_cast<milliseconds>(system_clock::now() + (changed - fs::file_time_type::clock::now()));
    const std::time_t seconds = system_clock::to_time_t(moment);
    const std::tm* const local = std::localtime(&seconds);
    if (!local) {
        return Value();
    }
    ListBuilder parts(interpreter);
    for (const int number :
         {local->tm_year + 1900, local->tm_mon + 1, local->tm_wday, local->tm_mday, local->tm_hour,
          local->tm_min, local->tm_sec, static_cast<int>(moment.time_since_epoch().count() % 1000)}) {
        parts.append(Value::integer(number));
    }
    return parts.list();
}

Value isDirectory(Interpreter& interpreter, Arguments arguments) {
    std::error_code failure;
    return interpreter.boolean(fs::is_directory(pathArgument(interpreter, arguments, 0), failure));
}

Value makeDirectory(Interpreter& interpreter, Arguments arguments) {
    std::error_code failure;
    return interpreter.boolean(fs::create_directory(pathArgument(interpreter, arguments, 0), failure) &&
                               !failure);
}

bool wantedEntry(const fs::directory_entry& entry, int kind) {
    std::error_code failure;
    const bool isFolder = entry.is_directory(failure);
    return kind == 0 || (kind < 0) == isFolder;
}

// kind -1: folders only, 0: all, 1: files only. Names sorted, without their folder.
Value directoryFiles(Interpreter& interpreter, Arguments arguments) {
    const fs::path folder = interpreter.files().resolvePath(arguments.stringOr(0, L"."));
    const std::wstring pattern = toUpper(arguments.stringOr(1, L"*"));
    const bool all = pattern == L"*.*" || pattern == L"*";
    const int kind = arguments.integerOr(2, 0);
    std::error_code failure;
    std::vector<std::wstring> names;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::wstring name = entry->path().filename().wstring();
        if (wantedEntry(*entry, kind) && (all || matchesFilePattern(toUpper(name), pattern))) {
            names.push_back(std::move(name));
        }
    }
    std::ranges::sort(names);
    ListBuilder result(interpreter);
    for (const std::wstring& name : names) {
        result.append(interpreter.string(name));
    }
    return result.list();
}

// --- names -------------------------------------------------------------------------------------------

struct NameParts {
    std::wstring directory;  // with neither the last separator, except that of a drive's root
    std::wstring base;
    std::wstring extension;  // with the dot
};

NameParts split(const std::wstring& name) {
    NameParts parts;
    const std::size_t separator = name.find_last_of(L"\\/:");
    const std::size_t start = separator == std::wstring::npos ? 0 : separator + 1;
    if (start > 0) {
        const bool keepSeparator = name[separator] == L':' || start == 1 || name[separator - 1] == L':';
        parts.directory = name.substr(0, keepSeparator ? start : separator);
    }
    const std::size_t dot = name.rfind(L'.');
    const bool hasExtension = dot != std::wstring::npos && dot >= start;
    parts.base = name.substr(start, hasExtension ? dot - start : std::wstring::npos);
    parts.extension = hasExtension ? name.substr(dot) : std::wstring();
    return parts;
}

Value baseName(Interpreter& interpreter, Arguments arguments) {
    return interpreter.string(split(arguments.string(0)).base);
}

Value directoryName(Interpreter& interpreter, Arguments arguments) {
    return interpreter.string(split(arguments.string(0)).directory);
}

Value extensionOf(Interpreter& interpreter, Arguments arguments) {
    const std::wstring extension = split(arguments.string(0)).extension;
    return extension.empty() ? Value() : interpreter.string(extension);
}

// A name of a file that does not exist: pattern, a number, extension. The file is not made.
Value temporaryName(Interpreter& interpreter, Arguments arguments) {
    const NameParts pattern = split(std::wstring(arguments.stringOr(0, L"$VL~~")));
    std::error_code failure;
    fs::path folder =
        pattern.directory.empty() ? fs::temp_directory_path(failure) : fs::path(pattern.directory);
    if (arguments.has(1)) {
        folder = arguments.string(1);
    }
    const std::wstring extension(arguments.stringOr(2, pattern.extension));
    for (int number = 1;; ++number) {
        std::wstring digits = std::to_wstring(number);
        digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, L'0');
        const fs::path candidate = folder / (pattern.base + digits + extension);
        if (!fs::exists(candidate, failure)) {
            return interpreter.string(candidate.wstring());
        }
    }
}

constexpr BuiltinDefinition table[] = {
    {L"vl-directory-files", directoryFiles, 0, 3,
     L"(vl-directory-files [folder [pattern [kind]]]) -> names; kind -1 folders, 0 all, 1 files"},
    {L"vl-file-copy", copyFile, 2, 3,
     L"(vl-file-copy from to [append]) -> size; nil when it fails or to exists"},
    {L"vl-file-delete", deleteFile, 1, 1, L"(vl-file-delete name) -> T when the file was deleted"},
    {L"vl-file-directory-p", isDirectory, 1, 1, L"(vl-file-directory-p name) -> T for a folder"},
    {L"vl-file-rename", renameFile, 2, 2, L"(vl-file-rename from to) -> T when the file was renamed"},
    {L"vl-file-size", fileSize, 1, 1, L"(vl-file-size name) -> bytes; 0 for a folder, nil without the file"},
    {L"vl-file-systime", fileTime, 1, 1,
     L"(vl-file-systime name) -> (year month weekday day hour minute second ms) of the last change"},
    {L"vl-filename-base", baseName, 1, 1, L"(vl-filename-base name) -> without folder and extension"},
    {L"vl-filename-directory", directoryName, 1, 1, L"(vl-filename-directory name) -> folder part"},
    {L"vl-filename-extension", extensionOf, 1, 1,
     L"(vl-filename-extension name) -> extension with dot or nil"},
    {L"vl-filename-mktemp", temporaryName, 0, 3,
     L"(vl-filename-mktemp [pattern [folder [extension]]]) -> name of a file that does not exist"},
    {L"vl-mkdir", makeDirectory, 1, 1, L"(vl-mkdir name) -> T when the folder was made"},
};

}  // namespace

std::span<const BuiltinDefinition> fileSystemFunctions() {
    return table;
}

}  // namespace drafthost::lisp
