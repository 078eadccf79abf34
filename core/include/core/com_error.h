#pragma once

#include <exception>

#include "ts/result.h"

namespace ts {

// A failure raised inside an editor operation that must end the operation with a result code.
// The editor object's interface methods catch it and return the code, so it never crosses into
// the host.
class ComError : public std::exception {
public:
    explicit ComError(HRESULT result) : result_(result) {}
    HRESULT Result() const { return result_; }
    const char* what() const noexcept override { return "editor operation failed"; }

private:
    HRESULT result_;
};

}  // namespace ts
