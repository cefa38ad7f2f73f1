#include "console/BoxPager.h"

#include <algorithm>
#include <iterator>

namespace platform {
namespace {

constexpr char kLineEnd[] = "\r\n";
constexpr char kPrompt[] = "[ OK ] Enter, Space or Esc";
constexpr char kPromptForMore[] = "[ More ] Enter or Space; Esc: OK";

std::string CaptionOf(const BoxContent& content) {
    return content.sign != 0 ? std::string{content.sign, ' '} + content.caption : content.caption;
}

} // namespace

std::string LinesOf(const BoxContent& content, const char* lineEnd) {
    std::string lines;
    for (const std::string& part : {CaptionOf(content), content.text}) {
        for (const BoxLine& line : LinesOf(part))
            lines += line.text + lineEnd;
    }
    return lines;
}

void CBoxPager::Run(const BoxContent& content, bool knowsColumn) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    m_output.GetInfo(info);
    m_output.SetAttribute(CConsoleColours::kDefault);
    GoBelow(knowsColumn);

    const COORD size = m_output.ReadSize();
    std::vector<BoxLine> lines = WrapText(CaptionOf(content), std::max(size.X - 1, 1));
    std::vector<BoxLine> text = WrapText(content.text, std::max(size.X - 1, 1));
    std::move(text.begin(), text.end(), std::back_inserter(lines));
    const auto page = static_cast<std::size_t>(std::max(size.Y - 1, 1)); // and the prompt
    bool goesOn = true;
    for (std::size_t shown = 0; shown < lines.size() && goesOn;) {
        const std::size_t end = std::min(shown + page, lines.size());
        for (; shown < end; ++shown)
            Write(lines[shown].text + kLineEnd);
        goesOn = Confirm(shown < lines.size() ? kPromptForMore : kPrompt);
    }
    m_output.SetAttribute(info.wAttributes);
}

void CBoxPager::GoBelow(bool knowsColumn) {
    if (knowsColumn && m_output.IsTerminal())
        m_output.GoBelow();
    else
        Write(kLineEnd);
}

// FALSE when no more is wanted.
bool CBoxPager::Confirm(const char* prompt) {
    Write(prompt);
    BoxKey key = m_keys.Next();
    while (key != BoxKey::Accept && key != BoxKey::Cancel && key != BoxKey::Closed) {
        if (key == BoxKey::Redraw) {
            GoBelow(true);
            Write(prompt);
        }
        key = m_keys.Next();
    }
    if (key == BoxKey::Closed)
        return false;
    Write(kLineEnd);
    return key == BoxKey::Accept;
}

void CBoxPager::Write(const std::string& text) {
    m_output.Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

} // namespace platform
