#include "module/drawing/last_line_width.h"

#include "module/binding/value_list.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tessary {

namespace {

std::wstring lastParagraph(const std::wstring& contents) {
    constexpr std::wstring_view paragraphBreak = L"\\P";
    const std::size_t last = contents.rfind(paragraphBreak);
    return last == std::wstring::npos ? contents : contents.substr(last + paragraphBreak.size());
}

// Where the last line may begin, from the end of the paragraph backwards: at every blank of a run of blanks
// at the end, then at the first letter of each word. The last element is 0, the whole paragraph; empty for an
// empty paragraph.
std::vector<std::size_t> possibleBegins(const std::wstring& paragraph) {
    std::vector<std::size_t> begins;
    std::size_t end = paragraph.size();
    while (end > 0) {
        if (paragraph[end - 1] == L' ') {
            --end;
        } else {
            const std::size_t blank = paragraph.rfind(L' ', end - 1);
            // A blank at the very begin belongs to the first word.
            end = blank == std::wstring::npos || blank == 0 ? 0 : blank + 1;
        }
        begins.push_back(end);
    }
    return begins;
}

// Index of the first begin at which the rest before it is lower. The first ones are tried in order: a last
// line has few words. Then the distance grows, and the gap passed over is halved: laying out a long text once
// per word would take hours, and words taken from the end never make the rest higher. The whole paragraph
// needs no trial.
template <class IsLower>
std::size_t findBegin(const std::vector<std::size_t>& begins, IsLower isLower) {
    constexpr std::size_t triedInOrder = 8;
    const std::size_t last = begins.size() - 1;
    std::size_t passed = 0;  // begins before this one were tried or passed over: the rest is not lower there
    std::size_t stride = 1;
    while (passed + stride <= last) {
        const std::size_t candidate = passed + stride - 1;
        if (isLower(begins[candidate])) {
            break;
        }
        passed = candidate + 1;
        stride = passed < triedInOrder ? 1 : stride * 2;
    }
    const auto from = begins.begin() + static_cast<std::ptrdiff_t>(passed);
    const auto to = begins.begin() + static_cast<std::ptrdiff_t>(std::min(passed + stride - 1, last));
    const auto found = std::partition_point(from, to, [&](std::size_t begin) { return !isLower(begin); });
    return static_cast<std::size_t>(found - begins.begin());
}

std::wstring lastLine(AcDbMText& text, const std::wstring& paragraph) {
    text.setContents(paragraph.c_str());
    const double height = text.actualHeight();
    const double lineHeight = text.textHeight();
    if (2 * lineHeight > height || paragraph.empty()) {
        return paragraph;
    }
    const std::vector<std::size_t> begins = possibleBegins(paragraph);
    const std::size_t found = findBegin(begins, [&](std::size_t begin) {
        text.setContents(paragraph.substr(0, begin).c_str());
        return height >= text.actualHeight() + lineHeight;
    });
    return paragraph.substr(begins[found]);
}

}  // namespace

double measureLastLineWidth(AcDbMText& text) {
    const std::wstring contents = takeHostText(text.contents());
    text.setContents(lastLine(text, lastParagraph(contents)).c_str());
    const double width = text.actualWidth();
    text.setContents(contents.c_str());
    return width;
}

}  // namespace tessary
