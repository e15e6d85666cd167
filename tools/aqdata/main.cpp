// The command line tool for aircraft noise measurement files.
#include "tools/aqdata/program.h"
#include "tools/aqdata/terminal.h"

int main(int argc, char** argv) { return aqdata::run(aqdata::terminal::begin(argc, argv)); }
