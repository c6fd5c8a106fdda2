// A plain field of several lines, bound to a text that is kept elsewhere. It has undo, no scroll bars and no
// border of its own; whoever uses it draws the frame. The tab key moves on to the next control.
// Threads: main thread only.
#pragma once

#include <QPlainTextEdit>

#include <functional>
#include <string>

namespace fernwick {

class MacTextEditor final : public QPlainTextEdit {
public:
    // Logical pixels between the edge and the text.
    static constexpr int kInsetAcross = 4;
    static constexpr int kInsetDown = 6;

    // `changed` is called with the whole text (UTF-8, lines ending in "\n") after each change by the user.
    MacTextEditor(const QFont& font, int minHeight, std::function<void(std::string)> changed, QWidget* parent);

    // Shows the text of the other side without calling back. Where that is what the field holds already,
    // cursor, selection and undo stay.
    void setText(const std::string& text) { coordinator_.showText(text); }

    [[nodiscard]] const std::string& text() const { return coordinator_.text(); }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

private:
    // Carries the text between the field and the other side.
    class Coordinator {
    public:
        Coordinator(MacTextEditor& parent, std::function<void(std::string)> changed);

        void textDidChange();
        void showText(const std::string& text);
        [[nodiscard]] const std::string& text() const { return text_; }

    private:
        MacTextEditor& parent_;
        std::function<void(std::string)> changed_;
        std::string text_; // what was shown or told last
        bool showing_ = false;
    };

    Coordinator coordinator_;
};

} // namespace fernwick
