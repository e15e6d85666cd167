// Reads files and prints every value that the library returns, for comparison with reader.py. Each
// line of the input is `FORMAT path`; each answer ends with the line `end`.

#include <iostream>
#include <string>

#include "tests/second/values.h"

int main() {
  std::string format;
  std::string path;
  while (std::cin >> format && std::getline(std::cin >> std::ws, path)) {
    std::cout << aq::test::valuesOf(format, path) << "end\n";
  }
}
