#pragma once

// Pictures of a drawing's model space, fitted with a margin.

#include <string>

#include "host/api/database.h"
#include "host/graphics/display_list.h"

namespace drafthost::graphics {

constexpr int kPictureSize = 1600;
constexpr int kSmallestPicture = 16, kLargestPicture = 10'000;

// Writes a plan view as PNG or SVG, by the file's extension. The longest side has size pixels, from
// kSmallestPicture to kLargestPicture. The file is written beside the target and renamed over it, so that a
// failure leaves an existing picture. False: problem says why.
bool writePicture(const AcDbDatabase& database, const std::wstring& path, std::wstring& problem,
                  int size = kPictureSize);

// The direction in which shaded pictures look unless told otherwise: from the south-west and above, as
// isometric drawings do, so that runs along both axes and what crosses above and below are seen.
constexpr AcGeVector3d kShadedFrom{-1, -1, 1};

// The same for a shaded picture seen from that direction (towards the eye, any length but zero). PNG only.
bool writeShadedPicture(const AcDbDatabase& database, const AcGeVector3d& towardsEye,
                        const std::wstring& path, std::wstring& problem, int size = kPictureSize);

// Maps plan coordinates to pixels from the top left corner.
struct PictureFrame {
    int width = 0, height = 0;  // pixels
    double scale = 1;           // pixels for one drawing unit
    AcGePoint2d topLeft;        // plan point at pixel (0, 0)
    AcGePoint2d toPixel(const AcGePoint2d& p) const {
        return {(p.x - topLeft.x) * scale, (topLeft.y - p.y) * scale};
    }
};
// An empty or point-like drawing gets a frame of one unit around it. size: pixels of the longest side; no
// side is shorter than an eighth of it.
PictureFrame fitPicture(const Bounds& bounds, int size = kPictureSize);

// Line width in pixels of a weight in millimetres: hairlines stay visible, heavy lines show their weight.
double strokePixels(float weight);

std::string svgText(const DisplayList& list, const PictureFrame& frame);
// Pixels row by row from the top. Empty: problem says why.
std::string encodePng(int width, int height, const std::vector<Rgb>& pixels, std::wstring& problem);
// Empty: problem says why.
std::string pngBytes(const DisplayList& list, const PictureFrame& frame, std::wstring& problem);

}  // namespace drafthost::graphics
