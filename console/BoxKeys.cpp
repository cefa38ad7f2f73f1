#include "console/BoxKeys.h"

#include "platform/Wait.h"

namespace platform {
namespace {

struct NamedKey {
    WORD virtualKey;
    BoxKey key;
};

constexpr NamedKey SPECIAL_KEYS[] = {
    {VK_UP, BoxKey::UP},          {VK_DOWN, BoxKey::DOWN}, {VK_PRIOR, BoxKey::PAGE_UP},
    {VK_NEXT, BoxKey::PAGE_DOWN}, {VK_HOME, BoxKey::HOME}, {VK_END, BoxKey::END},
};

constexpr char ESC = static_cast<char>(CConsoleKeys::ESCAPE);

} // namespace

CBoxKeys::CBoxKeys(CConsoleSession& session) : m_session(session) {
    m_session.Input().Hold();
    m_session.SetRedraws(true);
}

CBoxKeys::~CBoxKeys() {
    m_session.SetRedraws(false);
    CConsoleInput& input = m_session.Input();
    input.Release();
    if (m_bControlEvent)
        input.AddMenuEvent();
    if (m_bSizeEvent)
        input.AddSizeEvent(m_size);
}

BoxKey CBoxKeys::Next() {
    const HANDLE hInput = GetStdHandle(STD_INPUT_HANDLE);
    while (m_session.IsTakenOver()) {
        INPUT_RECORD record{};
        const CConsoleInput::Taken taken = m_session.Input().Take(record);
        if (taken == CConsoleInput::Taken::END)
            break;
        if (taken == CConsoleInput::Taken::NOTHING) {
            if (WaitForSingleObject(hInput, INFINITE) != WAIT_OBJECT_0)
                break;
            continue;
        }
        const BoxKey key = KeyOf(record);
        if (key != BoxKey::NONE)
            return key;
    }
    return BoxKey::CLOSED;
}

BoxKey CBoxKeys::KeyOf(const INPUT_RECORD& record) {
    switch (record.EventType) {
    case KEY_EVENT:
        return KeyOf(record.Event.KeyEvent);
    case WINDOW_BUFFER_SIZE_EVENT:
        m_bSizeEvent = true;
        m_size = record.Event.WindowBufferSizeEvent;
        return BoxKey::REDRAW;
    default:
        m_bControlEvent = true;
        return BoxKey::CLOSED;
    }
}

BoxKey CBoxKeys::KeyOf(const KEY_EVENT_RECORD& key) {
    const char character = key.uChar.AsciiChar;
    if (character == '\r' || character == '\n' || character == ' ')
        return BoxKey::ACCEPT;
    if (character == ESC)
        return BoxKey::CANCEL;
    for (const NamedKey& special : SPECIAL_KEYS) {
        if (character == 0 && key.wVirtualKeyCode == special.virtualKey)
            return special.key;
    }
    return BoxKey::NONE;
}

} // namespace platform
