#include "shell/HiddenStart.h"

#include <utility>

namespace fernwick {

HiddenStart::HiddenStart(platform::TrayHost& host, platform::Dispatch& dispatch,
                         std::function<void()> openWindow)
    : dispatch_(dispatch),
      openWindow_(std::move(openWindow)),
      appeared_(host.appeared.connect([this] { hasPlace_ = true; })),
      absent_(host.absent.connect([this] { waitForPanel(); })) {}

void HiddenStart::waitForPanel() {
    dispatch_.mainAfter(kPatience, [weak = self_.weak()] {
        if (auto* self = weak.get(); self != nullptr && !self->hasPlace_) {
            self->openWindow_();
        }
    });
}

} // namespace fernwick
