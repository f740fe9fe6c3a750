// Every process-wide record of the daemon, back to how a new process has it,
// so two runs in one process never share state.
#pragma once

void lynd_process_state_reset();
