#pragma once

// A database server of the test's own, in this process, that the add-in finds as it finds the real one. It
// keeps no data: it writes down what it is asked and answers what the test gave it.

#include "module/binding/variant.h"
#include "module/database/com_pointer.h"

#include "tessary_server.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tessary::testing {

class FakeServer {
public:
    // Registered as long as it lives; one lives at a time, on a thread that has initialised COM.
    FakeServer();
    ~FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;

    // The calls in order, as "1.OpenDatabase a.mdb 0 -1": number of the object (S: the service object),
    // method, arguments. Without the health checks that come before every function, when asked for so.
    std::vector<std::string> calls() const;
    std::vector<std::string> allCalls() const { return calls_; }

    // Answers of the next calls of a method, first in first out; then it succeeds.
    void answerFlag(const std::string& method, VARIANT_BOOL flag) { flags_[method].push_back(flag); }
    void answerText(const std::string& method, const std::wstring& text) { texts_[method].push_back(text); }
    void answerValue(const std::string& method, Variant value) {
        values_[method].push_back(std::move(value));
    }
    // Done when a call is made, before it is answered; the call as calls() shows it. Once.
    void when(const std::string& call, std::function<void()> reaction) {
        reactions_[call] = std::move(reaction);
    }
    // The next call fails altogether; CreateInstance is that of an object.
    void failCall(const std::string& method, HRESULT result) { failures_[method] = result; }

    // All calls of all connections that there are fail from now on, as when their process has died.
    void die() { lastLost_ = connectionNumber_; }

    // Pending from now on; 0: none is.
    void setError(long code, const std::wstring& text) {
        errorCode_ = code;
        errorText_ = text;
    }
    // No new objects from now on.
    void refuseObjects() { refusesObjects_ = true; }
    // Objects that clients hold.
    int objectCount() const { return objectCount_; }

private:
    friend class FakeConnection;
    friend class FakeService;
    friend class FakeFactory;

    void record(const std::string& call);
    HRESULT takeFailure(const std::string& method);
    VARIANT_BOOL takeFlag(const std::string& method, VARIANT_BOOL otherwise);
    std::wstring takeText(const std::string& method, const std::wstring& otherwise);
    Variant takeValue(const std::string& method);

    std::vector<std::string> calls_;
    std::map<std::string, std::deque<VARIANT_BOOL>> flags_;
    std::map<std::string, std::deque<std::wstring>> texts_;
    std::map<std::string, std::deque<Variant>> values_;
    std::map<std::string, HRESULT> failures_;
    std::map<std::string, std::function<void()>> reactions_;
    long errorCode_ = 0;
    std::wstring errorText_;
    bool refusesObjects_ = false;
    int objectCount_ = 0;
    int connectionNumber_ = 0;
    int lastLost_ = 0;
    std::vector<DWORD> registrations_;
};

// An array value from its elements.
Variant arrayOf(std::vector<Variant> elements);

}  // namespace tessary::testing
