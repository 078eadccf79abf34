#include <gtest/gtest.h>

#include <string>

#include "agents/agentstage.h"
#include "stored_record.h"
#include "support/report_capture.h"
#include "support/variant_print.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

template <class Kind>
Kind NewObject(const std::u16string& tag) {
    Kind object;
    EXPECT_TRUE(object.CreateOn(nullptr));
    EXPECT_TRUE(object.SetTag(tag));
    return object;
}

// A stage with two places and two cameras, tags stored in lower case.
class GateStage : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(stage.CreateOn(nullptr));
        auto left = NewObject<CAgentStagePlace>(u"left_post");
        ASSERT_TRUE(left.SetDefaultCamera(u"cam_left"));
        auto right = NewObject<CAgentStagePlace>(u"right_post");
        ASSERT_TRUE(right.SetDefaultCamera(u"cam_right"));
        ASSERT_TRUE(stage.AddItemToPropertyList(left, u"PlaceList"));
        ASSERT_TRUE(stage.AddItemToPropertyList(right, u"PlaceList"));
        auto camLeft = NewObject<CAgentStageCamera>(u"cam_left");
        ASSERT_TRUE(camLeft.SetLookingAtPrimary(u"right_post"));
        ASSERT_TRUE(stage.AddItemToPropertyList(camLeft, u"CameraList"));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStageCamera>(u"cam_right"), u"CameraList"));
    }
    CAgentStage stage;
};

TEST(StageAgents, NewCameraAndPlaceReadTheirDefaults) {
    CAgentStageCamera camera;
    ASSERT_TRUE(camera.CreateOn(nullptr));
    std::int32_t type = -5, lookAt = -5;
    float fov = 0;
    bool applyDof = false, overrideDof = true;
    std::u16string tag = u"x";
    ASSERT_TRUE(camera.GetType(type) && camera.GetFOV(fov) && camera.GetLookAtType(lookAt) &&
                camera.GetApplyDOF(applyDof) && camera.GetOverrideDOF(overrideDof) && camera.GetTag(tag));
    EXPECT_EQ(type, 1);
    EXPECT_EQ(fov, 45.0f);
    EXPECT_EQ(lookAt, static_cast<std::int32_t>(TsStageLookAtType::Simple));
    EXPECT_TRUE(applyDof);
    EXPECT_FALSE(overrideDof);
    EXPECT_EQ(tag, u"");

    CAgentStagePlace place;
    ASSERT_TRUE(place.CreateOn(nullptr));
    std::int32_t pose = 0;
    TsVector3 position{9, 9, 9};
    ASSERT_TRUE(place.GetType(type) && place.GetPose(pose) && place.GetPosition(position));
    EXPECT_EQ(type, 0);
    EXPECT_EQ(pose, -1) << "no pose";
    EXPECT_EQ(position, (TsVector3{0, 0, 0}));
}

TEST(StageAgents, AKindWritesItsTypeOverTheStageObjectDefault) {
    CAgentStageCamera camera;
    ASSERT_TRUE(camera.BuildProperties());
    ASSERT_TRUE(camera.CAgentStageObject::SetDefaults());
    std::int32_t type = 0;
    ASSERT_TRUE(camera.GetType(type));
    EXPECT_EQ(type, -1) << "the stage object alone writes -1";
    ASSERT_TRUE(camera.SetDefaults());
    ASSERT_TRUE(camera.GetType(type));
    EXPECT_EQ(type, 1);

    // Bound as a plain stage object, a stored element tells a place from a camera.
    CAgentStageObject object;
    object.Bind(camera.GetNode());
    ASSERT_TRUE(object.GetType(type));
    EXPECT_EQ(type, CAgentStageCamera::kObjectType);
    object.Bind(NewObject<CAgentStagePlace>(u"p").GetNode());
    ASSERT_TRUE(object.GetType(type));
    EXPECT_EQ(type, CAgentStagePlace::kObjectType);
}

