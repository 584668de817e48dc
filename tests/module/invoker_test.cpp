#include "module/binding/invoker.h"

#include "framework/exception.h"
#include "host/api/types.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tessary::testing {

namespace {

class TestException : public CException {
public:
    BOOL GetErrorMessage(LPWSTR, UINT) override { return FALSE; }
    void Delete() override { ++deletions; }
    int deletions = 0;
};

TestException theException;

template <int status>
HandlerStatus answer() {
    return static_cast<HandlerStatus>(status);
}

HandlerStatus throwFrameworkException() {
    throw static_cast<CException*>(&theException);
}

HandlerStatus throwStandardException() {
    throw std::runtime_error("broken");
}

TEST(InvokeHandler, onlyTheFourArgumentStatusesAreErrors) {
    EXPECT_EQ(RSRSLT, invokeHandler(answer<0>));
    EXPECT_EQ(RSERR, invokeHandler(answer<1>));
    EXPECT_EQ(RSERR, invokeHandler(answer<2>));
    EXPECT_EQ(RSERR, invokeHandler(answer<3>));
    EXPECT_EQ(RSERR, invokeHandler(answer<4>));
    EXPECT_EQ(RSRSLT, invokeHandler(answer<5>));
    EXPECT_EQ(RSRSLT, invokeHandler(answer<-1>));
}

TEST(InvokeHandler, exceptionsReachTheHostUnchanged) {
    try {
        invokeHandler(throwFrameworkException);
        FAIL() << "the exception was swallowed";
    } catch (CException* exception) {
        EXPECT_EQ(&theException, exception);
        EXPECT_EQ(0, theException.deletions);
    }
    EXPECT_THROW(invokeHandler(throwStandardException), std::runtime_error);
}

}  // namespace

}  // namespace tessary::testing
