// The bubble in which an entry is typed in or an application is chosen. It lies inside the sheet, over the
// form, so that it needs neither a grab of the screen nor a place that a desktop may refuse, and it keeps the
// keyboard to itself while it is open. Threads: main thread only.
#pragma once

#include "routing/AppEntry.h"
#include "screens/routing/RuleDraft.h"
#include "screens/theme/Announcement.h"
#include "screens/theme/Theme.h"

#include <QDialog>

#include <functional>
#include <vector>

class QLineEdit;
class QPushButton;

namespace fernwick {

class IconLine;
class SegmentedControl;

class AddEntryPopover final : public QDialog {
public:
    static constexpr int kWidth = 340; // of the bubble
    static constexpr int kShadow = 16; // how far its shadow reaches

    struct Callbacks {
        std::function<void(AppEntry)> add;                      // with the entry, before the popover closes
        std::function<void()> browse;                           // when the user wants to choose an application
        std::function<void(QWidget&)> announce = announceAlert; // with the line that says what was wrong
    };

    // Hidden at first. `sheet` is what it lies in.
    AddEntryPopover(const Theme& theme, Callbacks callbacks, QWidget* sheet);

    // Starts anew and opens, with its tip at that place of the sheet.
    void openAt(QPoint tip);

    // Shows a text in the field for applications.
    void setManualAppText(const std::string& text);

    [[nodiscard]] const EntryInput& input() const { return input_; }

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // A field and the text of the input that it fills in.
    struct Field {
        QString name; // aloud
        QString placeholder;
        QString objectName;
        std::string EntryInput::* text;
    };

    QWidget* buildAppPage();
    QWidget* buildIPPage();
    QWidget* buildButtons();
    QLineEdit* addField(const Field& field, QWidget* parent);
    void turnTo(AddMode mode);
    void turnTo(IPInputMode mode);
    void refresh();
    void tryAdd();

    const Theme& theme_;
    Callbacks callbacks_;
    EntryInput input_;
    std::vector<std::pair<QLineEdit*, std::string EntryInput::*>> fields_;
    SegmentedControl* modes_ = nullptr;
    SegmentedControl* ipModes_ = nullptr;
    std::vector<QWidget*> pages_;   // one for each mode
    std::vector<QWidget*> ipPages_; // one for each way to say addresses
    IconLine* error_ = nullptr;
    QPushButton* add_ = nullptr;
    QPoint tip_;
};

} // namespace fernwick
