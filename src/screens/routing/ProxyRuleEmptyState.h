// What stands in place of a list or a panel that has nothing to show: an icon, and two lines under it.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

namespace fernwick {

class ProxyRuleEmptyState final : public QWidget {
public:
    ProxyRuleEmptyState(const Theme& theme, QWidget* parent);

    void show(Icon icon, const QString& title, const QString& subtitle);
    using QWidget::show;

    [[nodiscard]] QString title() const { return title_->text(); }
    [[nodiscard]] QString subtitle() const { return subtitle_->text(); }

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void tint();

    const Theme& theme_;
    Icon icon_ = Icon::network;
    QWidget* iconRoom_;
    QLabel* title_;
    QLabel* subtitle_;
};

} // namespace fernwick
