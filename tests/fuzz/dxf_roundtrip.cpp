// Reads and writes many DXF files in one process:
//
//     dxf_roundtrip LIST
//
// Each line of LIST holds the name of a file, a tab, and the name of the file to write. Each file is read,
// written, read again and written again; the second output must be the same to the byte. Prints one line for
// each file, and fails when one of them did.

#include <cstdio>
#include <fstream>
#include <string>

#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "host/exchange/file_replace.h"

using namespace drafthost::exchange;

namespace {

std::string narrowed(const std::wstring& text) {
    std::string result;
    for (const wchar_t c : text)
        result += c < 0x80 ? static_cast<char>(c) : '?';
    return result;
}

// Empty when the drawing survives; otherwise what went wrong.
std::string roundTrip(const std::string& from, const std::string& to, std::string& audit) {
    AcDbDatabase first(false, true);
    const DxfReadResult read = readDxf(first, from);
    if (read.status != Acad::eOk)
        return narrowed(read.message);
    audit = narrowed(read.audit.summary());
    for (const AuditFinding& finding : read.audit.findings())
        if (finding.code != AuditCode::Completed)
            audit += "\n    " + std::to_string(static_cast<int>(finding.code)) + " line " +
                     std::to_string(finding.line) + ": " + narrowed(finding.text);

    const std::string once = dxfBytes(first);
    if (replaceFile(to, once) != Acad::eOk)
        return "cannot be written";
    AcDbDatabase second(false, true);
    const DxfReadResult again = readDxfBytes(second, once, L"written");
    if (again.status != Acad::eOk)
        return narrowed(again.message);
    if (dxfBytes(second) != once) {
        replaceFile(to + ".second", dxfBytes(second));
        return "the second output differs from the first";
    }
    return "";
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: dxf_roundtrip LIST\n");
        return 2;
    }
    int failures = 0;
    std::ifstream list(arguments[1]);
    for (std::string line; std::getline(list, line);) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        const std::string from = line.substr(0, tab);
        std::string audit;
        const std::string problem = roundTrip(from, line.substr(tab + 1), audit);
        if (!problem.empty())
            ++failures;
        std::printf("%s: %s: %s\n", problem.empty() ? "ok" : "FAILED", from.c_str(),
                    problem.empty() ? audit.c_str() : problem.c_str());
    }
    std::printf("%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}
