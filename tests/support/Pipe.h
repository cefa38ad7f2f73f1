// Descriptors that close themselves: of a pipe, of a pseudo-terminal.
#pragma once

#include "platform/objects/HandleObject.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

using platform::CDescriptor;

struct Pipe {
    Pipe() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        reader.Reset(ends[0]);
        writer.Reset(ends[1]);
    }
    CDescriptor reader;
    CDescriptor writer;
};

// The master of a new pseudo-terminal, blocking, and the path of its slave.
CDescriptor OpenMaster(std::string& slavePath);
// The far end of a serial device's cable, raw and not blocking. What was left at it is discarded.
CDescriptor OpenFarEnd(const std::string& path);
