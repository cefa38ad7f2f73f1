// A telephony module that has no function at all.
extern "C" __attribute__((visibility("default"))) int IsEmpty() {
    return 1;
}
