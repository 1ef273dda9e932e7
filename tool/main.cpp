#include "tool/command_line.h"

int main(int argc, char** argv) { return velmora::tool::run(argc, argv); }
