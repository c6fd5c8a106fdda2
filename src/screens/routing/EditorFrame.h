// The hairline around a field that has no border of its own; while the field has the keyboard it is a ring.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

namespace fernwick {

class EditorFrame final : public QWidget {
public:
    // Takes the field over.
    EditorFrame(const Theme& theme, QWidget* field, QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    QWidget* field_;
};

} // namespace fernwick
