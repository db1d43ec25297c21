#include "tools/RondoTool.h"

int main(int argc, char** argv) { return RondoTool::run(argc, argv); }
