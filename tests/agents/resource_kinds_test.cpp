#include <gtest/gtest.h>

#include <string>

#include "agents/agentarea.h"
#include "agents/agentcreature.h"
#include "agents/agentplot.h"
#include "stored_record.h"
#include "support/report_capture.h"
#include "support/variant_print.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

// A plot whose flags are numbered out of list order, as plots are after flags are removed.
class GatePlot : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(plot.CreateOn(nullptr));
        ASSERT_TRUE(plot.SetResRefName(u"gate_plot"));
        for (auto [flag, name] : {std::pair{3, u"GUARD_BRIBED"}, std::pair{0, u"GATE_OPEN"}, std::pair{7, u"ALARM"}}) {
            CAgentPlotStatus status;
            ASSERT_TRUE(status.CreateOn(nullptr));
            ASSERT_TRUE(status.SetFlag(flag) && status.SetName(name));
            ASSERT_TRUE(plot.AddItemToPropertyList(status, u"StatusList"));
        }
    }
    CAgentPlot plot;
};

TEST_F(GatePlot, FlagsAreFoundByNumberNotByPosition) {
    CAgentPlotStatus status;
    std::u16string name;
    ASSERT_TRUE(plot.FindStatus(7, status));
    ASSERT_TRUE(status.GetName(name));
    EXPECT_EQ(name, u"ALARM");
    ASSERT_TRUE(plot.FindStatus(0, status));
    ASSERT_TRUE(status.GetName(name));
    EXPECT_EQ(name, u"GATE_OPEN");

    ReportCapture reports;
    EXPECT_FALSE(plot.FindStatus(1, status)) << "1 is a position, not a flag";
    EXPECT_FALSE(status.IsBound());
    EXPECT_FALSE(plot.FindStatus(-1, status)) << "-1 means no flag";
    EXPECT_EQ(reports.size(), 0u);
}

TEST(ResourceKinds, AreaObjectsAreFoundByTag) {
    CAgentArea area;
    ASSERT_TRUE(area.CreateOn(nullptr));
    for (auto [tag, uri] : {std::pair{u"guard_captain", u"guard_captain.utc"}, std::pair{u"gate_chest", u"chest.utp"}}) {
        CAgentAreaObject object;
        ASSERT_TRUE(object.CreateOn(nullptr));
        ASSERT_TRUE(object.SetTag(tag) && object.SetURI(uri));
        ASSERT_TRUE(area.AddItemToPropertyList(object, u"ObjectList"));
    }
    CAgentAreaObject found;
    std::u16string uri;
    ASSERT_TRUE(area.FindObject(u"Gate_Chest", found));
    ASSERT_TRUE(found.GetURI(uri));
    EXPECT_EQ(uri, u"chest.utp");
    EXPECT_FALSE(area.FindObject(u"henchman 1", found));
    EXPECT_FALSE(area.FindObject(u"", found));
}

TEST(ResourceKinds, AMistypedStoredFieldFailsAndLeavesTheOutput) {
    // A stored plot flag whose number was written as text is never taken for a flag.
    CAgentPlot plot;
    ASSERT_TRUE(plot.CreateOn(nullptr));
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Flag", variant(kTsTypeString, u"2"));
    ASSERT_TRUE(plot.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"StatusList")));

    ReportCapture reports;
    CAgentPlotStatus status;
    EXPECT_FALSE(plot.FindStatus(2, status));
    std::int32_t flag = 11;
    status.Bind(damaged.Get());
    EXPECT_FALSE(status.GetFlag(flag));
    EXPECT_EQ(flag, 11);
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 2u);
    EXPECT_EQ(reports.entries().at(0).sourceFile, "agentplot");

    CAgentCreature creature;
    creature.Bind(damaged.Get());
    std::u16string tag = u"kept";
    EXPECT_FALSE(creature.GetTag(tag));
    EXPECT_EQ(tag, u"kept");
    EXPECT_EQ(reports.entries().back().sourceFile, "agentcreature");
}

}  // namespace
