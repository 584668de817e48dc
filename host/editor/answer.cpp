#include "host/editor/answer.h"

#include <cwchar>
#include <numbers>

namespace drafthost::editor {

namespace {

std::wstring number(double value) {
    wchar_t text[40];
    std::swprintf(text, std::size(text), L"%.10g", value);
    return text;
}

std::wstring coordinates(const AcGePoint3d& point, int dimension) {
    std::wstring text = number(point.x) + L"," + number(point.y);
    if (dimension == 3)
        text += L"," + number(point.z);
    return text;
}

}  // namespace

bool isForDialog(Answer::Kind kind) {
    return kind >= Answer::Kind::Press && kind <= Answer::Kind::Resize;
}

std::wstring shownText(const Answer& answer) {
    using Kind = Answer::Kind;
    switch (answer.kind) {
        case Kind::Typed:
        case Kind::Text:
        case Kind::Keyword: return answer.text;
        case Kind::Point:
        case Kind::Pick:
        case Kind::Add: return coordinates(answer.point, answer.dimension);
        case Kind::Window:
        case Kind::Crossing: return coordinates(answer.point, 2) + L" " + coordinates(answer.second, 2);
        case Kind::Angle: return number(answer.number * 180 / std::numbers::pi);
        case Kind::Real: return number(answer.number);
        case Kind::Integer: return std::to_wstring(answer.integer);
        case Kind::All: return L"all";
        case Kind::Cancel: return L"*Cancel*";
        default: return {};
    }
}

}  // namespace drafthost::editor
