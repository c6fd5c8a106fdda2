// One entry of a rule's applications as a capsule, with a button that takes it away.
// Threads: main thread only.
#pragma once

#include "routing/AppEntry.h"
#include "screens/theme/Parts.h"

#include <functional>

namespace fernwick {

class EntryChip final : public QWidget {
public:
    // How entries of a type look.
    struct Look {
        Icon icon;
        NamedColor color;
    };
    [[nodiscard]] static Look lookOf(AppEntryType type);

    // `onDelete` is called by the button, and by the delete key while the button has the keyboard.
    EntryChip(const Theme& theme, AppEntry entry, std::function<void()> onDelete, QWidget* parent);

    [[nodiscard]] const AppEntry& entry() const { return entry_; }

    // Gives the button the keyboard.
    void focusButton();

    // A long name is cut short, so that a chip fits into the sheet.
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    AppEntry entry_;
    std::function<void()> onDelete_;
    QString text_;
    QToolButton* delete_;
};

} // namespace fernwick
