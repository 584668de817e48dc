// The DWG reader runs in a process of its own: what a damaged file does to it is over when it ends.

#include <windows.h>

#include <array>
#include <memory>
#include <thread>
#include <vector>

#include "host/exchange/dwg_conversion.h"

namespace drafthost::exchange {
namespace {

constexpr wchar_t kProgram[] = L"dwgreader.exe";
// Time for the start of the program, and for each 100 kB of the file: many times what a sound file takes.
constexpr DWORD kStartMilliseconds = 15000, kMillisecondsEach = 1000;
constexpr std::uintmax_t kEach = 100000;
constexpr DWORD kLongestMilliseconds = 30 * 60 * 1000;
// A drawing of 100 MB becomes about 500 MB of DXF.
constexpr std::size_t kLargestDxf = std::size_t{1} << 30;

// Exit statuses of the program (dwgreader/main.cpp).
enum ReaderStatus : DWORD { kWritten = 0, kDamaged = 1, kUsage = 2, kCannotOpen = 3, kUnknownVersion = 4 };

struct CloseKernelObject {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
};
using KernelObject = std::unique_ptr<HANDLE, CloseKernelObject>;

// Beside the library or program that this code is in.
std::wstring programPath() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&programPath), &self);
    std::vector<wchar_t> path(32768);
    const DWORD length = GetModuleFileNameW(self, path.data(), static_cast<DWORD>(path.size()));
    return std::filesystem::path(path.data(), path.data() + length).replace_filename(kProgram).wstring();
}

DWORD timeLimit(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    const std::uintmax_t limit = error ? 0 : kStartMilliseconds + size / kEach * kMillisecondsEach;
    return static_cast<DWORD>(std::min<std::uintmax_t>(limit, kLongestMilliseconds));
}

// A process that ends with this object, at the latest when the host ends.
class Reader {
public:
    // False when it cannot be started.
    bool start(const std::wstring& program, const std::filesystem::path& file);
    // Reads what it writes until it ends. False: it did not in time, or wrote too much, and has been ended.
    bool readAll(DWORD milliseconds, std::string& output);
    DWORD exitStatus() const {
        DWORD status = kDamaged;
        GetExitCodeProcess(process_.get(), &status);
        return status;
    }
    ~Reader() { end(); }

private:
    void end() {
        if (process_)
            TerminateProcess(process_.get(), kDamaged);
    }
    bool makePipe();
    bool create(std::wstring command, STARTUPINFOEXW& startup);

    KernelObject job_, process_, output_, input_;
};

bool Reader::makePipe() {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    HANDLE reading = nullptr, writing = nullptr;
    if (!CreatePipe(&reading, &writing, &inheritable, 1 << 16))
        return false;
    output_.reset(reading);
    input_.reset(writing);
    return SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0) != 0;
}

// The program gets the pipe and nothing else of what the host has open.
bool Reader::start(const std::wstring& program, const std::filesystem::path& file) {
    if (!makePipe())
        return false;
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<std::byte> memory(size);
    STARTUPINFOEXW startup = {};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdOutput = input_.get();
    startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
    if (!InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size))
        return false;
    HANDLE inherited[] = {input_.get()};
    const bool started =
        UpdateProcThreadAttribute(startup.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, inherited,
                                  sizeof inherited, nullptr, nullptr) &&
        create(L"\"" + program + L"\" \"" + file.wstring() + L"\"", startup);
    DeleteProcThreadAttributeList(startup.lpAttributeList);
    input_.reset();
    return started;
}

bool Reader::create(std::wstring command, STARTUPINFOEXW& startup) {
    PROCESS_INFORMATION created = {};
    constexpr DWORD kFlags = EXTENDED_STARTUPINFO_PRESENT | CREATE_NO_WINDOW | CREATE_SUSPENDED;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, kFlags, nullptr, nullptr,
                        &startup.StartupInfo, &created))
        return false;
    process_.reset(created.hProcess);
    const KernelObject thread(created.hThread);
    job_.reset(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    // Without the job the program would only outlive a host that is killed while it reads.
    if (job_ &&
        SetInformationJobObject(job_.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits))
        AssignProcessToJobObject(job_.get(), process_.get());
    return ResumeThread(thread.get()) != static_cast<DWORD>(-1);
}

bool Reader::readAll(DWORD milliseconds, std::string& output) {
    bool complete = true;
    std::thread draining([&] {
        try {
            std::array<char, 1 << 16> buffer;
            for (DWORD count = 0;
                 ReadFile(output_.get(), buffer.data(), DWORD{buffer.size()}, &count, nullptr) && count > 0 &&
                 complete;) {
                output.append(buffer.data(), count);
                complete = output.size() <= kLargestDxf;
            }
        } catch (const std::bad_alloc&) {
            complete = false;
        }
        if (!complete)
            end();
    });
    const bool ended = WaitForSingleObject(process_.get(), milliseconds) == WAIT_OBJECT_0;
    if (!ended)
        end();
    draining.join();
    return ended && complete;
}

DwgConversion failed(Acad::ErrorStatus status, std::string reason) {
    return {status, {}, std::move(reason)};
}

// The comment that a reader that gave up has written.
std::string reasonIn(std::string_view output) {
    constexpr std::string_view kComment = "999\n";
    if (!output.starts_with(kComment))
        return "the file is damaged";
    output.remove_prefix(kComment.size());
    return std::string(output.substr(0, output.find('\n')));
}

}  // namespace

DwgConversion convertDwg(const std::filesystem::path& file) {
    const std::wstring program = programPath();
    const DWORD milliseconds = timeLimit(file);
    Reader reader;
    DwgConversion result;
    if (!reader.start(program, file))
        return failed(Acad::eFileAccessErr, "dwgreader.exe, which reads DWG files, cannot be started");
    if (!reader.readAll(milliseconds, result.dxf))
        return failed(Acad::eFileInternalErr, "the file is damaged: reading it does not end");
    switch (reader.exitStatus()) {
        case kWritten: return result;
        case kDamaged: return failed(Acad::eFileInternalErr, reasonIn(result.dxf));
        case kUsage:
        case kCannotOpen: return failed(Acad::eFileAccessErr, "the file cannot be read");
        case kUnknownVersion:
            return failed(Acad::eInvalidFileVersion, "this version of DWG files cannot be read");
        default: return failed(Acad::eFileInternalErr, "the file is damaged");
    }
}

}  // namespace drafthost::exchange