TEST(StageAgents, ANewStageHasNothingToFind) {
    CAgentStage stage;
    ASSERT_TRUE(stage.CreateOn(nullptr));
    EXPECT_EQ(stage.PlaceListCount(), 0u);
    EXPECT_EQ(stage.CameraListCount(), 0u);
    ReportCapture reports;
    CAgentStagePlace place;
    CAgentStageCamera camera;
    for (auto tag : {u"owner", u"", u"cam"}) {
        EXPECT_FALSE(stage.FindPlace(tag, place));
        EXPECT_FALSE(stage.FindCamera(tag, camera));
    }
    EXPECT_FALSE(place.IsBound());
    EXPECT_FALSE(camera.IsBound());
    EXPECT_EQ(reports.size(), 0u) << "not finding a tag is no error";
}

TEST_F(GateStage, PlacesAndCamerasAreFoundByTagWhateverTheCase) {
    CAgentStagePlace place;
    ASSERT_TRUE(stage.FindPlace(u"Right_Post", place));
    std::u16string camera;
    ASSERT_TRUE(place.GetDefaultCamera(camera));
    EXPECT_EQ(camera, u"cam_right");

    CAgentStageCamera cam;
    ASSERT_TRUE(stage.FindCamera(camera, cam));
    ASSERT_TRUE(stage.FindCamera(u"CAM_LEFT", cam));
    std::u16string target;
    ASSERT_TRUE(cam.GetLookingAtPrimary(target));
    EXPECT_EQ(target, u"right_post");

    // A found object is the stored one: a change through it is in the stage.
    ASSERT_TRUE(cam.SetFOV(30.0f));
    CAgentStageCamera again;
    ASSERT_TRUE(stage.FindCamera(u"cam_left", again));
    EXPECT_EQ(again.GetNode(), cam.GetNode());

    EXPECT_FALSE(stage.FindCamera(u"left_post", cam)) << "places are not cameras";
    EXPECT_FALSE(cam.IsBound());
    EXPECT_FALSE(stage.FindPlace(u"left", place)) << "whole tags only";
    EXPECT_FALSE(stage.FindPlace(u"", place));
}

TEST_F(GateStage, TheFirstOfTwoEqualTagsWins) {
    auto duplicate = NewObject<CAgentStagePlace>(u"LEFT_POST");
    ASSERT_TRUE(duplicate.SetDefaultCamera(u"cam_right"));
    ASSERT_TRUE(stage.AddItemToPropertyList(duplicate, u"PlaceList"));
    CAgentStagePlace place;
    ASSERT_TRUE(stage.FindPlace(u"left_post", place));
    std::u16string camera;
    ASSERT_TRUE(place.GetDefaultCamera(camera));
    EXPECT_EQ(camera, u"cam_left");
}

TEST_F(GateStage, ADamagedPlaceIsSkippedWithAReport) {
    // A stored place whose Tag is a number, placed before a good one with the wanted tag.
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Tag", variant(kTsTypeInt, 7));
    ASSERT_TRUE(stage.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"PlaceList"), 0));

    ReportCapture reports;
    CAgentStagePlace place;
    ASSERT_TRUE(stage.FindPlace(u"right_post", place));
    EXPECT_NE(place.GetNode(), damaged.Get());
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 1u);
    EXPECT_EQ(reports.entries().at(0).sourceFile, "agentstage");
}

TEST(StageAgents, AStageStoredWithoutItsListsFindsNothingAndSaysWhy) {
    auto node = NewRecordNode();
    AddStoredField(node.Get(), u"Tag", variant(kTsTypeString, u"bridge"));
    CAgentStage stage;
    stage.Bind(node.Get());
    ReportCapture reports;
    CAgentStagePlace place;
    EXPECT_FALSE(stage.FindPlace(u"bridge", place));
    EXPECT_EQ(reports.Count(u"CAgentBase::GetPropertyListEntryCount failed to get count for list PlaceList"), 1u);
}

TEST(StageAgents, AMistypedStoredFieldFailsAndLeavesTheOutput) {
    auto node = NewRecordNode();
    AddStoredField(node.Get(), u"FOV", variant(kTsTypeDouble, 50.0));
    CAgentStageCamera camera;
    camera.Bind(node.Get());
    ReportCapture reports;
    float fov = 12.5f;
    EXPECT_FALSE(camera.GetFOV(fov));
    EXPECT_EQ(fov, 12.5f);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports.entries()[0].message, u"Request for invalid property");
    EXPECT_EQ(reports.entries()[0].sourceFile, "agentstage");
}

}  // namespace
