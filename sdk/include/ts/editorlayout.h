#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "ts/api.h"

namespace ts {

// The splitter positions of one editor layout, by splitter name ("WindowSplitter").
using SplitterPositions = std::map<std::u16string, int, std::less<>>;

// The user's layout file holds one element per layout, by name, each with its splitters:
//   <Layouts><Layout Name="EditorsConversation"><Splitter Name="WindowSplitter" Position="640"/>
//   </Layout></Layouts>
// Reading a layout that is not there (or a file that is missing) gives an empty set; a file that
// can't be read as such is reported (WARNING) and gives an empty set too, so a damaged file only
// costs the user the positions.
TS_API SplitterPositions ReadEditorLayout(const std::u16string& file, std::u16string_view layout);
// Replaces one layout in the file, keeping the others; the file is replaced whole or not at all.
// False (reported) when it can't be written.
TS_API bool WriteEditorLayout(const std::u16string& file, std::u16string_view layout,
                              const SplitterPositions& positions);

}  // namespace ts
