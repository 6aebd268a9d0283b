#pragma once

#include <maya/MTypes.h>
