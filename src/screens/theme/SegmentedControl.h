// A choice of one out of a few, side by side and all to be seen. To assistive technology, and to the keyboard,
// it is a group of radio buttons. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

#include <functional>
#include <vector>

class QRadioButton;

namespace fernwick {

class SegmentedControl final : public QWidget {
public:
    // `chosen` is called with the number of the segment, from 0, that the user turned to.
    SegmentedControl(const Theme& theme, std::function<void(int)> chosen, QWidget* parent);

    // Adds a segment at the end; all are equally wide.
    void addSegment(const QString& text, const QString& objectName);

    // Shows a segment as chosen without calling back.
    void showChosen(int segment);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    std::function<void(int)> chosen_;
    std::vector<QRadioButton*> segments_;
    bool showing_ = false;
};

} // namespace fernwick
