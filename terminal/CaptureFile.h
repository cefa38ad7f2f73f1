// The capture file of a command file run (-O): commands and answers, every line ended with CR LF.
//
// Owned by the run, used from its thread. Closes itself when it goes; Close tells whether all that
// was written is safe.
#pragma once

#include "common/UniqueHandle.h"
#include "platform/Types.h"

#include <string>
#include <string_view>

class CCaptureFile {
  public:
    // Creates the file, or empties it, for this program alone. FALSE, with the last error set, when
    // that fails; a file that somebody else has open keeps its content.
    BOOL Open(const std::string& fileName);

    BOOL IsOpen() const { return m_hFile ? TRUE : FALSE; }

    // Writes a text with its LFs removed and each CR made CR LF. TRUE also when the file is not
    // open: there is nothing to capture then. FALSE, with the last error set, when the file did not
    // take all.
    BOOL WriteCapture(std::string_view text);

    // FALSE, with the last error set, when what was written could not be kept. Harmless when
    // closed.
    BOOL Close();

  private:
    CUniqueHandle m_hFile;
};

// The text as it goes to the file: LFs removed, each CR made CR LF.
std::string ToCaptureText(std::string_view text);
