#pragma once

// Ownership of what GDI hands out.

#include <windows.h>

#include <utility>

namespace framework {

// A font, pen, brush, bitmap or region, deleted with this object; null for none.
template <class Handle>
class GdiObject {
public:
    GdiObject() = default;
    explicit GdiObject(Handle handle) : handle_(handle) {}
    GdiObject(GdiObject&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    GdiObject& operator=(GdiObject other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~GdiObject() {
        if (handle_)
            DeleteObject(handle_);
    }

    Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    Handle handle_ = nullptr;
};

using Font = GdiObject<HFONT>;
using Brush = GdiObject<HBRUSH>;
using Pen = GdiObject<HPEN>;
using Bitmap = GdiObject<HBITMAP>;
using Region = GdiObject<HRGN>;

// Selects an object into a device context for its own lifetime.
class Selected {
public:
    Selected(HDC context, HGDIOBJ object) : context_(context), before_(SelectObject(context, object)) {}
    ~Selected() { SelectObject(context_, before_); }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC context_;
    HGDIOBJ before_;
};

// Device context of a window's client area, outside painting. Null window: of the screen.
class ClientContext {
public:
    explicit ClientContext(HWND window) : window_(window), context_(GetDC(window)) {}
    ~ClientContext() { ReleaseDC(window_, context_); }
    ClientContext(const ClientContext&) = delete;
    ClientContext& operator=(const ClientContext&) = delete;
    HDC get() const { return context_; }

private:
    HWND window_;
    HDC context_;
};

// Device context of all of a window, its frame included.
class WindowContext {
public:
    explicit WindowContext(HWND window) : window_(window), context_(GetWindowDC(window)) {}
    ~WindowContext() { ReleaseDC(window_, context_); }
    WindowContext(const WindowContext&) = delete;
    WindowContext& operator=(const WindowContext&) = delete;
    HDC get() const { return context_; }

private:
    HWND window_;
    HDC context_;
};

// Device context of a WM_PAINT message.
class PaintContext {
public:
    explicit PaintContext(HWND window) : window_(window) { BeginPaint(window, &paint_); }
    ~PaintContext() { EndPaint(window_, &paint_); }
    PaintContext(const PaintContext&) = delete;
    PaintContext& operator=(const PaintContext&) = delete;
    HDC get() const { return paint_.hdc; }
    const RECT& area() const { return paint_.rcPaint; }

private:
    HWND window_;
    PAINTSTRUCT paint_{};
};

// A device context in memory that draws into a bitmap.
class MemoryContext {
public:
    // With a bitmap that the other context can take, for painting without flicker.
    MemoryContext(HDC like, int width, int height)
        : MemoryContext(like, Bitmap(CreateCompatibleBitmap(like, width, height))) {}
    // like: null for the screen's.
    MemoryContext(HDC like, Bitmap bitmap)
        : context_(CreateCompatibleDC(like)), bitmap_(std::move(bitmap)),
          before_(SelectObject(context_, bitmap_.get())) {}
    ~MemoryContext() {
        SelectObject(context_, before_);
        DeleteDC(context_);
    }
    MemoryContext(const MemoryContext&) = delete;
    MemoryContext& operator=(const MemoryContext&) = delete;
    HDC get() const { return context_; }

private:
    HDC context_;
    Bitmap bitmap_;
    HGDIOBJ before_;
};

}  // namespace framework
