#include "host/text/font_file.h"

#include <algorithm>
#include <cstdint>
#include <fstream>

namespace drafthost::text {

namespace {

// Reads big-endian numbers at offsets; beyond the end of the file everything is zero.
class FontReader {
public:
    explicit FontReader(const std::filesystem::path& path) : file_(path, std::ios::binary) {}

    std::uint32_t number(std::uint64_t offset, int bytes) {
        file_.clear();
        file_.seekg(static_cast<std::streamoff>(offset));
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i) {
            const int byte = file_.get();
            value =
                value << 8 | static_cast<std::uint32_t>(byte == std::ifstream::traits_type::eof() ? 0 : byte);
        }
        return value;
    }
    std::uint32_t u16(std::uint64_t offset) { return number(offset, 2); }
    std::uint32_t u32(std::uint64_t offset) { return number(offset, 4); }

    // Offset of the table with that four-letter tag in the font that starts at the offset; 0 when it has
    // none.
    std::uint64_t table(std::uint64_t font, std::uint32_t tag) {
        constexpr std::uint64_t kHeader = 12, kEntry = 16;
        const std::uint32_t count = u16(font + 4);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint64_t entry = font + kHeader + kEntry * i;
            if (u32(entry) == tag) {
                return u32(entry + 8);
            }
        }
        return 0;
    }

private:
    std::ifstream file_;
};

constexpr std::uint32_t tag(const char (&letters)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | static_cast<unsigned char>(letters[i]);
    }
    return value;
}

// The family name (name 1) in the UTF-16 form that files for Windows hold.
std::wstring familyName(FontReader& font, std::uint64_t names) {
    constexpr std::uint32_t kWindows = 3, kFamily = 1, kLongestName = 512;
    const std::uint32_t count = font.u16(names + 2);
    const std::uint64_t texts = names + font.u16(names + 4);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t record = names + 6 + 12 * i;
        if (font.u16(record) != kWindows || font.u16(record + 6) != kFamily) {
            continue;
        }
        const std::uint32_t bytes = std::min(font.u16(record + 8), kLongestName);
        const std::uint64_t start = texts + font.u16(record + 10);
        std::wstring name;
        for (std::uint32_t at = 0; at + 1 < bytes; at += 2) {
            name.push_back(static_cast<wchar_t>(font.u16(start + at)));
        }
        return name;
    }
    return {};
}

}  // namespace

std::optional<TextFont> readFontFile(const std::filesystem::path& path) {
    FontReader file(path);
    const std::uint64_t font = file.u32(0) == tag("ttcf") ? file.u32(12) : 0;
    const std::uint64_t names = file.table(font, tag("name"));
    TextFont face;
    face.family = names ? familyName(file, names) : std::wstring();
    if (face.family.empty()) {
        return std::nullopt;
    }
    if (const std::uint64_t head = file.table(font, tag("head"))) {
        constexpr std::uint64_t kStyleOffset = 44;
        const std::uint32_t style = file.u16(head + kStyleOffset);
        face.bold = (style & 1) != 0;
        face.italic = (style & 2) != 0;
    }
    return face;
}

}  // namespace drafthost::text
