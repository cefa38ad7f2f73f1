// A thread cannot free itself nor unload the module that it runs in. It only marks that it is
// ending; the next call from outside joins those that are, and gives their holds on the module
// back.
#include "services/telephony/Workers.h"

#include "platform/Thread.h"
#include "services/telephony/ModuleReference.h"

#include <algorithm>
#include <iterator>

namespace telephonyservice {

CWorkers::~CWorkers() {
    for (const auto& worker : m_workers)
        WaitForSingleObject(worker->thread, INFINITE);
}

bool CWorkers::Start(Work work) {
    const std::lock_guard lock(m_mutex);
    m_workers.reserve(m_workers.size() + 1);
    auto worker = std::make_unique<Worker>();
    worker->work = std::move(work);
    if (!HoldModule(false))
        return false;
    worker->thread.Reset(CreateThread(nullptr, 0, Run, worker.get(), 0, nullptr));
    if (worker->thread == nullptr) {
        ReleaseModule();
        return false;
    }
    m_workers.push_back(std::move(worker));
    return true;
}

void CWorkers::Join(bool all) {
    std::vector<std::unique_ptr<Worker>> joined;
    {
        const std::lock_guard lock(m_mutex);
        const auto first =
            std::partition(m_workers.begin(), m_workers.end(),
                           [&](const auto& worker) { return !all && !worker->isEnding; });
        joined.assign(std::move_iterator(first), std::move_iterator(m_workers.end()));
        m_workers.erase(first, m_workers.end());
    }
    // Without the lock: who starts one meanwhile may hold a lock that the others still need.
    for (const auto& worker : joined) {
        WaitForSingleObject(worker->thread, INFINITE);
        ReleaseModule();
    }
}

DWORD CWorkers::Run(LPVOID worker) {
    auto* const self = static_cast<Worker*>(worker);
    self->work(self->isEnding);
    return 0;
}

} // namespace telephonyservice
