// The scripted telephony service of the tests. What it is to do and what it was asked is kept here,
// in the test program; the module libtapi32.so beside it answers from that.
#pragma once

#include "telephony/TapiRecords.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

struct SFakeMessage {
    bool isPhone;
    DWORD hDevice;
    DWORD dwMessage;
    DWORD_PTR dwInstance;
    DWORD_PTR dwParam1;
    DWORD_PTR dwParam2;
};

struct SFakeTapi {
    // Handles that the service gives, by what gives them; all other values are 77.
    static constexpr DWORD LINE_APP = 11, LINE = 12, CALL = 13, PHONE_APP = 21, PHONE = 22;
    static constexpr DWORD FIRST_REQUEST = 1000;

    std::vector<std::string> calls;                  // "lineHold 13"; [n]: a record of n bytes
    std::map<std::string, std::deque<LONG>> results; // by function; without any: success
    DWORD dwDevices = 0;                             // of each kind
    std::function<LONG(const std::string& call, LPVOID record)> fill;
    std::function<void(DWORD dwRequest, bool isPhone)> request; // else the reply 0 is posted
    DWORD dwNextRequest = FIRST_REQUEST;
    int loads = 0;
    std::vector<std::string> trace; // "8 text" and "1 text"

    // What the module has been given, and what it has posted.
    DWORD_PTR dwLineInstance = 0;
    DWORD_PTR dwPhoneInstance = 0;
    std::deque<SFakeMessage> messages;
    void (*post)(const SFakeMessage& message) = nullptr;

    void Reply(DWORD dwRequest, LONG lResult, bool isPhone = false) {
        post({isPhone, 0, isPhone ? PHONE_REPLY : LINE_REPLY,
              isPhone ? dwPhoneInstance : dwLineInstance, dwRequest, static_cast<DWORD>(lResult)});
    }
    void CallState(HCALL hCall, DWORD dwState) {
        post({false, hCall, LINE_CALLSTATE, dwLineInstance, dwState, 0});
    }
};

// Offered by the test program.
extern "C" SFakeTapi* FakeTapi();
