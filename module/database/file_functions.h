#pragma once

// LISP functions for files and folders. What the system refuses gives nil without a message; only the checks
// of arguments differ from function to function, and programs depend on that.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus makeFolder();
HandlerStatus removeFolder();
HandlerStatus deleteFile();
HandlerStatus listFiles();
HandlerStatus copyFile();
HandlerStatus copyFileIfChanged();
HandlerStatus moveFile();

}  // namespace tessary
