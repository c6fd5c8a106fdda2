#include "shell/FernwickApp.h"

int main(int argc, char** argv) {
    return fernwick::FernwickApp::main(argc, argv);
}
