#include "framework/window_picture.h"

#include "framework/gdi.h"

#include <objbase.h>
#include <wincodec.h>

#include <cwchar>
#include <memory>
#include <utility>

namespace framework {

namespace {

struct ReleaseCom {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class T>
using ComPointer = std::unique_ptr<T, ReleaseCom>;

// COM for the time of one call; a thread that has it already keeps it.
struct ComSession {
    HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ~ComSession() {
        if (SUCCEEDED(result))
            CoUninitialize();
    }
};

SIZE sizeOf(const RECT& area) {
    return {area.right - area.left, area.bottom - area.top};
}

RECT placeOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// A bitmap whose pixels can be read in place, top row first.
struct PixelBitmap {
    explicit PixelBitmap(SIZE size) {
        BITMAPINFO info{};
        info.bmiHeader = {.biSize = sizeof(BITMAPINFOHEADER),
                          .biWidth = size.cx,
                          .biHeight = -size.cy,
                          .biPlanes = 1,
                          .biBitCount = 32,
                          .biCompression = BI_RGB,
                          .biSizeImage = 0,
                          .biXPelsPerMeter = 0,
                          .biYPelsPerMeter = 0,
                          .biClrUsed = 0,
                          .biClrImportant = 0};
        void* memory = nullptr;
        bitmap = Bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &memory, nullptr, 0));
        bits = static_cast<std::uint32_t*>(memory);
    }
    Bitmap bitmap;
    std::uint32_t* bits = nullptr;
};

// The next painting draws the frame, which scroll bars are part of: a window may have left that for when
// there is time.
BOOL CALLBACK invalidateFrame(HWND window, LPARAM) {
    RECT place = placeOf(window), client{};
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    GetClientRect(window, &client);
    const Region frame(CreateRectRgnIndirect(&place)), inside(CreateRectRgnIndirect(&client));
    CombineRgn(frame.get(), frame.get(), inside.get(), RGN_DIFF);
    RedrawWindow(window, nullptr, frame.get(), RDW_INVALIDATE | RDW_FRAME | RDW_NOCHILDREN);
    return TRUE;
}

// Copies the window, its frame included, to where it lies in a picture whose top left corner is `origin`.
void copyWindow(HWND window, HDC target, POINT origin) {
    invalidateFrame(window, 0);
    EnumChildWindows(window, invalidateFrame, 0);
    RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW | RDW_ERASENOW);
    const RECT place = placeOf(window);
    const SIZE size = sizeOf(place);
    const WindowContext source(window);
    BitBlt(target, place.left - origin.x, place.top - origin.y, size.cx, size.cy, source.get(), 0, 0,
           SRCCOPY);
}

struct PopupSearch {
    HWND window;
    std::vector<HWND> found;
};

// Windows that a window opens over itself for a moment have no caption of their own.
BOOL CALLBACK collectPopup(HWND candidate, LPARAM data) {
    PopupSearch& search = *reinterpret_cast<PopupSearch*>(data);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(candidate, GWL_STYLE));
    const RECT place = placeOf(candidate), around = placeOf(search.window);
    RECT common;
    if (candidate != search.window && IsWindowVisible(candidate) && (style & WS_CAPTION) != WS_CAPTION &&
        IntersectRect(&common, &place, &around)) {
        search.found.push_back(candidate);
    }
    return TRUE;
}

// The lowest first.
std::vector<HWND> popupsOver(HWND window) {
    PopupSearch search{window, {}};
    EnumThreadWindows(GetCurrentThreadId(), collectPopup, reinterpret_cast<LPARAM>(&search));
    return {search.found.rbegin(), search.found.rend()};
}

HRESULT contents(IStream& stream, std::vector<BYTE>& bytes) {
    STATSTG state{};
    HRESULT result = stream.Stat(&state, STATFLAG_NONAME);
    if (SUCCEEDED(result))
        result = stream.Seek({}, STREAM_SEEK_SET, nullptr);
    if (SUCCEEDED(result)) {
        bytes.resize(static_cast<std::size_t>(state.cbSize.QuadPart));
        result = stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    }
    return result;
}

