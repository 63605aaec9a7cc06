// A module of another version, which orv must not use.
extern "C" int orv_vector_version() { return 2; }
extern "C" int orv_vector_convert(const void*, char*, unsigned long) { return 0; }
