#pragma once

// One run of the host from its command line: drafthost.exe run ... and drafthost.exe repl ...

#include <string>
#include <vector>

#include "host/api/geometry.h"

namespace drafthost {

// A shaded picture to be written.
struct ShadedPicture {
    std::wstring path;
    AcGeVector3d towardsEye;
};

struct SessionOptions {
    bool interactive = false;  // repl
    bool echo = false;         // repl: print what is read from standard input
    bool verbose = false;
    bool screen = false;  // dialogs are seen, and the drafter has mouse and keyboard
    std::vector<std::wstring> modules, supportFolders, pictures, exports, programs;
    std::vector<ShadedPicture> shadedPictures;
    std::wstring open, answers, save;  // empty: none
    int pictureSize = 0;               // pixels of the longest side; 0: as usual
};

// False for unusable arguments, for the reason in problem. arguments: without the program's name.
bool parseArguments(const std::vector<std::wstring>& arguments, SessionOptions& options,
                    std::wstring& problem);

// Exit statuses.
enum SessionStatus : int {
    kSessionDone = 0,
    kSessionFailed = 1,  // a program ended in an error, or a file could not be read or written
    kSessionBadUsage = 2,
    kSessionUnbalanced = 70,  // something was left open, allocated or locked
};
int runSession(const SessionOptions& options);

extern const wchar_t* const kUsage;

}  // namespace drafthost

// What drafthost.exe does: parses the arguments and runs the session. Returns the exit status.
extern "C" DRAFTHOST_API int drafthostMain(int argumentCount, wchar_t** arguments);
