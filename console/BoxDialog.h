// A message box on the terminal's alternate screen: drawn over what the terminal shows, which is
// there again, unchanged, when the box is closed.
//
// Used by the thread that has the console; ends with its keys.
#pragma once

#include "console/BoxKeys.h"
#include "console/BoxLayout.h"

#include <optional>

namespace platform {

class CBoxDialog {
  public:
    CBoxDialog(CConsoleSession& session, CBoxKeys& keys, const BoxContent& content)
        : m_session(session), m_keys(keys), m_content(content) {}

    // Shows the box until it is closed. FALSE when the terminal has no alternate screen: nothing is
    // shown then.
    bool Run();

  private:
    bool Show();
    void Draw();
    void Scroll(BoxKey key);

    CConsoleSession& m_session;
    CBoxKeys& m_keys;
    const BoxContent& m_content;
    std::optional<CBoxLayout> m_layout; // for the window's present size
    int m_nTop = 0;
};

} // namespace platform
