#pragma once
// Memory that is kept for when there is none.

namespace msand {

// From now on, when an allocation can't be had, the reserve is given up for it, and what is under way is done. When
// there is no reserve any more the process ends with code 1 and a message: an answer that is half made, or a request
// that stops in the middle of the module, would be worse than another start.
void keepReserve();

// Takes a reserve again, and logs that the last one was used. For what comes round now and then.
void renewReserve();

}  // namespace msand
