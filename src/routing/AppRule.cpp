#include "routing/AppRule.h"

#include "support/Pieces.h"
#include "support/Text.h"

namespace fernwick {

namespace {

std::vector<std::string> elementsOf(std::string_view text) {
    std::vector<std::string> elements;
    support::forEachPiece(text, ';', [&](std::string_view piece) {
        elements.emplace_back(support::trimBlanks(piece));
        return true;
    });
    return elements;
}

} // namespace

AppRule AppRule::create() {
    AppRule rule;
    rule.id = support::Uuid::random();
    return rule;
}

void AppRule::setTargetHosts(std::string_view fromText) {
    targetHosts = elementsOf(fromText);
}

void AppRule::setTargetPorts(std::string_view fromText) {
    targetPorts = elementsOf(fromText);
}

} // namespace fernwick
