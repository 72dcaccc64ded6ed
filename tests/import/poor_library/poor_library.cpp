// A library that has one operation of the many.
extern "C" [[gnu::visibility("default")]] unsigned BASS_GetVersion() { return 0x2040000; }
