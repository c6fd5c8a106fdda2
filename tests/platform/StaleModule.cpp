// A part of the application as another version left it. It is never to be entered.

#include <cstdlib>

extern "C" [[gnu::visibility("default")]] const char* fernwickModuleVersion() {
    return "0.0.1";
}

extern "C" [[gnu::visibility("default")]] void* fernwickMakeHttpClient() {
    std::abort();
}
