#pragma once

// LISP typed at the prompt of the real host, in this process, with the add-in loaded as drafters load it.

#include <string>
#include <vector>

namespace tessary::testing {

// Types the lines and returns what was printed after each "Command: ", without the line break at the end.
// Lines that answer a message box (the text of a button) or go on with an expression have no output of their
// own.
// supportFolders: where the host looks for files. status: the exit status that the session must have.
std::vector<std::string> runLisp(const std::vector<std::string>& lines,
                                 const std::vector<std::wstring>& supportFolders = {}, int status = 0);

}  // namespace tessary::testing
