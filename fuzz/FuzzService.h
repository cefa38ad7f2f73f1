// CFuzzService: the telephony service of the fuzzers, whose every answer is taken from the input.
//
// Answers run out with the input, and are then successes that tell nothing. One run at a time, on
// one thread.
#pragma once

#include "tests/telephony/ScriptedService.h"

namespace fuzz {

class CFuzzService final : public CScriptedService {
  public:
    // The bytes outlive the service.
    explicit CFuzzService(std::span<const BYTE> bytes);

    bool CanLoad(LPCSTR function) override;
    LONG Answer(ServiceCall& call) override;
    bool HasMessage() override { return m_bHasMessage = !m_bHasMessage; }
    void Deliver() override;
    void Trace(DWORD, const std::string&) override {}

  private:
    LONG TakeResult();

    DWORD m_dwRequest = 0; // the newest one
    bool m_bHasMessage = false;
};

// The next byte of the input, 0 behind its end; and whether there is one.
BYTE TakeByte();
bool HasBytes();

} // namespace fuzz
