// The PAC server alone, for a load generator: serves a file on a port until its standard input ends.
#include "routing/PACServer.h"
#include "support/Integer.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <string>

int main(int argc, char** argv) {
    const auto port = argc == 3 ? fernwick::support::parseInteger<std::uint16_t>(argv[1]) : std::nullopt;
    if (!port) {
        std::cerr << "usage: fernwick_pac_server PORT FILE\n";
        return 1;
    }
    std::ifstream file(argv[2], std::ios::binary);
    fernwick::PACServer server(*port);
    server.update(std::string(std::istreambuf_iterator<char>(file), {}));
    server.start();
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    return 0;
}
