// Reads any bytes as the update server's answer. They are refused in words, or give a version, an archive's
// name that stays in its folder, and texts for the prompt.
#include "SampleCatalogue.h"
#include "support/Text.h"
#include "updating/UpdateAnswer.h"
#include "updating/UrlText.h"

#include <cstdint>
#include <string>

namespace {

using namespace fernwick;
using fuzz::require;

void checkName(const std::string& url) {
    const auto name = archiveName(url);
    require(!name.empty() && name != "." && name != "..", "no name", url);
    require(!name.contains('/') && !name.contains('\0') && support::isValidUtf8(name), "a name that leads away",
            url);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    checkName(bytes); // also of what is no URL at all
    const auto answer = parseUpdateAnswer(bytes);
    if (!answer) {
        require(answer.error() == "Invalid JSON from Update Server." ||
                    answer.error().starts_with("Update check error: "),
                "another message", answer.error());
        return 0;
    }
    require(isValidUrl(answer->downloadURL), "an invalid URL", answer->downloadURL);
    checkName(answer->downloadURL);
    require(!comparableVersion(answer->version).contains('v'), "a letter is left", answer->version);
    const auto question = updateQuestion(*answer);
    require(question.starts_with("New version " + answer->version + " is available.\n\n" + answer->notes) &&
                question.ends_with("\n\nWould you like to download and install it now?"),
            "another question", question);
    require(support::isValidUtf8(question), "no UTF-8", question);
    return 0;
}
