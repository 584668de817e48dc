// Feeds damaged DWG files to the host:
//
//     dwg_fuzz FILE RUNS SEED
//
// Cuts the file off at many places, then changes bytes of it at random. Each reading must end in a drawing
// that can be written and read again, or in an error with a message and an empty database. A crash, a hang or
// a broken promise ends the program with the damaged file left in "dwg_fuzz_failure.dwg".

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "host/database/database_impl.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"

namespace {

constexpr const char* kFile = "dwg_fuzz_failure.dwg";
constexpr std::size_t kCuts = 60;

struct Counts {
    int runs = 0, readable = 0;
    std::chrono::milliseconds longest{0};
};

// What is wrong, or null.
const char* check(bool& readable) {
    AcDbDatabase database(false, true);
    ACHAR* message = nullptr;
    const Acad::ErrorStatus status =
        database.readDwgFile(std::filesystem::path(kFile).c_str(), AcDb::kDenyNone, &message);
    const bool told = message && *message;
    acutDelString(message);
    readable = status == Acad::eOk;
    if (!readable) {
        if (!told)
            return "a failed reading gives no reason";
        return database.impl().stubs.empty() ? nullptr : "a failed reading left objects behind";
    }
    AcDbDatabase again(false, true);
    const bool same =
        drafthost::exchange::readDxfBytes(again, drafthost::exchange::dxfBytes(database), L"").status ==
        Acad::eOk;
    return same ? nullptr : "what was read cannot be written and read again";
}

bool run(const std::string& bytes, Counts& counts) {
    std::ofstream(kFile, std::ios::binary) << bytes;
    const auto begin = std::chrono::steady_clock::now();
    bool readable = false;
    if (const char* const problem = check(readable)) {
        std::printf("run %d: %s; see %s\n", counts.runs, problem, kFile);
        return false;
    }
    const auto end = std::chrono::steady_clock::now();
    counts.longest =
        std::max(counts.longest, std::chrono::duration_cast<std::chrono::milliseconds>(end - begin));
    ++counts.runs;
    counts.readable += readable ? 1 : 0;
    return true;
}

std::string changed(std::string bytes, std::mt19937& random) {
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (std::size_t times = 1 + below(4); times > 0; --times) {
        const std::size_t at = below(bytes.size());
        const std::size_t length = std::min(bytes.size() - at, 1 + below(4));
        const bool same = below(3) == 0;
        for (std::size_t i = 0; i < length; ++i)
            bytes[at + i] = same ? '\xFF' : static_cast<char>(random());
    }
    return bytes;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::fprintf(stderr, "usage: dwg_fuzz FILE RUNS SEED\n");
        return 2;
    }
    std::ifstream stream(arguments[1], std::ios::binary);
    const std::string file(std::istreambuf_iterator<char>(stream), {});
    std::mt19937 random(static_cast<unsigned>(std::atoi(arguments[3])));

    Counts counts;
    for (std::size_t cut = 0; cut < kCuts; ++cut)
        if (!run(file.substr(0, file.size() * cut / kCuts), counts))
            return 1;
    for (int left = std::atoi(arguments[2]); left > 0; --left)
        if (!run(changed(file, random), counts))
            return 1;
    std::remove(kFile);
    std::printf("%d damaged files, %d of them readable, the slowest in %lld ms\n", counts.runs,
                counts.readable, static_cast<long long>(counts.longest.count()));
    return counts.readable < counts.runs ? 0 : 1;
}
