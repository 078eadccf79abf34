#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ts/api.h"
#include "ts/comptr.h"
#include "ts/property.h"

// The host's generic structured resource format: a property tree as bytes, with a version header
// and a checksum. Names, type codes, flags, declaration attributes, values and child order come
// back exactly as they were written.
//
// Layout (little-endian; "varint" is LEB128 of at most 5 bytes):
//   header   "MTRF", u16 format version, u16 reserved (0), u32 payload size, u32 node count,
//            u32 CRC-32 of the header's first 16 bytes followed by the payload
//   payload  names      varint count, each a text
//            attributes varint count, each 5 texts (display name ... editor kind)
//            shapes     varint count, each varint name index, u8 type, varint flags,
//                       varint attribute-set index
//            root node  varint shape index, then a list's varint child count and children, or
//                       the value: int zigzag varint, unsigned varint, float/double raw,
//                       bool one byte 0/1, vector 3 floats, colour 4 floats, text, bytes
//   texts are a varint count of UTF-16 units followed by their WTF-8 bytes (UTF-8 that also
//   carries lone surrogates, so any UTF-16 string survives); bytes are a varint length and the
//   bytes.
namespace ts {

inline constexpr char kResourceMagic[4] = {'M', 'T', 'R', 'F'};
inline constexpr std::uint16_t kResourceFormatVersion = 1;
inline constexpr std::size_t kResourceHeaderSize = 20;
// Deeper trees are refused: real resources nest about ten levels, and the limit keeps a node
// that contains itself from recursing forever.
inline constexpr std::uint32_t kResourceMaxDepth = 128;

struct ResourceDecodeOptions {
    // Off only for the fuzz target, which must reach the structure behind the checksum.
    bool verifyChecksum = true;
};

// Encodes the tree under `root`. Fails (with a message) on a tree nested deeper than the limit,
// an unnamed node or a value of an unknown type; `bytes` is then left empty.
TS_API bool EncodeResource(ITsProperty* root, std::vector<std::uint8_t>& bytes,
                           std::u16string* error = nullptr);

// Decodes bytes made by EncodeResource. Any input is safe: a damaged or foreign one fails with a
// message that says what is wrong and where, and `root` is left empty.
TS_API bool DecodeResource(std::span<const std::uint8_t> bytes, CTsComPtr<ITsProperty>& root,
                           std::u16string* error = nullptr,
                           const ResourceDecodeOptions& options = {});

// CRC-32 (the IEEE polynomial, as zip and PNG use), continuing from `crc`.
TS_API std::uint32_t Crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc = 0);

}  // namespace ts
