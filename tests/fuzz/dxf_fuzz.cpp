// Feeds damaged DXF files to the reader:
//
//     dxf_fuzz SECONDS SEED FILE...
//
// Takes one of the files, damages it, and reads it. What can be read must be written and read again without
// error; the second time the same bytes must come out as the first time. A crash, a hang or a broken promise
// ends the program with the damaged file left in "dxf_fuzz_failure.dxf".

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "host/database/database_impl.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"

using namespace drafthost::exchange;

namespace {

constexpr const char* kFailureFile = "dxf_fuzz_failure.dxf";

// Values that have broken readers of other formats.
constexpr const char* kValues[] = {"",
                                   "0",
                                   "-1",
                                   "99999999",
                                   "1e999",
                                   "nan",
                                   "-0",
                                   "FFFFFFFFFFFFFFFF",
                                   "0",
                                   "1",
                                   "2147483647",
                                   "65535",
                                   "1e308",
                                   "-1e308",
                                   "1e-320",
                                   "\xFF\xFE",
                                   "{",
                                   "}",
                                   "SECTION",
                                   "ENDSEC",
                                   "BLOCK",
                                   "ENDBLK",
                                   "INSERT",
                                   "POLYLINE",
                                   "*Model_Space",
                                   "ATTRIB",
                                   "SEQEND",
                                   "EOF",
                                   "LAYER",
                                   "DICTIONARY",
                                   "{ACAD_REACTORS",
                                   "^"};
constexpr const char* kCodes[] = {"0",   "2",   "5",    "8",    "10",   "40",  "41",  "42",
                                  "70",  "90",  "100",  "102",  "105",  "330", "340", "350",
                                  "360", "390", "1001", "1002", "1005", "1070"};

class Damager {
public:
    explicit Damager(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

    std::string damaged(const std::string& file) {
        std::string result = file;
        for (std::size_t times = 1 + below(6); times > 0; --times)
            damageOnce(result);
        return result;
    }

private:
    void damageOnce(std::string& file) {
        if (file.empty())
            return;
        switch (below(8)) {
            case 0: file[below(file.size())] = static_cast<char>(random_()); break;
            case 1: file.resize(below(file.size())); break;
            case 2: replaceLine(file, kValues[below(std::size(kValues))], 1); break;
            case 3: replaceLine(file, kCodes[below(std::size(kCodes))], 0); break;
            case 4: copyLines(file, true); break;
            case 5: copyLines(file, false); break;
            case 6: removeLines(file); break;
            default: swapValues(file); break;
        }
    }

    // A position at the start of a line; odd: 1 for a value line, 0 for a code line, if the file is
    // well-formed.
    static std::vector<std::size_t> lineStarts(const std::string& file) {
        std::vector<std::size_t> starts{0};
        for (std::size_t at = file.find('\n'); at != std::string::npos; at = file.find('\n', at + 1))
            starts.push_back(at + 1);
        return starts;
    }
    void replaceLine(std::string& file, const std::string& text, std::size_t odd) {
        const auto starts = lineStarts(file);
        const std::size_t line = below(starts.size()) / 2 * 2 + odd;
        if (line + 1 >= starts.size())
            return;
        file.replace(starts[line], starts[line + 1] - starts[line], text + "\n");
    }
    void copyLines(std::string& file, bool elsewhere) {
        const auto starts = lineStarts(file);
        if (starts.size() < 4)
            return;
        const std::size_t first = below(starts.size() - 2) / 2 * 2;
        const std::size_t last = std::min(starts.size() - 1, first + 2 + below(20) * 2);
        const std::size_t target = elsewhere ? starts[below(starts.size()) / 2 * 2] : starts[first];
        file.insert(target, file.substr(starts[first], starts[last] - starts[first]));
    }
    void removeLines(std::string& file) {
        const auto starts = lineStarts(file);
        if (starts.size() < 4)
            return;
        const std::size_t first = below(starts.size() - 2) / 2 * 2;
        const std::size_t last = std::min(starts.size() - 1, first + 2 + below(10) * 2);
        file.erase(starts[first], starts[last] - starts[first]);
    }
    // Puts the value of one line in the place of another: handles then point to wrong objects, names to wrong
    // records.
    void swapValues(std::string& file) {
        const auto starts = lineStarts(file);
        const std::size_t from = below(starts.size()) / 2 * 2 + 1;
        if (from + 1 >= starts.size())
            return;
        std::string value = file.substr(starts[from], starts[from + 1] - starts[from]);
        while (!value.empty() && (value.back() == '\n' || value.back() == '\r'))
            value.pop_back();
        replaceLine(file, value, 1);
    }

    std::mt19937 random_;
};

std::string contents(const char* name) {
    std::ifstream stream(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

// Reads the bytes and writes them anew; false when they cannot be read.
bool rewritten(std::string& bytes, const char*& problem) {
    AcDbDatabase database(false, true);
    if (readDxfBytes(database, bytes, L"").status == Acad::eOk) {
        bytes = dxfBytes(database);
        return true;
    }
    if (!database.impl().stubs.empty())
        problem = "a failed reading left objects behind";
    return false;
}

// What is wrong, or null.
const char* check(std::string bytes, bool& readable) {
    const char* problem = nullptr;
    readable = rewritten(bytes, problem);
    if (!readable)
        return problem;
    // Groups that stand twice in damaged data find their place when they are read for the second time.
    if (!rewritten(bytes, problem))
        return "what was written cannot be read";
    const std::string settled = bytes;
    if (!rewritten(bytes, problem))
        return "what was written twice cannot be read";
    return bytes == settled ? nullptr : "the output differs from one time to the next";
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 4) {
        std::fprintf(stderr, "usage: dxf_fuzz SECONDS SEED FILE...\n");
        return 2;
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(arguments[1]));
    Damager damager(static_cast<unsigned>(std::atoi(arguments[2])));
    std::vector<std::string> files;
    for (int i = 3; i < count; ++i)
        files.push_back(contents(arguments[i]));

    std::size_t runs = 0;
    std::size_t readable = 0;
    while (std::chrono::steady_clock::now() < end) {
        const std::string bytes = damager.damaged(files[damager.below(files.size())]);
        // Written first, so that it is there when the reader crashes.
        std::ofstream(kFailureFile, std::ios::binary) << bytes;
        bool wasReadable = false;
        if (const char* const problem = check(bytes, wasReadable)) {
            std::printf("run %zu: %s; see %s\n", runs, problem, kFailureFile);
            return 1;
        }
        ++runs;
        readable += wasReadable ? 1 : 0;
    }
    std::remove(kFailureFile);
    std::printf("%zu damaged files, %zu of them readable\n", runs, readable);
    return 0;
}
