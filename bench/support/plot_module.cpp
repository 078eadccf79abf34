#include "support/plot_module.h"

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "agents/agentplot.h"
#include "ts/hostcomponents.h"
#include "ts/resourcestore.h"

namespace ts::bench {

PlotModule::PlotModule() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ts-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    folder_ = pattern;
    SqliteStoreOptions options;
    options.create = true;
    std::shared_ptr<ResourceStore> store = OpenSqliteStore(folder_ + "/bench.tsmod", options);
    if (!store || FAILED(TsCreateResourceManager(store, u"bench", manager_.Put()))) std::abort();

    CAgentPlot plot;
    plot.CreateOn(nullptr);
    for (std::int32_t flag = 0; flag < 3; ++flag) {
        CAgentPlotStatus status;
        status.CreateOn(nullptr);
        status.SetFlag(flag);
        status.SetName(u"FLAG_" + std::u16string(1, char16_t(u'0' + flag)));
        plot.AddItemToPropertyList(status, u"StatusList");
    }
    CTsComPtr<ITsResource> created;
    if (FAILED(manager_->CreateResource(u"plt_missing_caravan", u"plo", plot.GetNode(),
                                        created.Put())) ||
        FAILED(TsRegisterHostComponent(kTsResourceManagerName, manager_.Get())))
        std::abort();
}

PlotModule::~PlotModule() {
    TsRegisterHostComponent(kTsResourceManagerName, nullptr);
    manager_.Reset();
    std::filesystem::remove_all(folder_);
}

}  // namespace ts::bench
