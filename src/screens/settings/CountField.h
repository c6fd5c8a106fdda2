// A field for a whole number from 1 up. A number is told when the person is through with it, by Return or by
// taking the keyboard elsewhere, and not for each digit: 10 is not to be 1 for a moment. What is no such number
// gives way to the one that was there. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QLineEdit>

#include <cstdint>
#include <functional>

namespace fernwick {

class CountField final : public QLineEdit {
public:
    // `chosen` is called with each number that differs from the one before.
    CountField(const Theme& theme, std::function<void(std::int64_t)> chosen, QWidget* parent);

    // Shows what is stored, whatever number that is, without calling back. The same number again leaves who is
    // typing alone.
    void showNumber(std::int64_t number);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void commit();

    std::function<void(std::int64_t)> chosen_;
    std::int64_t number_ = 0; // what is stored
};

} // namespace fernwick
