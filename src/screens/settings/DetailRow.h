// A label and a value beside it. A value that is too long is cut short and is whole in its help text.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

#include <string_view>

namespace fernwick {

class DetailRow final : public QWidget {
public:
    // What the value is: a path runs from left to right and is cut in its middle.
    enum class Kind { text, path };

    DetailRow(const Theme& theme, const QString& label, Kind kind, QWidget* parent);

    // Shows a value in UTF-8.
    void setValue(std::string_view value);

    [[nodiscard]] QString value() const { return value_->text(); }

private:
    ElidedLabel* value_;
};

} // namespace fernwick
