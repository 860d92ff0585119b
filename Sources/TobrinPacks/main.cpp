#include <iostream>
#include <vector>

#include "CommandLine.h"

int main(int argc, char** argv) {
  std::vector<tobrin::AddCommand> more;
#ifdef TOBRIN_DESKTOP
  more.push_back(tobrin::addRecordCommand);
#endif
  return tobrin::runPackWorkshop({argv + 1, argv + argc}, {std::cout, std::cerr}, more);
}
