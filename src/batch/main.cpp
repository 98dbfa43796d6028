#include <string>
#include <vector>

#include "batch/Program.h"

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + (count > 0 ? 1 : 0), arguments + count);
  return gravlin::runBatch(words);
}
