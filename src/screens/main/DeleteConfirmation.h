// Asks before a tunnel is deleted. It blocks the window that it belongs to and nothing else.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QDialog>

#include <functional>
#include <string_view>

class QLabel;

namespace fernwick {

class DeleteConfirmation final : public QDialog {
public:
    // `name` is the tunnel's name as it is stored; `onDelete` is called when the user agrees.
    DeleteConfirmation(const Theme& theme, std::string_view name, std::function<void()> onDelete,
                       QWidget* parent);

    // Asks about a tunnel of another name.
    void setName(std::string_view name);

private:
    QLabel* text_;
};

} // namespace fernwick
