// The entries of a rule's applications: their chips in wrapped rows, or a hint while there are none.
// Threads: main thread only.
#pragma once

#include "routing/AppEntry.h"
#include "screens/theme/Theme.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace fernwick {

class EntryChip;

class EntryChips final : public QWidget {
public:
    static constexpr int kSpacing = 6;

    // `onDelete` is called with the id of the entry that the user takes away.
    EntryChips(const Theme& theme, std::function<void(const support::Uuid&)> onDelete, QWidget* parent);

    // Adds chips at the end.
    void add(const std::vector<AppEntry>& entries);

    // Takes the chip of that entry away, and hands its keyboard to the next one, else to the one before.
    // Returns whether nobody was left to take it.
    bool remove(const support::Uuid& id);

    [[nodiscard]] const std::vector<EntryChip*>& chips() const { return chips_; }

private:
    QWidget* buildHint();
    void showChipsOrHint();

    const Theme& theme_;
    std::function<void(const support::Uuid&)> onDelete_;
    QWidget* hint_;
    QWidget* rows_;
    std::vector<EntryChip*> chips_;
};

} // namespace fernwick
