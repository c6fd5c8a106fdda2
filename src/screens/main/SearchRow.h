// The search above a list: a magnifying glass, a plain field, and a button that empties it while it holds text.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

#include <functional>

class QLineEdit;
class QToolButton;

namespace fernwick {

class SearchRow final : public QWidget {
public:
    // The placeholder is also what the field is called aloud. `edited` is called with the text, as typed, after
    // each change by the user.
    SearchRow(const Theme& theme, const QString& placeholder, const QString& fieldName,
              std::function<void(const QString&)> edited, QWidget* parent);

    // Shows the text without calling back.
    void setText(const QString& text);

    // The control at the row's end, which what follows in the Tab chain comes after.
    [[nodiscard]] QWidget& lastControl() const;

    // Gives the field the keyboard and chooses its text.
    void focusField();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    std::function<void(const QString&)> edited_;
    QLineEdit* field_;
    QToolButton* clear_;
};

} // namespace fernwick
