#pragma once
// The job task: jobs wait until they are run. The observer is told of a job when it is queued, as its function's name
// and all eight arguments; the platform knows the name of set_voice_module_mode alone, others are "unnamed".

#include "platform/voice_mode.h"

namespace host {

// Runs what is queued, in order, jobs that jobs add included.
void runJobs();
void clearJobs();
// For a thread of jobs: waits for one and runs it. False once the jobs are stopped; what then waits is left to
// clearJobs, which lets jobs run again.
bool runNextJob();
void stopJobs();
// While they are held a thread of jobs takes none; one under way is waited for. Not to be called by a job.
void holdJobs(bool hold);

// The next set_voice_module_mode gives `result`; used once.
void queueVoiceModeResult(int result);

}  // namespace host
