// The composition root: owns every long-lived object of the application, picks every backend, and brings them
// to life and to rest in their order. Threads: main thread only.
#pragma once

#include <memory>

class QApplication;

namespace fernwick {

class FernwickApp {
public:
    // Makes what the stores and managers will stand on; reads no preference yet. `application` outlives it.
    explicit FernwickApp(QApplication& application);
    FernwickApp(const FernwickApp&) = delete;
    FernwickApp& operator=(const FernwickApp&) = delete;
    ~FernwickApp();

    // Builds the stores, the managers and the main window, and runs until the application ends. Returns the
    // exit status of the process. A second start raises the first application and returns 0 at once. No tunnel
    // is started.
    int run();

    // The whole program: returns the exit status; 1 with a message on standard error when there is no display.
    static int main(int argc, char** argv);

private:
    struct Backends;
    struct Scene;

    // The orderly end, whichever way it came: menu, signal or session.
    void terminate();

    // The end while work in the background hangs: what is preferred is written out, and nothing is torn down.
    [[noreturn]] void leaveAtOnce(int status);

    QApplication& application_;
    std::unique_ptr<Backends> backends_;
    std::unique_ptr<Scene> scene_;
};

} // namespace fernwick
