#include "job_thread.h"

#include "host/jobs.h"

namespace msand {

JobThread::JobThread()
    : thread_([] {
        while (host::runNextJob()) {
        }
      }) {}

JobThread::~JobThread() {
  host::stopJobs();
  thread_.join();
  host::clearJobs();
}

}  // namespace msand
