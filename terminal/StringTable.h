// The numbered texts that the user sees.
//
// A constant table; any thread may call LoadString, nothing can fail.
#pragma once

inline constexpr unsigned kTextHint = 100;
inline constexpr unsigned kTextCannotOpen = 101;
inline constexpr unsigned kTextNoTelephony = 102;
inline constexpr unsigned kTextNoDevices = 103;
inline constexpr unsigned kTextDeviceList = 104;
inline constexpr unsigned kTextDevicePrompt = 105;
inline constexpr unsigned kTextBaudMenu = 106;
inline constexpr unsigned kTextCanceled = 107;
inline constexpr unsigned kTextInvalidSelection = 108;
inline constexpr unsigned kTextFlowMenu = 109;

// The text of a number; an empty text for a number that the table does not have.
const char* LoadString(unsigned id);
