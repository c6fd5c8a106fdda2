// What the module for the keyring exports.

#include "platform/linux/SecretServiceKeychain.h"
#include "platform/modules/LazyModule.h"

extern "C" [[gnu::visibility("default")]] fernwick::platform::Keychain*
fernwickMakeKeychain(const fernwick::platform::HostEnvironment& host) {
    return new fernwick::platform::SecretServiceKeychain(host); // the caller owns it
}

extern "C" [[gnu::visibility("default")]] const char* fernwickModuleVersion() {
    return FERNWICK_VERSION;
}
