#include "host/editor/command_line.h"

#include <windows.h>

#include "host/lisp/utf8.h"

namespace drafthost::editor {

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;

void writeHandle(DWORD handle, std::string_view bytes) {
    const HANDLE file = GetStdHandle(handle);
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
            written == 0)
            return;
        bytes.remove_prefix(written);
    }
}

}  // namespace

CommandLine::CommandLine()
    : CommandLine([](std::string_view bytes) { writeHandle(STD_OUTPUT_HANDLE, bytes); }) {}

CommandLine::CommandLine(Sink sink) : sink_(std::move(sink)) {}

CommandLine::~CommandLine() {
    flush();
}

void CommandLine::write(std::wstring_view text) {
    if (text.empty())
        return;
    endedOutside_ = false;
    atLineStart_ = text.back() == L'\n';
    std::wstring joined;
    if (pendingSurrogate_) {
        joined = pendingSurrogate_ + std::wstring(text);
        text = joined;
        pendingSurrogate_ = 0;
    }
    if (text.back() >= 0xD800 && text.back() < 0xDC00) {
        pendingSurrogate_ = text.back();
        text.remove_suffix(1);
    }
    buffer_ += lisp::toUtf8(text);
    if (buffer_.size() > kBufferSize)
        flush();
}

void CommandLine::flush() {
    if (buffer_.empty())
        return;
    sink_(buffer_);
    buffer_.clear();
}

void CommandLine::freshLine() {
    if (!atLineStart_)
        write(L"\n");
}

void CommandLine::ownFreshLine() {
    if (!atLineStart_ || endedOutside_)
        write(L"\n");
}

void reportOnStandardError(const std::wstring& message) {
    writeHandle(STD_ERROR_HANDLE, lisp::toUtf8(L"drafthost: " + message + L"\n"));
}

}  // namespace drafthost::editor
