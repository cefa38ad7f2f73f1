// Bytes on their way out: appended behind, taken from the front without moving the rest each time.
#pragma once

#include <string>
#include <string_view>

class CByteQueue {
  public:
    bool IsEmpty() const { return m_nTaken == m_bytes.size(); }
    std::size_t GetSize() const { return m_bytes.size() - m_nTaken; }
    std::string_view GetFront(std::size_t limit) const {
        return std::string_view(m_bytes).substr(m_nTaken, limit);
    }

    void Append(std::string_view bytes) { m_bytes += bytes; }
    void Take(std::size_t count) {
        m_nTaken += count;
        if (m_nTaken < m_bytes.size() / 2)
            return;
        m_bytes.erase(0, m_nTaken);
        m_nTaken = 0;
    }

  private:
    std::string m_bytes;
    std::size_t m_nTaken = 0;
};
