#pragma once

// The database files as files: what is there, whether it is ours, and putting a new one in its place.

#include "server/values/error.h"

#include <filesystem>

namespace tessary::server {

// "application_id" of SQLite's header in our files.
inline constexpr std::uint32_t applicationId = 0x54734442;  // "TsDB"

std::filesystem::path pathOf(TextView path);
Text textOfPath(const std::filesystem::path& path);

// Throws fileNotFound (3024), pathNotValid (3044), cannotOpen (3051) for a folder, notADatabase (3343).
void requireDatabaseFile(TextView path);
// Throws databaseExists (3204), pathNotValid (3044).
void requireNewFile(TextView path);

// A name beside the target that no file has.
std::filesystem::path temporaryBeside(TextView target);

// Deletes a file, and SQLite's journal of it, when the scope is left.
class TemporaryFile {
public:
    explicit TemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    Text text() const { return textOfPath(path_); }
    // Gives the file its final name. Throws databaseExists (3204) when somebody else has made one meanwhile.
    void moveTo(TextView target);

private:
    std::filesystem::path path_;
};

}  // namespace tessary::server
