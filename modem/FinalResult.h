// CFinalResult: gathers the answer to one AT command and recognises its final result code.
//
// Pure bytes to verdict, without a port or a clock. GetResponse owns one for the time of one
// answer; it is used from one thread. A device that never stops costs a bounded amount of memory
// and a time that grows with the bytes received only.
#pragma once

#include "platform/Types.h"

#include <cstddef>
#include <string>
#include <string_view>

// The final result markers, matched as exact bytes.
inline constexpr std::string_view kFinalOk = "\r\nOK\r\n";
inline constexpr std::string_view kFinalError = "\r\nERROR\r\n";
inline constexpr std::string_view kFinalCmeError = "\r\n+CME ERROR:";
inline constexpr std::string_view kFinalCmsError = "\r\n+CMS ERROR:";

class CFinalResult {
  public:
    enum class Verdict { None, Ok, Error, CmeError, CmsError };

    // The most that is kept of an answer, in bytes: far above any real one (the largest, a listed
    // message store or phone book, is some hundred kilobytes). What comes beyond it is searched for
    // the markers and then dropped.
    static constexpr std::size_t kMaxResponse = std::size_t{1024} * 1024;

    // Gathers into the given text, which is emptied and must outlive this object.
    explicit CFinalResult(std::string& response);

    // Takes the bytes of one read, up to a NUL among them, and judges everything gathered so far:
    // OK before ERROR before the extended errors. The text is then
    //   None:               everything gathered, or what follows an extended error's marker;
    //   Ok:                 what came before the marker, without white space around it;
    //   Error:              empty;
    //   CmeError, CmsError: the error's own text, without white space around it.
    // No bytes are to be added after a verdict.
    Verdict Append(std::string_view bytes);

  private:
    void Gather(std::string_view bytes);
    Verdict Judge();
    Verdict ConcludeOk(std::size_t position);
    Verdict ConcludeExtendedError();
    void CutBehind(std::string_view marker, bool& seen);

    std::string& m_strResponse;
    std::string m_strWindow;       // the end of the text: all that a search still has to look at
    std::size_t m_nTextLength = 0; // of the whole text, the dropped bytes included
    bool m_bCmeSeen = false;
    bool m_bCmsSeen = false;
};
