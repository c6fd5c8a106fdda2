// The sheet that gives a tag another name and colour. It blocks the window that it belongs to and nothing else.
// Threads: main thread only.
#pragma once

#include "catalogue/TagManager.h"
#include "screens/theme/Theme.h"

#include <QDialog>

namespace fernwick {

class ColorWell;
class TextField;

class TagEditSheet final : public QDialog {
public:
    static constexpr int kWidth = 280;

    // Edits a copy; saving puts it in the tag's place, unless the tag has gone. It is to be opened with open(),
    // and goes when it is closed. The references outlive it.
    TagEditSheet(const Theme& theme, TagManager& tags, TunnelTag tag, QWidget* parent);

private:
    [[nodiscard]] QWidget* buildFields();
    [[nodiscard]] QWidget* buildButtons();
    void save();

    const Theme& theme_;
    TagManager& tags_;
    TunnelTag editingTag_;
    std::string editName_;
    ColorWell* editColor_ = nullptr;
};

} // namespace fernwick
