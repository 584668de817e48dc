#pragma once

// Who is in the middle of a long change. A change that takes longer than a moment leaves a note beside the
// database, "standards.qn-writer" with the name of the computer, so that others who wait in vain can say whom
// they wait for. Changes that are over at once, which is nearly all of them, write no note.

#include "server/values/value.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>

struct sqlite3;

namespace tessary::server {

// A connection's own note. It looks at the clock while SQLite works inside the change.
class WriterNote {
public:
    static constexpr std::chrono::milliseconds usualDelay{500};

    WriterNote() = default;
    ~WriterNote() { end(); }
    WriterNote(const WriterNote&) = delete;
    WriterNote& operator=(const WriterNote&) = delete;

    // The write lock has been taken; path: the database.
    void begin(sqlite3* connection, TextView path, std::chrono::milliseconds delay);
    // The change is over. Without effect when none has begun.
    void end();

private:
    static int lookAtClock(void* note);
    void write();

    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    sqlite3* connection_ = nullptr;
    std::filesystem::path path_;
    std::chrono::steady_clock::time_point due_;
    std::unique_ptr<std::FILE, Close> file_;
};

// The computer that is in the middle of a long change of the database; empty when it is not known.
Text writingComputer(TextView database);

}  // namespace tessary::server
