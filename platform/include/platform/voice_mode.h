#pragma once
// The voice module's mode, and the task that changes it.

#include "platform/types.h"

// Brings the voice module from the mode of one protocol type into that of another. Negative on failure.
int set_voice_module_mode(u32 oldType, u32 newType, u32 flag);

using Job = int(u32, u32, u32);

// Queues a job for the job task; it runs with the first three arguments when the caller's request has ended. The
// priority is 6. 0 on success.
int job_add(i32 priority, Job* job, u32 a0, u32 a1, u32 a2, u32 a3, u32 a4, u32 a5, u32 a6, u32 a7);
