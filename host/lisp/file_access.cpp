// The default way to files: the C++ library's, with UTF-8 text.

#include "host/lisp/console.h"
#include "host/lisp/utf8.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

namespace drafthost::lisp {

namespace {

// Reads bytes and decodes line by line; \r\n and \n both end a line.
class InputStream final : public TextStream {
public:
    explicit InputStream(const std::filesystem::path& path) : file_(path, std::ios::binary) {}

    bool isOpen() const { return file_.is_open(); }

    std::optional<std::wstring> readLine() override {
        if (next_ < line_.size()) {  // what readCharacter left
            std::wstring rest = line_.substr(next_);
            next_ = line_.size();
            if (!rest.empty() && rest.back() == L'\n') {
                rest.pop_back();
            }
            return rest;
        }
        bool ended = false;
        return fetch(ended);
    }

    std::optional<wchar_t> readCharacter() override {
        if (next_ >= line_.size()) {
            bool ended = false;
            std::optional<std::wstring> fetched = fetch(ended);
            if (!fetched) {
                return std::nullopt;
            }
            line_ = std::move(*fetched) + (ended ? L"\n" : L"");
            next_ = 0;
            if (line_.empty()) {
                return std::nullopt;
            }
        }
        return line_[next_++];
    }

    bool write(std::wstring_view) override { return false; }

private:
    // `ended`: the line had a line end
    std::optional<std::wstring> fetch(bool& ended) {
        std::string bytes;
        if (!std::getline(file_, bytes)) {
            return std::nullopt;
        }
        ended = !file_.eof();
        if (!bytes.empty() && bytes.back() == '\r') {
            bytes.pop_back();
        }
        if (atStart_ && bytes.starts_with("\xEF\xBB\xBF")) {
            bytes.erase(0, 3);
        }
        atStart_ = false;
        return fromUtf8(bytes);
    }

    std::ifstream file_;
    std::wstring line_;  // for readCharacter
    std::size_t next_ = 0;
    bool atStart_ = true;
};

class OutputStream final : public TextStream {
public:
    OutputStream(const std::filesystem::path& path, bool append)
        : file_(path, append ? std::ios::app : std::ios::trunc) {}

    bool isOpen() const { return file_.is_open(); }
    std::optional<std::wstring> readLine() override { return std::nullopt; }
    std::optional<wchar_t> readCharacter() override { return std::nullopt; }

    bool write(std::wstring_view text) override {
        const std::string bytes = toUtf8(text);
        file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return file_.good();
    }

private:
    std::ofstream file_;
};

std::string narrowName(std::wstring_view name) {
    return toUtf8(name);
}

}  // namespace

std::optional<std::filesystem::path> FileAccess::resolveProgram(std::wstring_view name) {
    std::filesystem::path path = resolvePath(name);
    std::error_code failure;
    if (std::filesystem::is_regular_file(path, failure)) {
        return path;
    }
    if (path.extension().empty()) {
        path += L".lsp";
        if (std::filesystem::is_regular_file(path, failure)) {
            return path;
        }
    }
    return std::nullopt;
}

std::filesystem::path FileAccess::resolvePath(std::wstring_view name) {
    return std::filesystem::path(name);
}

std::unique_ptr<TextStream> FileAccess::open(std::wstring_view name, OpenMode mode) {
    const std::filesystem::path path = resolvePath(name);
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure)) {
        return nullptr;
    }
    if (mode == OpenMode::read) {
        auto stream = std::make_unique<InputStream>(path);
        return stream->isOpen() ? std::move(stream) : nullptr;
    }
    auto stream = std::make_unique<OutputStream>(path, mode == OpenMode::append);
    return stream->isOpen() ? std::move(stream) : nullptr;
}

std::optional<std::wstring> FileAccess::readText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return fromUtf8(bytes);
}

bool FileAccess::append(const std::filesystem::path& source, const std::filesystem::path& target) {
    std::ifstream input(source, std::ios::binary);
    std::ofstream output(target, std::ios::binary | std::ios::app);
    if (!input || !output) {
        return false;
    }
    if (input.peek() != std::ifstream::traits_type::eof()) {
        output << input.rdbuf();
    }
    output.flush();
    return output.good();
}

std::optional<std::wstring> FileAccess::environment(std::wstring_view name) {
    const char* value = std::getenv(narrowName(name).c_str());
    return value ? std::optional(fromUtf8(value)) : std::nullopt;
}

void FileAccess::setEnvironment(std::wstring_view name, std::wstring_view value) {
#ifdef _WIN32
    _putenv_s(narrowName(name).c_str(), toUtf8(value).c_str());
#else
    setenv(narrowName(name).c_str(), toUtf8(value).c_str(), 1);
#endif
}

}  // namespace drafthost::lisp
