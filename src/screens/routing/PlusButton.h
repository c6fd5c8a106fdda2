// A plus in a filled circle. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QToolButton>

namespace fernwick {

class PlusButton final : public QToolButton {
public:
    // The help text is also what the button is called aloud.
    PlusButton(const Theme& theme, const QString& helpText, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
};

} // namespace fernwick
