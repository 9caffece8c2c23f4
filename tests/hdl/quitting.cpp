// A foreign library that says goodbye.
extern "C" {
void mti_AddQuitCB(void (*function)(void*), void* argument);
void mti_PrintFormatted(const char* format, ...);
[[gnu::visibility("default")]] void quitting_init() {
    mti_AddQuitCB([](void*) { mti_PrintFormatted("the library quits\n"); }, nullptr);
}
}
