// Whether a private key file needs a passphrase, as far as its text tells. Threads: any.
#pragma once

#include "platform/FileSystem.h"

#include <string>

namespace fernwick {

// True for a file of valid UTF-8 that contains "ENCRYPTED": the header "Proc-Type: 4,ENCRYPTED" (RFC 1421,
// section 4.6.1.1) or the label "ENCRYPTED PRIVATE KEY" (RFC 7468, section 11). OpenSSH's own format says it
// inside its base64, which nobody looks into, so that an encrypted key of that kind reads as not encrypted. So
// does whatever cannot be read.
[[nodiscard]] bool readsAsEncrypted(platform::FileSystem& files, const std::string& path);

} // namespace fernwick
