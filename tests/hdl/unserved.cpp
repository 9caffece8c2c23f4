// A foreign library that needs a function which the bridge does not have.
extern "C" {
void* mti_GetTopRegion();
[[gnu::visibility("default")]] void unserved_init() {
    mti_GetTopRegion();
}
}
