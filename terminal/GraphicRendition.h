// What the parameters of the sequence ESC [ ... m do to colours and attribute flags. Pure; any
// thread.
#pragma once

#include "platform/Types.h"

struct GraphicRendition {
    int foreground; // console colour, 0 to 15
    int background;
    WORD flags; // ATTR_ bits of terminal/ConsoleScreen.h
    WORD exact; // EXACT_ bits of console/Console.h: the colours that a parameter named
};

// Makes it the rendition after one parameter; values that mean nothing here change nothing. Not
// taken and returned as a value: its parts are written one by one and would be read together, for
// which a processor has to wait.
void ApplyGraphicRendition(int parameter, GraphicRendition& rendition);
