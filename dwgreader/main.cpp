// dwgreader FILE.dwg: writes the drawing to standard output, as DXF. A process of its own, so that a damaged
// file that makes the library crash or run forever harms nobody: whoever starts it sets a time limit.
//
// Exit status: 0 the drawing is written; 1 the file is damaged, or does not fit in memory; 2 unusable
// arguments; 3 the file cannot be opened; 4 its version is not read. With 1 nothing or a comment (999) with
// the reason is written.

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "dwgreader/collector.h"
#include "libdwgr.h"

namespace {

enum Status : int { kWritten = 0, kDamaged = 1, kUsage = 2, kCannotOpen = 3, kUnknownVersion = 4 };

bool write(const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

const char* reasonOf(DRW::error error) {
    switch (error) {
        case DRW::BAD_READ_METADATA:
        case DRW::BAD_READ_FILE_HEADER: return "the beginning of the file is damaged";
        case DRW::BAD_READ_HEADER: return "the header variables are damaged";
        case DRW::BAD_READ_CLASSES: return "the list of classes is damaged";
        case DRW::BAD_READ_HANDLES: return "the list of objects is damaged";
        case DRW::BAD_READ_TABLES: return "the tables are damaged";
        case DRW::BAD_READ_BLOCKS: return "the blocks are damaged";
        case DRW::BAD_READ_ENTITIES: return "the entities are damaged";
        case DRW::BAD_READ_OBJECTS: return "the objects are damaged";
        default: return "the file is damaged";
    }
}

Status damaged(const std::string& reason) {
    write("999\n" + reason + "\n");
    return kDamaged;
}

// The version decides how texts in extended data are stored, and the library only tells it after reading.
bool hasWideTexts(const std::filesystem::path& file) {
    char version[7] = {};
    std::ifstream(file, std::ios::binary).read(version, 6);
    return std::string_view(version) >= "AC1021";
}

Status convert(const std::filesystem::path& file) {
    dwgreader::Drawing drawing;
    dwgreader::Collector collector(drawing, hasWideTexts(file));
    dwgR reader(file);
    if (!reader.read(&collector, false)) {
        if (reader.getError() == DRW::BAD_OPEN)
            return kCannotOpen;
        return reader.getError() == DRW::BAD_VERSION ? kUnknownVersion : damaged(reasonOf(reader.getError()));
    }
    collector.finishHeader();
    return write(dwgreader::dxfFile(drawing)) ? kWritten : kDamaged;
}

}  // namespace

int wmain(int argumentCount, wchar_t** arguments) {
    // A crash ends the process; no window may wait for somebody who sees it.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    _setmode(_fileno(stdout), _O_BINARY);
    if (argumentCount != 2) {
        std::fputs("usage: dwgreader FILE.dwg\n", stderr);
        return kUsage;
    }
    try {
        return convert(arguments[1]);
    } catch (const std::bad_alloc&) {
        return damaged("the file asks for more memory than there is");
    } catch (const std::exception& error) {
        return damaged(error.what());
    }
}
