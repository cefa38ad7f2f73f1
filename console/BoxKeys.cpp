#include "console/BoxKeys.h"

#include "platform/Wait.h"

namespace platform {
namespace {

struct NamedKey {
    WORD virtualKey;
    BoxKey key;
};

constexpr NamedKey kSpecialKeys[] = {
    {VK_UP, BoxKey::Up},         {VK_DOWN, BoxKey::Down}, {VK_PRIOR, BoxKey::PageUp},
    {VK_NEXT, BoxKey::PageDown}, {VK_HOME, BoxKey::Home}, {VK_END, BoxKey::End},
};

constexpr char kEsc = static_cast<char>(CConsoleKeys::kEscape);

} // namespace

CBoxKeys::CBoxKeys(CConsoleSession& session) : m_session(session) {
    m_session.Input().Hold();
    m_session.SetRedraws(true);
}

CBoxKeys::~CBoxKeys() {
    m_session.SetRedraws(false);
    CConsoleInput& input = m_session.Input();
    input.Release();
    input.AddEvent(m_wEvents);
}

BoxKey CBoxKeys::Next() {
    const HANDLE hInput = GetStdHandle(STD_INPUT_HANDLE);
    while (m_session.IsTakenOver()) {
        INPUT_RECORD record{};
        const CConsoleInput::Taken taken = m_session.Input().Take(record);
        if (taken == CConsoleInput::Taken::End)
            break;
        if (taken == CConsoleInput::Taken::Nothing) {
            if (WaitForSingleObject(hInput, INFINITE) != WAIT_OBJECT_0)
                break;
            continue;
        }
        const BoxKey key = KeyOf(record);
        if (key != BoxKey::None)
            return key;
    }
    return BoxKey::Closed;
}

BoxKey CBoxKeys::KeyOf(const INPUT_RECORD& record) {
    if (record.EventType == KEY_EVENT)
        return KeyOf(record.Event.KeyEvent);
    m_wEvents |= record.EventType;
    return record.EventType == WINDOW_BUFFER_SIZE_EVENT ? BoxKey::Redraw : BoxKey::Closed;
}

BoxKey CBoxKeys::KeyOf(const KEY_EVENT_RECORD& key) {
    const char character = key.uChar.AsciiChar;
    if (character == '\r' || character == '\n' || character == ' ')
        return BoxKey::Accept;
    if (character == kEsc)
        return BoxKey::Cancel;
    for (const NamedKey& special : kSpecialKeys) {
        if (character == 0 && key.wVirtualKeyCode == special.virtualKey)
            return special.key;
    }
    return BoxKey::None;
}

} // namespace platform
