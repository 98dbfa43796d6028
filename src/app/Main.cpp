#include "app/CGravlinApp.h"

int main(int argc, char** argv) {
  return gravlin::runGravlin(argc, argv);
}
