#include "host/graphics/picture.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <filesystem>

#include "host/exchange/file_replace.h"
#include "host/graphics/display_builder.h"
#include "host/graphics/scene_painter.h"

namespace drafthost::graphics {

namespace {

constexpr double kMargin = 0.03;          // of the longest side, on each side
constexpr int kThinnest = 8;              // longest side over the other: a thin drawing still makes a picture
constexpr double kHairline = 1.25;        // pixels
constexpr double kHairlineWeight = 0.25;  // millimetres drawn as a hairline

std::wstring lowerExtension(const std::filesystem::path& path) {
    std::wstring extension = path.extension().wstring();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return extension;
}

// Empty bytes: problem says already why there are none.
bool writeBytes(const std::filesystem::path& target, const std::string& bytes, std::wstring& problem) {
    if (bytes.empty())
        return false;
    const Acad::ErrorStatus status = exchange::replaceFile(target, bytes);
    if (status == Acad::eOk)
        return true;
    problem = target.wstring() + L" cannot be written: " + acadErrorStatusText(status) + L".";
    return false;
}

}  // namespace

double strokePixels(float weight) {
    return kHairline * std::max(1.0, weight / kHairlineWeight * 0.8);
}

PictureFrame fitPicture(const Bounds& given, int size) {
    Bounds bounds = given;
    if (!bounds.valid)
        bounds.add({0, 0});
    double width = bounds.maxX - bounds.minX, height = bounds.maxY - bounds.minY;
    double longest = std::max(width, height);
    if (!(longest > 0))
        longest = 1;
    const double border = longest * kMargin;
    longest += 2 * border;
    PictureFrame frame;
    frame.scale = size / longest;
    const auto pixels = [&](double side) {
        return std::clamp(static_cast<int>(std::ceil((side + 2 * border) * frame.scale)), size / kThinnest,
                          size);
    };
    frame.width = pixels(width);
    frame.height = pixels(height);
    frame.topLeft = {(bounds.minX + bounds.maxX) / 2 - frame.width / frame.scale / 2,
                     (bounds.minY + bounds.maxY) / 2 + frame.height / frame.scale / 2};
    return frame;
}

bool writePicture(const AcDbDatabase& database, const std::wstring& path, std::wstring& problem, int size) {
    const std::filesystem::path target(path);
    const std::wstring extension = lowerExtension(target);
    if (extension != L".png" && extension != L".svg") {
        problem = L"pictures are written as .png or .svg";
        return false;
    }
    const DisplayList list = buildDisplayList(database);
    const PictureFrame frame = fitPicture(list.bounds(), size);
    const std::string bytes = extension == L".png" ? pngBytes(list, frame, problem) : svgText(list, frame);
    return writeBytes(target, bytes, problem);
}

bool writeShadedPicture(const AcDbDatabase& database, const AcGeVector3d& towardsEye,
                        const std::wstring& path, std::wstring& problem, int size) {
    const std::filesystem::path target(path);
    if (lowerExtension(target) != L".png") {
        problem = L"shaded pictures are written as .png";
        return false;
    }
    const Scene scene = buildScene(database, towardsEye);
    const PictureFrame frame = fitPicture(boundsInView(scene), size);
    const std::string bytes = encodePng(frame.width, frame.height, paintScene(scene, frame), problem);
    return writeBytes(target, bytes, problem);
}

}  // namespace drafthost::graphics
