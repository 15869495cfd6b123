// The shared-object registry for the library's own code.
#pragma once

namespace zelmora {

class OrvDictionaryImpl;

/// The registry, borrowed; null, after the diagnostic line that says so, while the library is not
/// initialised.
OrvDictionaryImpl* sharedObjectRegistry() noexcept;

} // namespace zelmora
