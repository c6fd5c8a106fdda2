#include "support/JsonTexts.h"

#include <simdjson.h>

#include <algorithm>

namespace fernwick::support {

bool readJsonTexts(std::string_view json,
                   const std::function<void(std::string_view name, std::string_view text)>& member) {
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    if (parser.parse(json.data(), json.size()).get(object) != simdjson::SUCCESS) {
        return false;
    }
    if (!std::all_of(object.begin(), object.end(), [](const auto& field) { return field.value.is_string(); })) {
        return false;
    }
    for (const auto& [name, value] : object) {
        member(name, value.get_string().value_unsafe());
    }
    return true;
}

} // namespace fernwick::support
