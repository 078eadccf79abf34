// Finding list elements of stored records: stage places and cameras and area objects by tag,
// plot flags by number.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "agents/agentarea.h"
#include "agents/agentplot.h"
#include "agents/agentstage.h"
#include "stored_record.h"
#include "support/report_capture.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

template <class Kind>
Kind NewObject(const std::u16string& tag, const std::u16string& defaultCamera = u"") {
    Kind object;
    EXPECT_TRUE(object.CreateOn(nullptr) && object.SetTag(tag));
    if constexpr (std::is_same_v<Kind, CAgentStagePlace>) {
        EXPECT_TRUE(object.SetDefaultCamera(defaultCamera));
    }
    return object;
}

// A stage with two places and two cameras, tags stored in lower case.
class GateStage : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(stage.CreateOn(nullptr));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStagePlace>(u"left_post", u"cam_left"), u"PlaceList"));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStagePlace>(u"right_post", u"cam_right"), u"PlaceList"));
        auto camLeft = NewObject<CAgentStageCamera>(u"cam_left");
        ASSERT_TRUE(camLeft.SetLookingAtPrimary(u"right_post"));
        ASSERT_TRUE(stage.AddItemToPropertyList(camLeft, u"CameraList"));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStageCamera>(u"cam_right"), u"CameraList"));
    }

    std::u16string DefaultCameraOf(const std::u16string& placeTag) {
        CAgentStagePlace place;
        std::u16string camera = u"(not found)";
        if (stage.FindPlace(placeTag, place)) {
            EXPECT_TRUE(place.GetDefaultCamera(camera));
        }
        return camera;
    }

    CAgentStage stage;
};

TEST_F(GateStage, PlacesAndCamerasAreFoundByTagWhateverTheCase) {
    ReportCapture reports;
    EXPECT_EQ(DefaultCameraOf(u"Right_Post"), u"cam_right");
    CAgentStageCamera cam;
    ASSERT_TRUE(stage.FindCamera(u"CAM_LEFT", cam));
    std::u16string target;
    ASSERT_TRUE(cam.GetLookingAtPrimary(target));
    EXPECT_EQ(target, u"right_post");

    // A found object is the stored one: a change through it is in the stage.
    CAgentStageCamera again;
    ASSERT_TRUE(stage.FindCamera(u"cam_left", again));
    EXPECT_EQ(again.GetNode(), cam.GetNode());

    EXPECT_FALSE(stage.FindCamera(u"left_post", cam)) << "places are not cameras";
    EXPECT_FALSE(cam.IsBound());
    EXPECT_EQ(DefaultCameraOf(u"left"), u"(not found)") << "whole tags only";
    EXPECT_EQ(DefaultCameraOf(u""), u"(not found)");
    EXPECT_EQ(reports.size(), 0u) << "not finding a tag is no error";

    // Of two equal tags the first wins.
    ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStagePlace>(u"LEFT_POST", u"cam_right"), u"PlaceList"));
    EXPECT_EQ(DefaultCameraOf(u"left_post"), u"cam_left");
}

TEST_F(GateStage, ADamagedPlaceIsSkippedWithAReport) {
    // A stored place whose Tag is a number, placed before a good one with the wanted tag.
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Tag", variant(kTsTypeInt, 7));
    ASSERT_TRUE(stage.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"PlaceList"), 0));

    ReportCapture reports;
    EXPECT_EQ(DefaultCameraOf(u"right_post"), u"cam_right");
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 1u);
    EXPECT_EQ(reports.entries().at(0).sourceFile, "agentstage");
}

TEST(StageAgents, AStageStoredWithoutItsListsFindsNothingAndSaysWhy) {
    auto node = NewRecordNode();
    AddStoredField(node.Get(), u"Tag", variant(kTsTypeString, u"bridge"));
    CAgentStage stage(node.Get());
    ReportCapture reports;
    CAgentStagePlace place;
    EXPECT_FALSE(stage.FindPlace(u"bridge", place));
    EXPECT_FALSE(place.IsBound());
    EXPECT_EQ(reports.Count(u"CAgentBase::GetPropertyListEntryCount failed to get count for list PlaceList"), 1u);
}

TEST(ResourceKinds, AreaObjectsAreFoundByTag) {
    CAgentArea area;
    ASSERT_TRUE(area.CreateOn(nullptr));
    for (auto [tag, uri] : {std::pair{u"guard_captain", u"guard_captain.utc"}, std::pair{u"gate_chest", u"chest.utp"}}) {
        CAgentAreaObject object;
        ASSERT_TRUE(object.CreateOn(nullptr) && object.SetTag(tag) && object.SetURI(uri));
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

TEST(ResourceKinds, PlotFlagsAreFoundByNumberNotByPosition) {
    // Flags numbered out of list order, as plots are after flags are removed; one stored flag
    // whose number was written as text is never taken for a flag.
    CAgentPlot plot;
    ASSERT_TRUE(plot.CreateOn(nullptr));
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Flag", variant(kTsTypeString, u"2"));
    ASSERT_TRUE(plot.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"StatusList")));
    for (auto [flag, name] : {std::pair{3, u"GUARD_BRIBED"}, std::pair{0, u"GATE_OPEN"}, std::pair{7, u"ALARM"}}) {
        CAgentPlotStatus status;
        ASSERT_TRUE(status.CreateOn(nullptr) && status.SetFlag(flag) && status.SetName(name));
        ASSERT_TRUE(plot.AddItemToPropertyList(status, u"StatusList"));
    }
    CAgentPlotStatus status;
    std::u16string name;
    ASSERT_TRUE(plot.FindStatus(7, status) && status.GetName(name));
    EXPECT_EQ(name, u"ALARM");
    ASSERT_TRUE(plot.FindStatus(0, status) && status.GetName(name));
    EXPECT_EQ(name, u"GATE_OPEN");

    ReportCapture reports;
    EXPECT_FALSE(plot.FindStatus(1, status)) << "1 is a position, not a flag";
    EXPECT_FALSE(status.IsBound());
    EXPECT_FALSE(plot.FindStatus(2, status)) << "text is no flag number";
    EXPECT_FALSE(plot.FindStatus(-1, status)) << "-1 means no flag";
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 3u) << "the damaged flag, once per search";
    EXPECT_EQ(reports.entries().at(0).sourceFile, "agentplot");
}

}  // namespace
