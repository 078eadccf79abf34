#pragma once

#include <string>

#include "ts/comptr.h"
#include "ts/resourcemanager.h"

namespace ts::bench {

// A module file of its own holding the plot the generated conversations name
// ("plt_missing_caravan", flags 0 to 2: the generator also asks for 3, which makes a fault on
// about one line in fifty), served as "ResMan" while the object lives, so that validation reads
// a real plot as the editor does.
class PlotModule {
public:
    PlotModule();
    ~PlotModule();
    PlotModule(const PlotModule&) = delete;
    PlotModule& operator=(const PlotModule&) = delete;

    // The module file, for programs that open it themselves, and its resource manager.
    std::string Path() const { return folder_ + "/bench.tsmod"; }
    ITsResourceManager& Manager() const { return *manager_.Get(); }

private:
    std::string folder_;
    CTsComPtr<ITsResourceManager> manager_;
};

}  // namespace ts::bench
