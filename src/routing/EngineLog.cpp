#include "routing/EngineLog.h"

#include "support/LocalTime.h"

#include <fmt/format.h>

#include <utility>

namespace fernwick {

EngineLog::EngineLog(platform::Dispatch& dispatch, const platform::Clock& clock, support::PrintLine print)
    : dispatch_(dispatch), clock_(clock), print_(std::move(print)) {}

void EngineLog::add(std::string_view message) {
    auto line = fmt::format("[{}] {}", support::localTimeText(clock_.now()), message);
    print(line);
    dispatch_.main([weak = self_.weak(), line = std::move(line)]() mutable {
        auto* log = weak.get();
        if (log == nullptr) {
            return;
        }
        log->lines_.push_back(std::move(line));
        while (log->lines_.size() > kCapacity) {
            log->lines_.pop_front();
        }
        log->changed.emit();
    });
}

void EngineLog::print(std::string_view message) const {
    print_(fmt::format("[ClashEngine] {}", message));
}

} // namespace fernwick
