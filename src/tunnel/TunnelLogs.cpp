#include "tunnel/TunnelLogs.h"

#include <utility>

namespace fernwick {

TunnelLogs::TunnelLogs(platform::Dispatch& dispatch, const platform::Clock& clock)
    : dispatch_(dispatch), clock_(clock), self_(*this) {}

const std::deque<LogEntry>& TunnelLogs::lines(const support::Uuid& id) const {
    static const std::deque<LogEntry> none;
    const auto found = logs_.find(id);
    return found != logs_.end() ? found->second : none;
}

void TunnelLogs::add(LogLevel level, std::string message, const support::Uuid& id) {
    dispatch_.main([weak = self_.weak(), level, message = std::move(message), id]() mutable {
        if (auto* logs = weak.get()) {
            logs->append(level, std::move(message), id);
        }
    });
}

void TunnelLogs::append(LogLevel level, std::string message, const support::Uuid& id) {
    auto& lines = logs_[id];
    lines.push_back({support::Uuid::random(), clock_.now(), level, std::move(message)});
    while (lines.size() > kCapacity) {
        lines.pop_front();
    }
    changed.emit(id);
}

void TunnelLogs::clear(const support::Uuid& id) {
    logs_[id].clear();
    changed.emit(id);
}

} // namespace fernwick
