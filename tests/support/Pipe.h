// A pipe whose ends close themselves.
#pragma once

#include "platform/objects/Descriptor.h"

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
