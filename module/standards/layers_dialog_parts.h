#pragma once

// What the source files of the Layers dialog share.

#include "module/binding/message_box.h"

#include <windows.h>

#include <string>

namespace tessary {

struct LayersDialogId {
    static constexpr int keys = 1049;
    static constexpr int layers = 1050;
    static constexpr int systems = 1051;
    static constexpr int exportSystem = 1053;
    static constexpr int moveUp = 1054;
    static constexpr int moveDown = 1055;
    static constexpr int deleteLayer = 1057;
    static constexpr int newSystem = 1058;
    static constexpr int deleteSystem = 1059;
    static constexpr int newLayer = 1060;
    static constexpr int undoLayers = 1061;
    static constexpr int editSystem = 1062;
    static constexpr int undoKeys = 1063;
    static constexpr int importSystem = 1064;
    static constexpr int deleteUnusedLayers = 1080;
};

struct LayerKeyColumn {
    static constexpr int displayName = 0;
    static constexpr int key = 1;
    static constexpr int sortText = 2;
    static constexpr int loadedLayer = 3;
    static constexpr int layerName = 4;
};

inline int tellDrafter(const std::wstring& text, unsigned icon) {
    return showMessageBox(text, L"Quarnel", MB_OK | icon);
}

inline bool askDrafter(const std::wstring& question) {
    return showMessageBox(question, L"Quarnel", MB_YESNO | MB_ICONQUESTION) == IDYES;
}

}  // namespace tessary