// Calls one step after the other until one fails; each gives its object to the next.
class Steps {
public:
    template <class Step>
    void then(Step step) {
        if (SUCCEEDED(result))
            result = step();
    }
    template <class T, class Step>
    ComPointer<T> make(Step step) {
        T* object = nullptr;
        then([&] { return step(&object); });
        return ComPointer<T>(object);
    }
    HRESULT result = S_OK;
};

HRESULT encode(const WindowPicture& picture, std::vector<BYTE>& png) {
    const auto width = static_cast<UINT>(picture.width), height = static_cast<UINT>(picture.height);
    std::vector<BYTE> pixels;
    pixels.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels) {
        pixels.push_back(static_cast<BYTE>(pixel));
        pixels.push_back(static_cast<BYTE>(pixel >> 8));
        pixels.push_back(static_cast<BYTE>(pixel >> 16));
    }

    Steps steps;
    const auto factory = steps.make<IWICImagingFactory>([](IWICImagingFactory** made) {
        return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(IWICImagingFactory), reinterpret_cast<void**>(made));
    });
    const auto stream =
        steps.make<IStream>([](IStream** made) { return CreateStreamOnHGlobal(nullptr, TRUE, made); });
    const auto encoder = steps.make<IWICBitmapEncoder>(
        [&](auto made) { return factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, made); });
    steps.then([&] { return encoder->Initialize(stream.get(), WICBitmapEncoderNoCache); });
    const auto image =
        steps.make<IWICBitmapFrameEncode>([&](auto made) { return encoder->CreateNewFrame(made, nullptr); });
    steps.then([&] { return image->Initialize(nullptr); });
    steps.then([&] { return image->SetSize(width, height); });
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    steps.then([&] { return image->SetPixelFormat(&format); });
    steps.then([&] { return IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) ? S_OK : E_FAIL; });
    steps.then([&] {
        return image->WritePixels(height, width * 3, static_cast<UINT>(pixels.size()), pixels.data());
    });
    steps.then([&] { return image->Commit(); });
    steps.then([&] { return encoder->Commit(); });
    steps.then([&] { return contents(*stream, png); });
    return steps.result;
}

std::wstring withNumber(const wchar_t* text, unsigned long number) {
    wchar_t message[128];
    swprintf(message, std::size(message), L"%ls (0x%08lX)", text, number);
    return message;
}

// By a file beside it that takes its name when it is whole.
bool writeFile(const std::wstring& file, const std::vector<BYTE>& bytes) {
    const std::wstring partial = file + L".part";
    const HANDLE handle = CreateFileW(partial.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool whole = WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
                       written == bytes.size();
    const DWORD reason = whole ? ERROR_SUCCESS : GetLastError();
    CloseHandle(handle);
    if (whole && MoveFileExW(partial.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING))
        return true;
    const DWORD last = whole ? GetLastError() : reason;
    DeleteFileW(partial.c_str());
    SetLastError(last);
    return false;
}

}  // namespace

WindowPicture takeWindowPicture(HWND window) {
    const RECT place = placeOf(window);
    const SIZE size = sizeOf(place);
    if (size.cx <= 0 || size.cy <= 0)
        return {};
    PixelBitmap target(size);
    if (!target.bits)
        return {};
    const MemoryContext context(nullptr, std::move(target.bitmap));
    copyWindow(window, context.get(), {place.left, place.top});
    for (const HWND popup : popupsOver(window))
        copyWindow(popup, context.get(), {place.left, place.top});
    GdiFlush();

    WindowPicture picture{size.cx, size.cy, {}};
    const std::size_t count = static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy);
    picture.pixels.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        picture.pixels.push_back(target.bits[i] & 0xFFFFFFu);
    return picture;
}

bool savePicture(const WindowPicture& picture, const std::wstring& file, std::wstring& problem) {
    if (picture.empty()) {
        problem = L"the window has no picture";
        return false;
    }
    const ComSession session;
    std::vector<BYTE> png;
    const HRESULT result = encode(picture, png);
    if (FAILED(result)) {
        problem = withNumber(L"the PNG could not be encoded", static_cast<unsigned long>(result));
        return false;
    }
    if (!writeFile(file, png)) {
        problem = withNumber(L"the file could not be written", GetLastError());
        return false;
    }
    return true;
}

bool saveWindowPicture(HWND window, const std::wstring& file, std::wstring& problem) {
    return savePicture(takeWindowPicture(window), file, problem);
}

}  // namespace framework
