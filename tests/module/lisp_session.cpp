#include "tests/module/lisp_session.h"

#include "host/api/types.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <stdexcept>

extern "C" DRAFTHOST_API int drafthostMain(int argumentCount, wchar_t** arguments);

namespace tessary::testing {

namespace {

constexpr std::string_view prompt = "Command: ";

// A file that goes with its handle.
class TemporaryFile {
public:
    TemporaryFile() {
        wchar_t folder[MAX_PATH] = L"";
        wchar_t name[MAX_PATH] = L"";
        GetTempPathW(MAX_PATH, folder);
        GetTempFileNameW(folder, L"lsp", 0, name);
        handle_ = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE) {
            throw std::runtime_error("no temporary file");
        }
    }
    ~TemporaryFile() { CloseHandle(handle_); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    HANDLE handle() const { return handle_; }

    void write(const std::string& bytes) {
        DWORD written = 0;
        WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        rewind();
    }
    std::string read() {
        rewind();
        std::string bytes(GetFileSize(handle_, nullptr), '\0');
        DWORD count = 0;
        ReadFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
        return bytes;
    }

private:
    void rewind() { SetFilePointer(handle_, 0, nullptr, FILE_BEGIN); }
    HANDLE handle_;
};

// The process's standard handle, as long as it lives.
class StandardHandle {
public:
    StandardHandle(DWORD which, HANDLE handle) : which_(which), before_(GetStdHandle(which)) {
        SetStdHandle(which, handle);
    }
    ~StandardHandle() { SetStdHandle(which_, before_); }
    StandardHandle(const StandardHandle&) = delete;
    StandardHandle& operator=(const StandardHandle&) = delete;

private:
    DWORD which_;
    HANDLE before_;
};

// The add-in lies beside the test program.
std::wstring moduleFile() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.find_last_of(L'\\') + 1) + L"Tessary2010x64.arx";
}

std::vector<std::string> splitAtPrompts(const std::string& output) {
    std::vector<std::string> parts;
    std::size_t begin = output.find(prompt);
    while (begin != std::string::npos) {
        begin += prompt.size();
        const std::size_t end = output.find(prompt, begin);
        std::string part = output.substr(begin, end == std::string::npos ? end : end - begin);
        while (!part.empty() && part.back() == '\n') {
            part.pop_back();
        }
        parts.push_back(part);
        begin = end;
    }
    if (!parts.empty()) {
        parts.pop_back();  // behind the last prompt, where the input ended
    }
    return parts;
}

}  // namespace

std::vector<std::string> runLisp(const std::vector<std::string>& lines,
                                 const std::vector<std::wstring>& supportFolders, int status) {
    TemporaryFile input;
    TemporaryFile output;
    std::string typed;
    for (const std::string& line : lines) {
        typed += line + "\n";
    }
    input.write(typed);
    std::vector<std::wstring> words = {L"drafthost", L"repl", L"--module", moduleFile()};
    for (const std::wstring& folder : supportFolders) {
        words.insert(words.end(), {L"--support", folder});
    }
    std::vector<wchar_t*> arguments;
    for (std::wstring& word : words) {
        arguments.push_back(word.data());
    }
    {
        const StandardHandle in(STD_INPUT_HANDLE, input.handle());
        const StandardHandle out(STD_OUTPUT_HANDLE, output.handle());
        EXPECT_EQ(status, drafthostMain(static_cast<int>(arguments.size()), arguments.data()));
    }
    return splitAtPrompts(output.read());
}

}  // namespace tessary::testing
