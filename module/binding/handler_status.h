#pragma once

namespace tessary {

// What the implementation of a LISP function returns. The values 1 to 4 end the LISP call in an error; every
// other value counts as success.
enum class HandlerStatus : int {
    success = 0,  // the result is set; nil when nothing set one
    tooFewArguments = 1,
    wrongType = 2,
    badData = 3,
    textScreen = 4,  // the reason was already printed: show the text screen, where it can be read
};

// Implementation of a LISP function: reads its arguments with the readers of argument_readers.h and sets its
// result.
using Handler = HandlerStatus (*)();

// Prints the message that belongs to the status and returns the host's result code, RSRSLT or RSERR.
int reportHandlerStatus(HandlerStatus status);

}  // namespace tessary
