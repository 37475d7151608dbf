#include "desktop/common/run_program.h"

int main(int argc, char** argv) {
  return tidyfold::Run_Program(argc, argv);
}
