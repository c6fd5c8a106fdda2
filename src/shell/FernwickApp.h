// The composition root: owns every long-lived object of the application, picks every backend, and brings them
// to life and to rest in their order. Threads: main thread only.
#pragma once

#include <memory>

class QApplication;

namespace fernwick {

class FernwickApp {
public:
    // Takes the state of the application from its stores and starts its managers. `application` outlives it.
    explicit FernwickApp(QApplication& application);
    FernwickApp(const FernwickApp&) = delete;
    FernwickApp& operator=(const FernwickApp&) = delete;
    ~FernwickApp();

    // Shows the main window and runs until the application ends. Returns the exit status of the process. A
    // second start raises the first application and returns 0 at once.
    int run();

    // The whole program: returns the exit status; 1 with a message on standard error when there is no display.
    static int main(int argc, char** argv);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace fernwick
