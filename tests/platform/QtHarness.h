// The real dispatch on an event loop that a test turns by hand.
#pragma once

#include "platform/qt/QtDispatch.h"
#include "support/WaitUntil.h"

#include <QCoreApplication>

namespace fernwick::platform {

class QtHarness {
public:
    Dispatch& dispatch() { return dispatch_; }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return fakes::waitUntil([] { QCoreApplication::processEvents(); }, condition);
    }

private:
    int count_ = 1;
    char name_[8] = "harness";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
    QtDispatch dispatch_;
};

} // namespace fernwick::platform
