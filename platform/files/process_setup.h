// What a process must settle before it opens its first file.
#pragma once

namespace zelmora::platform {

/// Makes this process safe to write files from; call it first in main(), before any thread starts.
/// - Standard descriptors that the caller has closed are taken: a converted file would get their
///   numbers, and the next message would be written into it.
/// - SIGPIPE and SIGXFSZ are ignored: a reader that has gone away and a file that may not grow
///   show as failed writes, not as a death between two files.
void setUpProcess();

} // namespace zelmora::platform
