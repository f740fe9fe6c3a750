// The daemon's command line.
#pragma once

enum class lynd_option_action {
    RUN,    // go on with the start
    HELP,   // usage printed, exit 0
    USAGE,  // usage printed, exit 1
    TEST,   // platform self-test ran, exit 0
};

struct lynd_options {
    const char* config_path;
};

// Handles the options in order; -l sets the log level as it is read and -t
// runs the self-test as it is read, so later options are not looked at.
lynd_option_action lynd_parse_options(int argc, char** argv, lynd_options* out);

// "-l" argument: atoi, then 0 or below gives 1 and above 6 gives 6.
int lynd_level_from_arg(const char* arg);
