#pragma once

#include <maya/MIOStreamFwd.h>

#include <fstream>
#include <iomanip>
#include <iostream>

// Plug-ins use the standard streams without qualification once this header is included.
using std::cerr;
using std::cin;
using std::clog;
using std::cout;
using std::endl;
using std::flush;
using std::fstream;
using std::ifstream;
using std::ios;
using std::ofstream;
