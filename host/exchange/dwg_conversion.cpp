#include "host/exchange/dwg_conversion.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace drafthost::exchange {
namespace {

struct DwgVersion {
    std::string_view mark, name;
    bool readable;
};
constexpr std::array<DwgVersion, 17> kVersions = {{{"MC0.0", "1.1", false},
                                                   {"AC1.2", "1.2", false},
                                                   {"AC1.40", "1.4", false},
                                                   {"AC1.50", "2.0", false},
                                                   {"AC2.10", "2.10", false},
                                                   {"AC1002", "2.5", false},
                                                   {"AC1003", "2.6", false},
                                                   {"AC1004", "R9", false},
                                                   {"AC1006", "R10", false},
                                                   {"AC1009", "R11 or R12", false},
                                                   {"AC1012", "R13", true},
                                                   {"AC1014", "R14", true},
                                                   {"AC1015", "2000", true},
                                                   {"AC1018", "2004", true},
                                                   {"AC1021", "2007", true},
                                                   {"AC1024", "2010", true},
                                                   {"AC1027", "2013", true}}};
// Known, but newer than what can be read.
constexpr DwgVersion kNewest = {"AC1032", "2018", false};

constexpr std::size_t kMarkLength = 6;

const DwgVersion* find(std::string_view mark) {
    if (mark == kNewest.mark)
        return &kNewest;
    const auto found =
        std::find_if(kVersions.begin(), kVersions.end(), [&](const auto& row) { return row.mark == mark; });
    return found == kVersions.end() ? nullptr : &*found;
}

}  // namespace

std::string_view dwgVersionMark(std::string_view bytes) {
    const std::string_view mark = bytes.substr(0, kMarkLength);
    for (const DwgVersion& row : kVersions)
        if (mark.starts_with(row.mark))
            return row.mark;
    // Versions to come: four digits.
    const bool numbered = mark.size() == kMarkLength && mark.starts_with("AC1") &&
                          mark.find_first_not_of("0123456789", 2) == std::string_view::npos;
    return numbered ? mark : std::string_view();
}

std::string dwgVersionName(std::string_view mark) {
    const DwgVersion* const known = find(mark);
    return std::string(mark) + (known ? " (" + std::string(known->name) + ")" : "");
}

bool isReadableDwgVersion(std::string_view mark) {
    const DwgVersion* const known = find(mark);
    return known && known->readable;
}

bool isDwgFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return false;
    char beginning[kMarkLength] = {};
    std::ifstream(file, std::ios::binary).read(beginning, kMarkLength);
    return !dwgVersionMark({beginning, kMarkLength}).empty();
}

}  // namespace drafthost::exchange
