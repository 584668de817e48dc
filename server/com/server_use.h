#pragma once

// Who uses this server. COM does not always release the references of a client that died (Wine's never does),
// so everything a client holds is booked to its process and given up when the process ends.

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace tessary::server {

// What an object does for its client. Held by the object with shared ownership.
class ClientWork {
public:
    virtual ~ClientWork() = default;
    // The client is gone. Called at any time, on a thread of its own; the object itself may stay for ever.
    virtual void abandon() = 0;
};

class ServerUse {
public:
    using ClientId = std::uint64_t;

    // One object, booked to the client that the calling thread works for until it is destroyed.
    class Booking {
    public:
        // work: null when there is nothing to give up.
        explicit Booking(const std::shared_ptr<ClientWork>& work);
        ~Booking();
        Booking(const Booking&) = delete;
        Booking& operator=(const Booking&) = delete;

    private:
        ClientId client_;
        std::uint64_t number_;
    };

    ServerUse();
    ~ServerUse() = delete;

    // A hold keeps the server up for the calling client without an object: starts of the service, locks of a
    // class factory. A release without a hold before it does nothing.
    void hold();
    void releaseHold();

    // For a local server: clients are other processes from now on. Before, and in a library, all is booked to
    // one client that cannot die.
    void watchClients();
    bool isInUse();
    // Signalled when the answer of isInUse may have changed; resets itself.
    HANDLE changed() const { return changed_; }

private:
    struct Client {
        DWORD process = 0;
        HANDLE handle = nullptr;
        HANDLE wait = nullptr;
        std::uint64_t holds = 0;
        // By number.
        std::map<std::uint64_t, std::weak_ptr<ClientWork>> bookings;
    };

    ClientId add(const std::shared_ptr<ClientWork>& work, std::uint64_t& number);
    void remove(ClientId id, std::uint64_t number);
    DWORD currentProcess() const;
    ClientId clientOf(DWORD process);
    void watch(Client& client, ClientId id);
    void forgetIfIdle(ClientId id);
    void clientEnded(ClientId id);
    static void CALLBACK processEnded(void* id, BOOLEAN);

    std::mutex mutex_;
    HANDLE changed_;
    bool watchesClients_ = false;
    std::uint64_t lastNumber_ = 0;
    std::map<ClientId, Client> clients_;
};

// The one of this program or library. It is never destroyed: clients' threads may outlive everything else.
ServerUse& serverUse();

}  // namespace tessary::server
