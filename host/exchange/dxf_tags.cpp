#include "host/exchange/dxf_tags.h"

#include <charconv>
#include <limits>

namespace drafthost::exchange {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// The binary form begins with 22 bytes: the name of its first writer, then this.
constexpr std::string_view kBinaryMark(" Binary DXF\r\n\x1a\0", 15);
constexpr std::size_t kBinaryHeaderLength = 22;
constexpr std::string_view kBlanks = " \t\r\n\v\f\x1a";
constexpr std::int32_t kComment = 999;

class LineReader {
public:
    LineReader(std::string_view bytes, char lineEnd) : rest_(bytes), lineEnd_(lineEnd) {}

    // False at the end of the file.
    bool next(std::string_view& line) {
        if (rest_.empty())
            return false;
        if (++number_ == std::numeric_limits<std::uint32_t>::max())
            throw DxfError(number_, "too many lines");
        const std::size_t end = rest_.find(lineEnd_);
        line = rest_.substr(0, end);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        return true;
    }
    std::uint32_t number() const { return number_; }
    bool onlyBlanksLeft() const { return rest_.find_first_not_of(kBlanks) == std::string_view::npos; }

private:
    std::string_view rest_;
    char lineEnd_;
    std::uint32_t number_ = 0;
};

std::int32_t groupCode(std::string_view line, std::uint32_t number) {
    const std::string_view text = trimmed(line);
    std::int32_t code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || code < -5 || code > 1071)
        throw DxfError(number, "group code expected, found " + quotedForMessage(line));
    return code;
}

}  // namespace

std::string quotedForMessage(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    std::string shown = "\"";
    for (const char c : text.substr(0, kLongest))
        shown += c >= ' ' && c <= '~' ? c : '?';
    if (text.size() > kLongest)
        shown += "...";
    return shown + "\"";
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isBinaryDxf(std::string_view bytes) {
    return bytes.substr(0, kBinaryHeaderLength).ends_with(kBinaryMark);
}

std::vector<DxfTag> readTags(std::string_view bytes, bool& endMark) {
    if (bytes.starts_with(kByteOrderMark))
        bytes.remove_prefix(kByteOrderMark.size());
    LineReader lines(bytes, bytes.find('\n') == std::string_view::npos ? '\r' : '\n');
    std::vector<DxfTag> tags;
    tags.reserve(bytes.size() / 12);  // a tag has about 12 bytes; fewer or more only costs a reallocation
    endMark = false;
    std::string_view line;
    while (!lines.onlyBlanksLeft() && lines.next(line)) {
        DxfTag tag;
        tag.line = lines.number();
        tag.code = groupCode(line, tag.line);
        if (!lines.next(tag.text))
            throw DxfError(tag.line, "the file ends inside group " + std::to_string(tag.code));
        if (tag.code == kComment)
            continue;
        if (tag.code == 0 && trimmed(tag.text) == "EOF") {
            endMark = true;
            break;
        }
        tags.push_back(tag);
    }
    return tags;
}

}  // namespace drafthost::exchange
