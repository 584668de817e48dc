#pragma once

#include <windows.h>

// Root of the exceptions that the window framework throws by pointer. Whoever catches one and does not throw
// it again releases it with Delete.
class CException {
public:
    virtual ~CException() = default;

    // Copies the message into the buffer of `capacity` characters, its terminator included. FALSE when there
    // is no message; the buffer then holds the empty text.
    virtual BOOL GetErrorMessage(LPWSTR buffer, UINT capacity) = 0;
    virtual void Delete() = 0;
};
