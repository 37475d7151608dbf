// tidyfold-driven: the program, with a file beside it that says what its window shows.
#include "desktop/common/run_program.h"
#include "desktop/window_state_file.h"

int main(int argc, char** argv) {
  tidyfold::Window_State_File state_file;
  return tidyfold::Run_Program(argc, argv, &state_file);
}
