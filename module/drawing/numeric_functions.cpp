#include "module/drawing/numeric_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"

#include <cmath>
#include <cstdlib>

namespace tessary {

namespace {

HandlerStatus returnOfNumber(double (*function)(double)) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    double number = 0;
    if (!readNumber(cursor, number)) {
        return HandlerStatus::wrongType;
    }
    acedRetReal(function(number));
    return HandlerStatus::success;
}

HandlerStatus returnSystemMetric(int metric) {
    acedRetInt(GetSystemMetrics(metric));
    return HandlerStatus::success;
}

}  // namespace

// Numbers outside [-1, 1] give the library's not-a-number, which LISP programs can test.
HandlerStatus arcSine() {
    return returnOfNumber(std::asin);
}

HandlerStatus arcCosine() {
    return returnOfNumber(std::acos);
}

HandlerStatus power() {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    double base = 0;
    double exponent = 0;
    if (!readNumber(cursor, base) || !readNumber(cursor, exponent)) {
        return HandlerStatus::wrongType;
    }
    acedRetReal(std::pow(base, exponent));
    return HandlerStatus::success;
}

// Reads as much of the text as is a number. What is no text is nil, not an error: callers pass field values
// unseen. They may well begin with "inf" or "nan", which the newer conversions take for numbers.
HandlerStatus textToReal() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring text;
    if (readString(cursor, text)) {
        acedRetReal(_wtof(text.c_str()));
    }
    return HandlerStatus::success;
}

HandlerStatus randomInteger() {
    constexpr int noLimit = -1;
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    int limit = noLimit;
    readInteger(cursor, limit);
    if (limit == 0) {
        // There is no number below 0 to choose; dividing by the limit would end the host.
        return HandlerStatus::badData;
    }
    const int drawn = std::rand();
    returnInteger(limit == noLimit ? drawn : drawn % limit);
    return HandlerStatus::success;
}

HandlerStatus screenWidth() {
    return returnSystemMetric(SM_CXSCREEN);
}

HandlerStatus screenHeight() {
    return returnSystemMetric(SM_CYSCREEN);
}

}  // namespace tessary
