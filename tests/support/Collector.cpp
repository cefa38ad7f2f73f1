#include "tests/support/Collector.h"

void CCollector::OnReady(short) {
    char bytes[65536];
    const ssize_t count = read(m_pipe.reader.Get(), bytes, sizeof(bytes));
    if (count > 0)
        m_text.append(bytes, static_cast<std::size_t>(count));
    else
        m_pipe.reader.Reset();
}
