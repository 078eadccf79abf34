// Any bytes given to the resource decoder: it must refuse them or give a tree, never crash,
// and a tree it gives must encode and decode again to the same tree.
#include <cstdint>
#include <cstdlib>

#include "ts/propertycompare.h"
#include "ts/resourcecodec.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::span<const std::uint8_t> bytes(data, size);
    CTsComPtr<ITsProperty> root;
    ts::DecodeResource(bytes, root);  // as the store reads: the checksum first
    // Past the checksum, so that the fuzzer reaches the structure behind it.
    if (!ts::DecodeResource(bytes, root, nullptr, {.verifyChecksum = false})) return 0;
    std::vector<std::uint8_t> again;
    if (!ts::EncodeResource(root.Get(), again)) std::abort();
    CTsComPtr<ITsProperty> back;
    if (!ts::DecodeResource(again, back) || !ts::PropertyTreesEqual(root.Get(), back.Get()))
        std::abort();
    return 0;
}
