// The status as a coloured disc with a dot in it.
// Threads: main thread only.
#pragma once

#include "catalogue/TunnelStatus.h"
#include "screens/theme/Theme.h"

#include <QWidget>

#include <optional>

namespace fernwick {

class StatusMark final : public QWidget {
public:
    StatusMark(const Theme& theme, QWidget* parent);

    void setStatus(const std::optional<TunnelStatus>& status);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    std::optional<TunnelStatus> status_;
};

} // namespace fernwick
