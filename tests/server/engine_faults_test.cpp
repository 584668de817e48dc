// A file system that fails at one call, at every call in turn: after each failure the database opens and
// holds either what it held before or what it should hold now.

#include "tests/server/engine_fixture.h"

#include "sqlite3.h"

#include <cstring>

namespace tessary::server {

namespace {

// The calls that are left before they begin to fail; negative: never.
int callsLeft = -1;

bool fails() {
    if (callsLeft < 0)
        return false;
    if (callsLeft == 0)
        return true;
    --callsLeft;
    return false;
}

// SQLite's own file lies behind this one, in the same allocation.
struct FaultyFile {
    sqlite3_file base;
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* realOf(sqlite3_file* file) {
    return reinterpret_cast<FaultyFile*>(file)->real();
}

int closeFile(sqlite3_file* file) {
    return realOf(file)->pMethods->xClose(realOf(file));
}
int readFile(sqlite3_file* file, void* data, int size, sqlite3_int64 offset) {
    return fails() ? SQLITE_IOERR_READ : realOf(file)->pMethods->xRead(realOf(file), data, size, offset);
}
int writeFile(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    if (!fails())
        return realOf(file)->pMethods->xWrite(realOf(file), data, size, offset);
    // Half of it reaches the disk.
    realOf(file)->pMethods->xWrite(realOf(file), data, size / 2, offset);
    return callsLeft % 2 == 0 ? SQLITE_IOERR_WRITE : SQLITE_FULL;
}
int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    return fails() ? SQLITE_IOERR_TRUNCATE : realOf(file)->pMethods->xTruncate(realOf(file), size);
}
int syncFile(sqlite3_file* file, int flags) {
    return fails() ? SQLITE_IOERR_FSYNC : realOf(file)->pMethods->xSync(realOf(file), flags);
}
int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    return fails() ? SQLITE_IOERR_FSTAT : realOf(file)->pMethods->xFileSize(realOf(file), size);
}
int lockFile(sqlite3_file* file, int level) {
    return fails() ? SQLITE_IOERR_LOCK : realOf(file)->pMethods->xLock(realOf(file), level);
}
int unlockFile(sqlite3_file* file, int level) {
    return realOf(file)->pMethods->xUnlock(realOf(file), level);
}
int checkReserved(sqlite3_file* file, int* reserved) {
    return realOf(file)->pMethods->xCheckReservedLock(realOf(file), reserved);
}
int controlFile(sqlite3_file* file, int operation, void* argument) {
    return realOf(file)->pMethods->xFileControl(realOf(file), operation, argument);
}
int sectorSize(sqlite3_file* file) {
    return realOf(file)->pMethods->xSectorSize(realOf(file));
}
int characteristics(sqlite3_file* file) {
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

const sqlite3_io_methods faultyMethods = {1,
                                          closeFile,
                                          readFile,
                                          writeFile,
                                          truncateFile,
                                          syncFile,
                                          fileSize,
                                          lockFile,
                                          unlockFile,
                                          checkReserved,
                                          controlFile,
                                          sectorSize,
                                          characteristics,
                                          {},
                                          {},
                                          {},
                                          {},
                                          {},
                                          {}};

// While it lives all files go through it.
class FaultySystem {
public:
    FaultySystem() : real_(sqlite3_vfs_find(nullptr)), vfs_(*real_) {
        current = this;
        vfs_.zName = "faulty";
        vfs_.szOsFile = static_cast<int>(sizeof(FaultyFile)) + real_->szOsFile;
        vfs_.xOpen = open;
        vfs_.xDelete = remove;
        sqlite3_vfs_register(&vfs_, 1);
    }
    ~FaultySystem() {
        callsLeft = -1;
        sqlite3_vfs_unregister(&vfs_);
        sqlite3_vfs_register(real_, 1);
    }
    FaultySystem(const FaultySystem&) = delete;
    FaultySystem& operator=(const FaultySystem&) = delete;

private:
    static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
        std::memset(file, 0, sizeof *file);
        if (fails())
            return SQLITE_CANTOPEN;
        const int result = current->real_->xOpen(current->real_, name, realOf(file), flags, outFlags);
        if (result == SQLITE_OK)
            file->pMethods = &faultyMethods;
        return result;
    }
    static int remove(sqlite3_vfs*, const char* name, int sync) {
        return fails() ? SQLITE_IOERR_DELETE : current->real_->xDelete(current->real_, name, sync);
    }
    static inline FaultySystem* current = nullptr;
    sqlite3_vfs* real_;
    sqlite3_vfs vfs_;
};

class EngineFaults : public EngineTest {
protected:
    // Runs the change with each call failing in turn. state tells what the database holds.
    template <typename Change, typename State>
    void failEverywhere(Change change, State state) {
        const std::string saved = contentOf();
        const std::string before = state();
        int failures = 0;
        std::string after;
        for (int calls = 0;; ++calls) {
            ASSERT_LT(calls, 5000);
            int code = 0;
            {
                const FaultySystem faulty;
                database = open();
                ASSERT_TRUE(database != nullptr);
                callsLeft = calls;
                code = errorOf(change);
                database.reset();
            }
            database = open();
            ASSERT_TRUE(database != nullptr) << "after call " << calls;
            after = state();
            if (code == 0)
                break;
            ++failures;
            EXPECT_TRUE(code == 3043 || code == 3026 || code == 3051) << code << " after call " << calls;
            EXPECT_EQ(after, before) << "after call " << calls;
            if (after != before) {
                database.reset();
                std::ofstream(std::filesystem::path(path), std::ios::binary) << saved;
            }
        }
        EXPECT_NE(after, before);
        EXPECT_GT(failures, 10);
    }
    std::string contentOf() {
        std::ifstream stream(std::filesystem::path(path), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::string state() {
        std::string text = along(*order(u"T"), 1) + ";";
        for (const FieldDefinition& definition : database->table(u"T").fields)
            text += toUtf8(definition.name + u" " + typeName(definition.type)) + ",";
        return text;
    }
    EngineFaults() {
        createAndOpen();
        run(u"CREATE TABLE T (ix COUNTER PRIMARY KEY, s TEXT(20))");
        run(u"INSERT INTO T (s) VALUES ('1')");
        run(u"INSERT INTO T (s) VALUES ('2')");
    }
};

TEST_F(EngineFaults, InsertIsDoneOrNotDone) {
    const std::vector<FieldValue> fields = {{u"s", u"3"}};
    failEverywhere([&] { order(u"T")->insert(fields); }, [&] { return state(); });
}

TEST_F(EngineFaults, AChangeOfATableIsDoneOrNotDone) {
    const std::vector<FieldChange> changes = {changedTo(field(u"s", FieldType::longInteger)),
                                              changedTo(field(u"more", FieldType::memo))};
    failEverywhere([&] { database->modifyTable(u"T", changes); }, [&] { return state(); });
}

TEST_F(EngineFaults, ACompactedCopyIsThereWholeOrNotAtAll) {
    database.reset();
    for (int calls = 0;; ++calls) {
        ASSERT_LT(calls, 5000);
        int code = 0;
        {
            const FaultySystem faulty;
            callsLeft = calls;
            code = errorOf([&] { engine->compact(path, file("copy.qn")); });
        }
        if (code == 0)
            break;
        EXPECT_FALSE(std::filesystem::exists(folder / "copy.qn")) << "after call " << calls;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1)
            << "after call " << calls;
    }
    database = open(file("copy.qn"));
    EXPECT_EQ(along(*order(u"T"), 1), "1 2");
}

}  // namespace

}  // namespace tessary::server
