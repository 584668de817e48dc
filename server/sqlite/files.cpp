#include "server/sqlite/files.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>

namespace tessary::server {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view sqliteMagic("SQLite format 3\0", 16);
constexpr std::size_t headerSize = 100;
constexpr std::size_t applicationIdOffset = 68;

DatabaseError fileError(ErrorCode code, TextView before, TextView path, TextView after) {
    return {code, Text(before) + u"'" + Text(path) + u"'" + Text(after)};
}

[[noreturn]] void throwExists(TextView path) {
    throw fileError(ErrorCode::databaseExists, u"The file ", path, u" exists already.");
}

void requireFolder(TextView path) {
    std::error_code error;
    const fs::path folder = pathOf(path).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error))
        throw fileError(ErrorCode::pathNotValid, u"The folder of ", path, u" does not exist.");
}

// The journal that a killed program left of a database which is gone since: SQLite would roll it back into
// the next database of that name.
void removeCompanions(const fs::path& database) {
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        fs::path companion = database;
        companion += suffix;
        std::error_code ignored;
        fs::remove(companion, ignored);
    }
}

std::uint32_t bigEndian(const char* bytes) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    return number;
}

}  // namespace

fs::path pathOf(TextView path) {
    return fs::path(path.begin(), path.end());
}

Text textOfPath(const fs::path& path) {
    return path.u16string();
}

void requireDatabaseFile(TextView path) {
    if (path.empty())
        throw DatabaseError(ErrorCode::pathNotValid, u"No database file is named.");
    requireFolder(path);
    std::error_code error;
    const fs::file_status status = fs::status(pathOf(path), error);
    if (status.type() == fs::file_type::not_found)
        throw fileError(ErrorCode::fileNotFound, u"The file ", path, u" does not exist.");
    if (status.type() == fs::file_type::directory)
        throw fileError(ErrorCode::cannotOpen, u"", path, u" is a folder.");
    std::array<char, headerSize> header{};
    std::ifstream file(pathOf(path), std::ios::binary);
    if (!file)
        throw fileError(ErrorCode::cannotOpen, u"The file ", path, u" cannot be opened.");
    file.read(header.data(), header.size());
    // One of the two marks is enough: a file with only one is ours, damaged. A text file has neither.
    const bool isOurs = file.gcount() > static_cast<std::streamsize>(applicationIdOffset + 4) &&
                        bigEndian(header.data() + applicationIdOffset) == applicationId;
    const bool isHalf = file.gcount() >= static_cast<std::streamsize>(sqliteMagic.size()) &&
                        file.gcount() < static_cast<std::streamsize>(headerSize) &&
                        std::string_view(header.data(), sqliteMagic.size()) == sqliteMagic;
    if (!isOurs && !isHalf)
        throw fileError(ErrorCode::notADatabase, u"The file ", path, u" is not a database of this program.");
}

void requireNewFile(TextView path) {
    if (path.empty())
        throw DatabaseError(ErrorCode::pathNotValid, u"No database file is named.");
    requireFolder(path);
    std::error_code error;
    if (fs::exists(fs::symlink_status(pathOf(path), error)))
        throwExists(path);
}

fs::path temporaryBeside(TextView target) {
    static std::atomic<unsigned> counter{0};
    std::random_device random;
    std::error_code error;
    for (;;) {
        fs::path path = pathOf(target);
        path += "." + std::to_string(random() % 1000000) + std::to_string(counter++) + ".tmp";
        if (!fs::exists(path, error))
            return path;
    }
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;  // nothing can be done about a file that stays
    fs::remove(path_, ignored);
    removeCompanions(path_);
}

void TemporaryFile::moveTo(TextView target) {
    const fs::path destination = pathOf(target);
    std::error_code error;
    if (fs::exists(fs::symlink_status(destination, error)))
        throwExists(target);
    removeCompanions(destination);
#ifdef _WIN32
    // The C library's rename does not replace here.
    if (_wrename(path_.c_str(), destination.c_str()) == 0)
        return;
#else
    // A link does not replace, a rename would.
    fs::create_hard_link(path_, destination, error);
    if (!error)
        return;  // the destructor removes the other name
    if (!fs::exists(destination)) {
        fs::rename(path_, destination, error);  // no hard links on this file system
        if (!error)
            return;
    }
#endif
    if (fs::exists(fs::symlink_status(destination, error)))
        throwExists(target);
    throw fileError(ErrorCode::diskOrNetwork, u"The file ", target, u" cannot be written.");
}

}  // namespace tessary::server
