#pragma once

// Pictures of windows as they look on the screen, for tests and documents.

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace framework {

// Pixels, row 0 on top, each 0x00RRGGBB. Empty when the picture could not be taken.
struct WindowPicture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    bool empty() const { return pixels.empty(); }
    // x, y: inside the picture.
    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

// The window with its frame and what lies in it, painted first where something is out of date, and its open
// drop-down lists, menus and tips where they overlap it. Other windows in front of it do not show. window: of
// this thread.
WindowPicture takeWindowPicture(HWND window);

// Writes the picture as a PNG file, over one that exists. False, with the reason, when it cannot; there is
// no file then that was not there before.
bool savePicture(const WindowPicture& picture, const std::wstring& file, std::wstring& problem);
// Both in one.
bool saveWindowPicture(HWND window, const std::wstring& file, std::wstring& problem);

}  // namespace framework
