// idml-gen DESCRIPTION OUT.idml: writes an IDML package from a short description.
#include "IdmlBuilder.h"

#include <fstream>
#include <iostream>
#include <sstream>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: idml-gen DESCRIPTION OUT.idml\n";
        return 2;
    }
    std::ifstream in(argv[1]);
    if (!in) {
        std::cerr << "idml-gen: cannot read " << argv[1] << '\n';
        return 2;
    }
    try {
        std::stringstream text;
        text << in.rdbuf();
        IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(text.str()), argv[2]);
    } catch (const std::exception& error) {
        std::cerr << "idml-gen: " << argv[1] << ": " << error.what() << '\n';
        return 1;
    }
    return 0;
}
