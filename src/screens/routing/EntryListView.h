// Lines of a record that may have thousands of them, one below the other, as high as they all need. Only what
// can be seen is drawn, so it stands inside something that scrolls. Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

#include <QListView>

#include <optional>
#include <vector>

namespace fernwick {

struct EntryLine {
    QString text;
    std::optional<Icon> icon;   // in front of the text
    NamedColor dot = nullptr;   // in front of the text, when there is no icon
    bool isAddress = false;     // runs from left to right whatever its script
    QString spoken = QString(); // what it is called aloud, if that is not the text

    bool operator==(const EntryLine&) const = default;
};

class EntryListView final : public QListView {
public:
    // `name` is what the list is called aloud.
    EntryListView(const Theme& theme, const QString& name, const QFont& font, std::vector<EntryLine> lines,
                  QWidget* parent);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace fernwick
