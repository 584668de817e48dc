#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

#include "host/database/names.h"
#include "host/documents/session.h"
#include "host/graphics/picture.h"

namespace drafthost {

const wchar_t* const kUsage =
    L"usage: drafthost run [option]... PROGRAM.lsp...\n"
    L"       drafthost repl [option]... [PROGRAM.lsp]...\n"
    L"  --module FILE     loads an add-in module; may be given several times\n"
    L"  --open FILE       the drawing to open; otherwise a new one\n"
    L"  --answers FILE    answers for prompts, picks, dialogs and message boxes\n"
    L"  --save FILE       writes the drawing as DXF afterwards\n"
    L"  --picture FILE    writes a picture, .png or .svg, afterwards; may be given several times\n"
    L"  --shaded FILE     writes a shaded picture, .png, afterwards; may be given several times\n"
    L"  --view-from X,Y,Z direction towards the eye for the shaded pictures behind it; otherwise -1,-1,1\n"
    L"  --picture-size N  pixels of the pictures' longest side, 16 to 10000; otherwise 1600\n"
    L"  --export FILE     writes the drawing's solids, .stl or .obj, or a list of them, .csv, afterwards; "
    L"may\n"
    L"                    be given several times\n"
    L"  --support DIR     a folder to search for files; may be given several times\n"
    L"  --echo on|off     repl: prints what is read from standard input (off unless given)\n"
    L"  --screen          dialogs are left to mouse and keyboard, unless there are answers\n"
    L"  --verbose         reports message boxes and the like on standard error\n"
    L"Exit status: 0 fine; 1 a program ended in an error or a file could not be read or written; 2 unusable "
    L"arguments.\n";

namespace {

// Options with a file or folder: where it goes.
struct FileOption {
    const wchar_t* name;
    std::wstring SessionOptions::*one;
    std::vector<std::wstring> SessionOptions::*several;
};
constexpr FileOption kFileOptions[] = {
    {L"--module", nullptr, &SessionOptions::modules},
    {L"--open", &SessionOptions::open, nullptr},
    {L"--answers", &SessionOptions::answers, nullptr},
    {L"--save", &SessionOptions::save, nullptr},
    {L"--picture", nullptr, &SessionOptions::pictures},
    {L"--export", nullptr, &SessionOptions::exports},
    {L"--support", nullptr, &SessionOptions::supportFolders},
};

bool hasExtension(const std::wstring& path, std::initializer_list<const wchar_t*> extensions) {
    const std::size_t dot = path.find_last_of(L'.');
    const std::wstring own = dot == std::wstring::npos ? L"" : path.substr(dot);
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](const wchar_t* extension) { return equalNames(own, extension); });
}

bool readSize(const std::wstring& text, int& size) {
    if (text.empty() || text.size() > 5 || text.find_first_not_of(L"0123456789") != std::wstring::npos)
        return false;
    size = std::stoi(text);
    return size >= graphics::kSmallestPicture && size <= graphics::kLargestPicture;
}

// Three numbers with commas between them, not all of them zero.
bool readDirection(const std::wstring& text, AcGeVector3d& direction) {
    std::wistringstream stream(text);
    stream.imbue(std::locale::classic());
    wchar_t comma1 = 0, comma2 = 0;
    stream >> direction.x >> comma1 >> direction.y >> comma2 >> direction.z;
    const bool complete =
        stream && stream.peek() == std::char_traits<wchar_t>::eof() && comma1 == L',' && comma2 == L',';
    const double length = direction.length();
    if (!complete || !std::isfinite(length) || !(length > 0))
        return false;
    direction = direction / length;
    return std::isfinite(direction.length()) && direction.length() > 0.5;
}

std::wstring checkTogether(const SessionOptions& options) {
    for (const std::wstring& picture : options.pictures) {
        if (!hasExtension(picture, {L".png", L".svg"}))
            return L"--picture " + picture + L": the name must end in .png or .svg";
    }
    for (const ShadedPicture& picture : options.shadedPictures) {
        if (!hasExtension(picture.path, {L".png"}))
            return L"--shaded " + picture.path + L": the name must end in .png";
    }
    for (const std::wstring& file : options.exports) {
        if (!hasExtension(file, {L".stl", L".obj", L".csv"}))
            return L"--export " + file + L": the name must end in .stl, .obj or .csv";
    }
    if (!options.save.empty() && !hasExtension(options.save, {L".dxf"})) {
        return L"--save " + options.save + L": the name must end in .dxf";
    }
    const bool writes = !options.save.empty() || !options.pictures.empty() ||
                        !options.shadedPictures.empty() || !options.exports.empty();
    if (!options.interactive && options.programs.empty() && !writes)
        return L"no program to run";
    return {};
}

}  // namespace

bool parseArguments(const std::vector<std::wstring>& arguments, SessionOptions& options,
                    std::wstring& problem) {
    const auto fail = [&](std::wstring text) {
        problem = std::move(text);
        return false;
    };
    if (arguments.empty())
        return fail(L"run or repl is missing");
    if (arguments[0] != L"run" && arguments[0] != L"repl")
        return fail(L"unknown verb " + arguments[0]);
    options.interactive = arguments[0] == L"repl";
    AcGeVector3d viewFrom = graphics::kShadedFrom;
    bool viewUsed = true;  // some picture is behind the last --view-from
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::wstring& argument = arguments[i];
        if (!argument.starts_with(L"--")) {
            options.programs.push_back(argument);
            continue;
        }
        if (argument == L"--verbose") {
            options.verbose = true;
            continue;
        }
        if (argument == L"--screen") {
            options.screen = true;
            continue;
        }
        const bool last = i + 1 == arguments.size();
        if (argument == L"--picture-size") {
            if (last || !readSize(arguments[++i], options.pictureSize))
                return fail(L"--picture-size needs a number from 16 to 10000");
            continue;
        }
        if (argument == L"--view-from") {
            if (last || !readDirection(arguments[++i], viewFrom))
                return fail(L"--view-from needs three numbers X,Y,Z, not all of them 0");
            viewUsed = false;
            continue;
        }
        if (argument == L"--shaded") {
            if (last || arguments[i + 1].empty())
                return fail(L"--shaded needs a name");
            options.shadedPictures.push_back({arguments[++i], viewFrom});
            viewUsed = true;
            continue;
        }
        if (argument == L"--echo") {
            if (last || (arguments[i + 1] != L"on" && arguments[i + 1] != L"off"))
                return fail(L"--echo needs on or off");
            options.echo = arguments[++i] == L"on";
            continue;
        }
        const auto option = std::find_if(std::begin(kFileOptions), std::end(kFileOptions),
                                         [&](const FileOption& row) { return argument == row.name; });
        if (option == std::end(kFileOptions))
            return fail(L"unknown option " + argument);
        if (last || arguments[i + 1].empty())
            return fail(argument + L" needs a name");
        const std::wstring& value = arguments[++i];
        if (option->several) {
            (options.*option->several).push_back(value);
        } else {
            if (!(options.*option->one).empty())
                return fail(argument + L" was given twice");
            options.*option->one = value;
        }
    }
    if (!viewUsed)
        return fail(L"--view-from must stand before the --shaded that it is for");
    problem = checkTogether(options);
    return problem.empty();
}

}  // namespace drafthost
