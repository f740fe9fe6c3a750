#include "daemon/replies/status_replies.h"

// The build system names both; a build outside it still answers.
#ifndef LYND_VERSION
#define LYND_VERSION "0.0.0"
#endif
#ifndef LYND_REVISION
#define LYND_REVISION "unknown"
#endif

const char* lynd_version() { return LYND_VERSION; }
const char* lynd_revision() { return LYND_REVISION; }
