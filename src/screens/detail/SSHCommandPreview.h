// The ssh command of a tunnel in its short form, to be read, selected and copied.
// Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "platform/Dispatch.h"
#include "platform/Pasteboard.h"
#include "screens/theme/Theme.h"
#include "support/Weak.h"

#include <QWidget>

class QTextEdit;
class QToolButton;

namespace fernwick {

class SSHCommandPreview final : public QWidget {
public:
    // How long the button says that the command was copied.
    static constexpr platform::Duration kCopiedDelay{2000};

    SSHCommandPreview(const Theme& theme, platform::Pasteboard& pasteboard, platform::Dispatch& dispatch,
                      QWidget* parent);

    void showTunnel(const Tunnel& tunnel);

    [[nodiscard]] bool copied() const { return copied_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void copy();
    void setCopied(bool copied);

    const Theme& theme_;
    platform::Pasteboard& pasteboard_;
    platform::Dispatch& dispatch_;
    std::string command_;
    QTextEdit* text_;
    QToolButton* button_;
    bool copied_ = false;
    support::WeakSource<SSHCommandPreview> self_;
};

} // namespace fernwick
