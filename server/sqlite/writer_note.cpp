#include "server/sqlite/writer_note.h"

#include "server/sqlite/files.h"

#include "sqlite3.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

namespace tessary::server {

namespace {

// Steps of SQLite's machine between two looks at the clock: some milliseconds.
constexpr int stepsBetweenLooks = 100'000;

std::filesystem::path noteOf(TextView database) {
    return pathOf(Text(database) + u"-writer");
}

std::string computerName() {
    const char* name = std::getenv("COMPUTERNAME");
    return name == nullptr ? "" : name;
}

std::FILE* openForWriting(const std::filesystem::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"wb");
#else
    return std::fopen(path.c_str(), "wb");
#endif
}

}  // namespace

void WriterNote::begin(sqlite3* connection, TextView path, std::chrono::milliseconds delay) {
    connection_ = connection;
    path_ = noteOf(path);
    due_ = std::chrono::steady_clock::now() + delay;
    sqlite3_progress_handler(connection, stepsBetweenLooks, lookAtClock, this);
}

void WriterNote::end() {
    if (!connection_)
        return;
    sqlite3_progress_handler(connection_, 0, nullptr, nullptr);
    connection_ = nullptr;
    if (!file_)
        return;
    file_.reset();
    std::error_code ignored;  // a note without its writer is taken away by who finds it
    std::filesystem::remove(path_, ignored);
}

// 0: SQLite goes on.
int WriterNote::lookAtClock(void* note) {
    WriterNote& own = *static_cast<WriterNote*>(note);
    if (!own.file_ && std::chrono::steady_clock::now() >= own.due_) {
        own.write();
        sqlite3_progress_handler(own.connection_, 0, nullptr, nullptr);
    }
    return 0;
}

// The file stays open as long as the change lasts: that tells it from one that a killed program has left.
// Where it cannot be written, others are not told the name.
void WriterNote::write() {
    file_.reset(openForWriting(path_));
    if (!file_)
        return;
    const std::string name = computerName();
    std::fwrite(name.data(), 1, name.size(), file_.get());
    std::fflush(file_.get());
}

Text writingComputer(TextView database) {
    const std::filesystem::path path = noteOf(database);
    std::string name;
    if (std::ifstream file(path, std::ios::binary); file)
        name.assign(std::istreambuf_iterator<char>(file), {});
    // A file that somebody has open cannot be removed, so a note that can be is nobody's any more.
    std::error_code error;
    if (std::filesystem::remove(path, error) || name.empty())
        return {};
    return toText(name);
}

}  // namespace tessary::server
