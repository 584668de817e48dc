#pragma once

// Answers the message boxes of the process: the real windows of the platform, whoever shows them.
//
// While a MessageBoxes lives, dialogs that become active on its thread are noticed by a hook; a timer, which
// runs in the dialog's own message loop, then asks the current input source for a button and presses it.

#include <cstdint>
#include <string>
#include <vector>

#include "host/editor/input_request.h"

namespace drafthost {
class Host;
}

namespace drafthost::editor {

class MessageBoxes {
public:
    // On the thread whose boxes are answered. One lives at a time.
    explicit MessageBoxes(Host& host);
    ~MessageBoxes();
    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;

    // Of the hook and the timer.
    void noticed();
    void answerTopBox();

private:
    Host& host_;
    void* hook_ = nullptr;
    std::uintptr_t timer_ = 0;
    bool answering_ = false;
};

}  // namespace drafthost::editor
