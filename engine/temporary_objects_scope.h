// A foundation-library pool for the length of a scope.
#pragma once

#include "foundation/orv_base.h"

namespace zelmora {

/// Opens a pool of temporary objects on the calling thread and releases it, with all it holds, at
/// the scope's end. Scopes nest.
class TemporaryObjectsScope {
  public:
    TemporaryObjectsScope() : _pool(OrvTemporaryObjectsPoolCreate()) {}
    ~TemporaryObjectsScope() { OrvRelease(_pool); }
    TemporaryObjectsScope(const TemporaryObjectsScope&) = delete;
    TemporaryObjectsScope& operator=(const TemporaryObjectsScope&) = delete;

  private:
    OrvIBase* _pool;
};

} // namespace zelmora
