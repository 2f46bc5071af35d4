/// What a thread of ours does first: a name that the kernel shows, and no signals, which are the main
/// thread's.
#pragma once

namespace velorin {

/// `name`: at most 15 bytes.
void setUpThread(const char* name);

} // namespace velorin
