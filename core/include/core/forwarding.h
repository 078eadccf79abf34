#pragma once

#include <new>

#include "core/com_error.h"
#include "ts/result.h"

namespace ts {

// Runs an operation of an editor window for the host: E_FAIL when the window is gone, and a
// failure raised inside (ComError, or running out of memory) becomes the call's result instead
// of crossing into the host.
template <class W, class F>
HRESULT ForwardToWindow(W* window, F&& operation) {
    if (!window) return E_FAIL;
    try {
        return operation(*window);
    } catch (const ComError& e) {
        return e.Result();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace ts
