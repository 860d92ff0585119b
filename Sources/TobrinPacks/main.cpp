#include <iostream>

#include "CommandLine.h"

int main(int argc, char** argv) {
  return tobrin::runPackWorkshop({argv + 1, argv + argc}, {std::cout, std::cerr});
}
