// One of a few choices, as wide as the form that it stands in: a click anywhere on it chooses it. To assistive
// technology it is a radio button. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QRadioButton>

namespace fernwick {

class RadioRow final : public QRadioButton {
public:
    RadioRow(const Theme& theme, const QString& label, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& where) const override { return rect().contains(where); }

private:
    void takeTabKey();

    const Theme& theme_;
};

} // namespace fernwick
