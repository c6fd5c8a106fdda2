// A number over its label.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

namespace fernwick {

class StatBadge final : public QWidget {
public:
    StatBadge(const Theme& theme, const QString& label, NamedColor color, QWidget* parent);

    void setValue(std::size_t value);
    [[nodiscard]] QString value() const { return number_->text(); }

protected:
    void changeEvent(QEvent* event) override;

private:
    void tint();

    const Theme& theme_;
    NamedColor color_;
    QLabel* number_;
};

} // namespace fernwick
