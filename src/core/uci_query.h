#pragma once
#include <cstddef>

constexpr size_t LYND_UCI_PATH_MAX = 64;

// Copies the option at path (extended syntax) into value, at most size - 1
// characters. True only when the option exists; a list option has no single
// value and counts as absent.
bool lynd_uci_get_value(const char* path, char* value, size_t size);
