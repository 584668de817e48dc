#pragma once

// What the language needs of its surroundings: a place to print to and a way to files.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace drafthost::lisp {

// The command line as the language sees it.
class Console {
public:
    virtual ~Console() = default;
    // Text as printed, with \n for line ends; never ends a line by itself.
    virtual void write(std::wstring_view text) = 0;
    virtual void flush() {}
    // Nothing stands on the current line, whoever printed last.
    virtual bool atLineStart() const = 0;
};

// An open text file. Text is UTF-8 on disk; line ends are \n here and the platform's on disk.
class TextStream {
public:
    virtual ~TextStream() = default;
    // The next line without its end; nothing at the end of the file.
    virtual std::optional<std::wstring> readLine() = 0;
    // The next character (a code unit of std::wstring); nothing at the end of the file.
    virtual std::optional<wchar_t> readCharacter() = 0;
    // false when the text could not be written (disk full, opened for reading)
    virtual bool write(std::wstring_view text) = 0;
};

enum class OpenMode { read, write, append };

// The way of the functions open, load, findfile, vl-file-... to files. The default implementation
// takes paths as they are, relative ones from the current folder. A host overrides resolve... to
// search its support path.
class FileAccess {
public:
    virtual ~FileAccess() = default;
    // The full path of an existing file that `load` means: name as given, then with .lsp appended
    // where it has no extension. Nothing when there is none.
    virtual std::optional<std::filesystem::path> resolveProgram(std::wstring_view name);
    // The path that open, vl-file-copy... use for a name as written in the program.
    virtual std::filesystem::path resolvePath(std::wstring_view name);
    // null when the file cannot be opened
    virtual std::unique_ptr<TextStream> open(std::wstring_view name, OpenMode mode);
    // Appends the bytes of one file to another; false when either cannot be used.
    virtual bool append(const std::filesystem::path& source, const std::filesystem::path& target);
    // Environment variables of getenv and setenv: those of the process unless a host keeps its own.
    virtual std::optional<std::wstring> environment(std::wstring_view name);
    virtual void setEnvironment(std::wstring_view name, std::wstring_view value);
    // The whole file as text, UTF-8 with or without byte order mark; nothing when unreadable.
    virtual std::optional<std::wstring> readText(const std::filesystem::path& path);
};

}  // namespace drafthost::lisp
