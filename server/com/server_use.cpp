#include "server/com/server_use.h"

#include <rpc.h>
#include <rpcdcep.h>

#include <new>
#include <vector>

namespace tessary::server {

namespace {

// Of the client whose call the thread is working on; 0 when it is none from another process.
DWORD callingProcess() {
    unsigned long process = 0;
    return I_RpcBindingInqLocalClientPID(nullptr, &process) == RPC_S_OK ? process : 0;
}

}  // namespace

ServerUse& serverUse() {
    static ServerUse* use = new ServerUse;
    return *use;
}

ServerUse::ServerUse() : changed_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
    if (!changed_) {
        throw std::bad_alloc();
    }
}

ServerUse::Booking::Booking(const std::shared_ptr<ClientWork>& work)
    : client_(serverUse().add(work, number_)) {}

ServerUse::Booking::~Booking() {
    serverUse().remove(client_, number_);
}

void ServerUse::watchClients() {
    watchesClients_ = true;
}

bool ServerUse::isInUse() {
    const std::lock_guard lock(mutex_);
    return !clients_.empty();
}

DWORD ServerUse::currentProcess() const {
    return watchesClients_ ? callingProcess() : 0;
}

ServerUse::ClientId ServerUse::add(const std::shared_ptr<ClientWork>& work, std::uint64_t& number) {
    const DWORD process = currentProcess();
    const std::lock_guard lock(mutex_);
    const ClientId id = clientOf(process);
    number = ++lastNumber_;
    clients_[id].bookings[number] = work;
    SetEvent(changed_);
    return id;
}

void ServerUse::hold() {
    const DWORD process = currentProcess();
    const std::lock_guard lock(mutex_);
    ++clients_[clientOf(process)].holds;
    SetEvent(changed_);
}

void ServerUse::releaseHold() {
    const DWORD process = currentProcess();
    const std::lock_guard lock(mutex_);
    const ClientId id = clientOf(process);
    Client& client = clients_[id];
    client.holds -= client.holds > 0;
    forgetIfIdle(id);
}

// A new client when the process is not known yet.
ServerUse::ClientId ServerUse::clientOf(DWORD process) {
    for (const auto& [id, client] : clients_) {
        if (client.process == process) {
            return id;
        }
    }
    const ClientId id = ++lastNumber_;
    Client& client = clients_[id];
    client.process = process;
    if (process != 0) {
        watch(client, id);
    }
    return id;
}

// A client that cannot be watched keeps the server up until it releases everything.
void ServerUse::watch(Client& client, ClientId id) {
    client.handle = OpenProcess(SYNCHRONIZE, FALSE, client.process);
    if (client.handle) {
        RegisterWaitForSingleObject(&client.wait, client.handle, processEnded, reinterpret_cast<void*>(id),
                                    INFINITE, WT_EXECUTEONLYONCE | WT_EXECUTELONGFUNCTION);
    }
}

void CALLBACK ServerUse::processEnded(void* id, BOOLEAN) {
    serverUse().clientEnded(reinterpret_cast<ClientId>(id));
}

void ServerUse::remove(ClientId id, std::uint64_t number) {
    const std::lock_guard lock(mutex_);
    const auto client = clients_.find(id);
    if (client != clients_.end()) {
        client->second.bookings.erase(number);
        forgetIfIdle(id);
    }
}

void ServerUse::forgetIfIdle(ClientId id) {
    const auto found = clients_.find(id);
    const Client& client = found->second;
    if (!client.bookings.empty() || client.holds > 0) {
        return;
    }
    if (client.wait) {
        UnregisterWait(client.wait);
    }
    if (client.handle) {
        CloseHandle(client.handle);
    }
    clients_.erase(found);
    SetEvent(changed_);
}

void ServerUse::clientEnded(ClientId id) {
    std::vector<std::shared_ptr<ClientWork>> left;
    {
        const std::lock_guard lock(mutex_);
        const auto client = clients_.find(id);
        if (client == clients_.end()) {
            return;
        }
        for (const auto& [number, work] : client->second.bookings) {
            left.push_back(work.lock());
        }
    }
    // Without the lock: a call of the dead client may still be at work. The server stays up until all is
    // given up.
    for (const std::shared_ptr<ClientWork>& work : left) {
        if (work) {
            work->abandon();
        }
    }
    const std::lock_guard lock(mutex_);
    const auto client = clients_.find(id);
    if (client != clients_.end()) {
        client->second.bookings.clear();
        client->second.holds = 0;
        forgetIfIdle(id);
    }
}

}  // namespace tessary::server
