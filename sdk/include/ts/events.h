#pragma once

#include <cstdint>

#include "ts/atoms.h"

// The named events between the host and its plugins. Inside the process an event is the atom of
// its name: each atom is made once, on first use, and events are compared by atom only.
// clang-format off
#define TS_HOST_EVENT_NAMES(X) \
    X(Refresh)                 \
    X(RefreshNoArt)            \
    X(RefreshOverride)         \
    X(NewResource)             \
    X(DeleteResource)          \
    X(SetResourceProperties)   \
    X(SaveResource)            \
    X(CheckoutResource)        \
    X(OptionsChange)           \
    X(ClosingEnvironment)      \
    X(Error)                   \
    X(UserInteraction)         \
    X(SearchResult)            \
    X(ClearSearchResults)      \
    X(MarkersChange)
// clang-format on

namespace ts::events {

#define TS_DEFINE_EVENT_ATOM(name)                       \
    inline TsAtom name() {                               \
        static const TsAtom atom = TsAddAtom(u"" #name); \
        return atom;                                     \
    }
TS_HOST_EVENT_NAMES(TS_DEFINE_EVENT_ATOM)
#undef TS_DEFINE_EVENT_ATOM

// "OptionsChange" carries in its first parameter the atom of the options section whose values
// changed ("DlgEditor" for the conversation editor's).

// Flags of the events a plugin sends to the host.
inline constexpr std::uint32_t kNotice = 1;  // "UserInteraction", "SearchResult", "MarkersChange"
inline constexpr std::uint32_t kError = 4;   // "Error": a resource could not be opened

}  // namespace ts::events
