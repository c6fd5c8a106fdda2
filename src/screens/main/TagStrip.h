// The row of chips that filters the sidebar by a tag: "All", then one chip per tag.
// Threads: main thread only.
#pragma once

#include "catalogue/TagManager.h"
#include "screens/theme/Theme.h"

#include <QScrollArea>

#include <functional>
#include <optional>
#include <vector>

namespace fernwick {

class TagStrip final : public QScrollArea {
public:
    // Called with the tag to filter by, or nothing to show all.
    using Choose = std::function<void(std::optional<TunnelTag>)>;

    // `before` is the control that Tab leads from to the first chip; it lives as long as the strip.
    TagStrip(const Theme& theme, Choose choose, QWidget& before, QWidget* parent);

    // Shows these tags, in their order. Does nothing when nothing is different from what it shows.
    void setTags(const std::vector<TunnelTag>& tags, const std::optional<TunnelTag>& selected);

    // Builds the chips anew, in the colours of the appearance in force.
    void rebuild();

protected:
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void orderChips();
    void addChip(const QString& label, const QString& name, bool isSelected, const QColor& color,
                 const std::optional<TunnelTag>& choice);

    const Theme& theme_;
    Choose choose_;
    QWidget& before_;
    std::vector<TunnelTag> tags_;
    std::optional<TunnelTag> selected_;
};

} // namespace fernwick
