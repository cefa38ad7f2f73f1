#include "tests/endtoend/Collector.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

CCollector::CCollector() {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    m_reader = CDescriptor(ends[0]);
    m_writer = CDescriptor(ends[1]);
}

short CCollector::GetEvents() const {
    return POLLIN;
}

void CCollector::OnReady(short) {
    std::array<char, 65536> bytes;
    const ssize_t count = read(m_reader.Get(), bytes.data(), bytes.size());
    if (count > 0)
        m_text.append(bytes.data(), static_cast<std::size_t>(count));
    else
        m_reader.Reset();
}
