// What the module for HTTP exports.

#include "platform/modules/LazyModule.h"
#include "platform/qt/QtHttpClient.h"

extern "C" [[gnu::visibility("default")]] fernwick::platform::HttpClient*
fernwickMakeHttpClient(fernwick::platform::Dispatch& dispatch) {
    return new fernwick::platform::QtHttpClient(dispatch); // the caller owns it
}

extern "C" [[gnu::visibility("default")]] const char* fernwickModuleVersion() {
    return FERNWICK_VERSION;
}
