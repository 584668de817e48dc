#pragma once

// The coclass DatabaseService: a client that has started it keeps the server up between its connections.

#include "server/com/automation_object.h"
#include "server/com/server_use.h"

#include <tessary_server.h>

namespace tessary::server {

class ServiceObject final : public AutomationObject<DatabaseService> {
public:
    HRESULT STDMETHODCALLTYPE Start() override {
        return guarded(__uuidof(DatabaseService), [] { serverUse().hold(); });
    }
    HRESULT STDMETHODCALLTYPE Stop() override {
        return guarded(__uuidof(DatabaseService), [] { serverUse().releaseHold(); });
    }

private:
    ServerUse::Booking booking_{nullptr};
};

}  // namespace tessary::server
