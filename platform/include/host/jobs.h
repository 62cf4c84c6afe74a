#pragma once
// The job task: jobs wait until they are run.

#include "platform/voice_mode.h"

namespace host {

// Runs what is queued, in order, jobs that jobs add included.
void runJobs();
void clearJobs();

// The next set_voice_module_mode gives `result`; used once.
void queueVoiceModeResult(int result);

}  // namespace host
