#include <windows.h>

#include <objbase.h>
#include <wincodec.h>

#include <cmath>
#include <type_traits>

#include "host/graphics/canvas.h"
#include "host/graphics/picture.h"

namespace drafthost::graphics {

namespace {

// Chords stay this close to their arcs, in pixels.
constexpr double kPixelDeviation = 0.08;

class Painter {
public:
    Painter(Canvas& canvas, const PictureFrame& frame) : canvas_(canvas), frame_(frame) {}
    void paint(const DisplayItem& item) {
        item_ = &item;
        std::visit([this](const auto& shape) { paintShape(shape); }, item.shape);
    }

private:
    void paintShape(const Polyline2d& line) {
        points_.clear();
        for (const AcGePoint2d& point : line.points)
            points_.push_back(frame_.toPixel(point));
        strokePoints();
    }
    void paintShape(const Arc2d& arc) {
        const int chords = chordCount(arc.radius * frame_.scale, arc.sweep, kPixelDeviation);
        points_.clear();
        for (int i = 0; i <= chords; ++i)
            points_.push_back(frame_.toPixel(arc.at(double(i) / chords)));
        strokePoints();
    }
    void paintShape(const Area2d& area) {
        contours_.resize(area.contours.size());
        for (std::size_t i = 0; i < contours_.size(); ++i) {
            contours_[i].clear();
            for (const AcGePoint2d& point : area.contours[i])
                contours_[i].push_back(frame_.toPixel(point));
        }
        canvas_.fill(contours_, area.evenOdd ? FillRule::EvenOdd : FillRule::NonZero, item_->color);
    }
    void strokePoints() { canvas_.stroke(points_, strokePixels(item_->weight), item_->color); }

    Canvas& canvas_;
    const PictureFrame& frame_;
    const DisplayItem* item_ = nullptr;
    std::vector<AcGePoint2d> points_;
    std::vector<std::vector<AcGePoint2d>> contours_;
};

// Owns one reference to a COM object.
template <class T>
class ComPointer {
public:
    ComPointer() = default;
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;
    ~ComPointer() {
        if (pointer_)
            pointer_->Release();
    }
    T** out() { return &pointer_; }
    T* get() const { return pointer_; }
    T* operator->() const { return pointer_; }

private:
    T* pointer_ = nullptr;
};

// COM for the time of one call; a thread that has it already keeps it.
struct ComSession {
    HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ~ComSession() {
        if (SUCCEEDED(result))
            CoUninitialize();
    }
};

// Everything that was written to the stream.
HRESULT contents(IStream& stream, std::string& bytes) {
    STATSTG state{};
    HRESULT result = stream.Stat(&state, STATFLAG_NONAME);
    if (SUCCEEDED(result)) {
        result = stream.Seek({}, STREAM_SEEK_SET, nullptr);
    }
    if (SUCCEEDED(result)) {
        bytes.resize(static_cast<std::size_t>(state.cbSize.QuadPart));
        result = stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    }
    return result;
}

HRESULT encode(int columns, int rows, const std::vector<Rgb>& pixels, std::string& png) {
    const ComSession session;
    ComPointer<IWICImagingFactory> factory;
    ComPointer<IStream> stream;
    ComPointer<IWICBitmapEncoder> encoder;
    ComPointer<IWICBitmapFrameEncode> image;
    const UINT width = static_cast<UINT>(columns), height = static_cast<UINT>(rows);
    std::vector<BYTE> bytes;
    bytes.reserve(pixels.size() * 3);
    for (const Rgb& pixel : pixels)
        bytes.insert(bytes.end(), {pixel.blue, pixel.green, pixel.red});

    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IWICImagingFactory, reinterpret_cast<void**>(factory.out()));
    const auto then = [&result](auto&& step) {
        if (SUCCEEDED(result))
            result = step();
    };
    then([&] { return CreateStreamOnHGlobal(nullptr, TRUE, stream.out()); });
    then([&] { return factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.out()); });
    then([&] { return encoder->Initialize(stream.get(), WICBitmapEncoderNoCache); });
    then([&] { return encoder->CreateNewFrame(image.out(), nullptr); });
    then([&] { return image->Initialize(nullptr); });
    then([&] { return image->SetSize(width, height); });
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    then([&] { return image->SetPixelFormat(&format); });
    then([&] { return IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) ? S_OK : E_FAIL; });
    then(
        [&] { return image->WritePixels(height, width * 3, static_cast<UINT>(bytes.size()), bytes.data()); });
    then([&] { return image->Commit(); });
    then([&] { return encoder->Commit(); });
    then([&] { return contents(*stream.get(), png); });
    return result;
}

}  // namespace

std::string encodePng(int width, int height, const std::vector<Rgb>& pixels, std::wstring& problem) {
    std::string png;
    const HRESULT result = encode(width, height, pixels, png);
    if (SUCCEEDED(result)) {
        return png;
    }
    wchar_t text[64];
    swprintf(text, 64, L"the PNG could not be encoded (0x%08lX)", static_cast<unsigned long>(result));
    problem = text;
    return {};
}

std::string pngBytes(const DisplayList& list, const PictureFrame& frame, std::wstring& problem) {
    Canvas canvas(frame.width, frame.height, kBackground);
    Painter painter(canvas, frame);
    for (const DisplayItem& item : list.items)
        painter.paint(item);
    return encodePng(frame.width, frame.height, canvas.pixels(), problem);
}

}  // namespace drafthost::graphics
