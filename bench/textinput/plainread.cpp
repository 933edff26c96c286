// A read of memory behind a call into a shared library: what no question to the shared state can be cheaper than.
extern "C" [[gnu::visibility("default")]] int plainRead(const volatile short *memory);

extern "C" int plainRead(const volatile short *memory) { return *memory; }
