// Starts or stops the tunnel on show. While it is connecting, a spinner turns in the button; it takes no time
// of the processor otherwise. Threads: main thread only.
#pragma once

#include "catalogue/TunnelStatus.h"
#include "screens/theme/Theme.h"

#include <QBasicTimer>
#include <QPushButton>

#include <optional>

namespace fernwick {

class ConnectButton final : public QPushButton {
public:
    ConnectButton(const Theme& theme, QWidget* parent);

    // Shows "Stop" for an active status and "Connect" for any other.
    void setStatus(const std::optional<TunnelStatus>& status);

    [[nodiscard]] bool isSpinning() const { return timer_.isActive(); }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void spinIfNeeded();
    void paintSpinner(QPainter& painter, const QRectF& area) const;

    const Theme& theme_;
    std::optional<TunnelStatus> status_;
    QBasicTimer timer_;
    int angle_ = 0;
};

} // namespace fernwick
