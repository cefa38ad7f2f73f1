#include "services/telephony/Workers.h"

#include "platform/Thread.h"
#include "services/telephony/ModuleReference.h"

#include <algorithm>

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

void CWorkers::Reap() {
    std::vector<std::unique_ptr<Worker>> ended;
    {
        const std::lock_guard lock(m_mutex);
        const auto firstEnded =
            std::stable_partition(m_workers.begin(), m_workers.end(),
                                  [](const auto& worker) { return !worker->isEnding; });
        std::move(firstEnded, m_workers.end(), std::back_inserter(ended));
        m_workers.erase(firstEnded, m_workers.end());
    }
    for (const auto& worker : ended) {
        WaitForSingleObject(worker->thread, INFINITE);
        ReleaseModule();
    }
}

void CWorkers::Await() {
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& worker : m_workers)
            WaitForSingleObject(worker->thread, INFINITE);
    }
    Reap();
}

DWORD CWorkers::Run(LPVOID worker) {
    auto* const self = static_cast<Worker*>(worker);
    self->work(self->isEnding);
    return 0;
}

} // namespace telephonyservice
