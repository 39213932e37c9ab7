#include "trial/command_line.h"

int main(int argc, char** argv) {
    return trial::run_command_line(argc, argv);
}
