// The mistakes that break a mesh while the file itself loads fine.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"
#include "targets/check/check_printer.h"

// Writes each finding; the number of warnings among them (notes do not
// count). Bridge membership is read from this machine's /sys, for the
// interfaces it has.
uint32_t mesh_checks(const lynd_config& conf, check_printer* p);
