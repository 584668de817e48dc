// drafthost.exe: everything it does is in drafthost.dll.

#include "host/documents/session.h"

int wmain(int argumentCount, wchar_t** arguments) {
    return drafthostMain(argumentCount, arguments);
}
