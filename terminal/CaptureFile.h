// The file of -O: the commands and answers of a command file run, every line ended with CR LF, or
// the traffic of any other session.
//
// Owned by whoever writes it, used from one thread at a time. Closes itself when it goes; Close
// tells whether all that was written is safe.
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

    // Writes a text with its LFs removed and each CR made CR LF. TRUE also when the file is not
    // open: there is nothing to capture then. FALSE, with the last error set, when the file did not
    // take all.
    BOOL WriteCapture(std::string_view text);

    // Writes bytes as they are to the open file. FALSE, with the last error set, when the file did
    // not take all.
    BOOL WriteBytes(std::string_view bytes);

    // FALSE, with the last error set, when what was written could not be kept. Harmless when
    // closed.
    BOOL Close();

  private:
    CUniqueHandle m_hFile;
};

// The text as it goes to the file: LFs removed, each CR made CR LF.
std::string ToCaptureText(std::string_view text);
