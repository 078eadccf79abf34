#pragma once

namespace ts::test {

// An SQLite file-system layer named "faulty" over the default one, that fails writes on
// purpose: the n-th write from the moment a plan is set fails with an I/O error, and so does
// every write after it, as when a disk is pulled out mid-save.
struct FaultPlan {
    int failWriteAt = -1;  // 1-based; -1 never
    int writes = 0;        // writes seen since the plan was set
    bool failed = false;   // a write has failed
};

void RegisterFaultyVfs();
FaultPlan& Faults();

}  // namespace ts::test
