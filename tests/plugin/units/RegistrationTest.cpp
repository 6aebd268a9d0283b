#include "Registration.h"

#include <gmock/gmock.h>
#include <set>

using namespace orvo;
using testing::ElementsAre;

namespace {

/// Takes the rows up to one that it refuses.
class RefusingRegistrar : public Registrar {
public:
    explicit RefusingRegistrar(std::size_t refused) : refused_(refused) {}
    MStatus add(const RegistrationRow& row) override { return take(row); }
    MStatus remove(const RegistrationRow& row) override { return take(row); }
    std::vector<std::string> taken;

private:
    MStatus take(const RegistrationRow& row) {
        if (taken.size() == refused_) return MStatus::kInvalidParameter;
        taken.push_back(row.name);
        return MStatus::kSuccess;
    }
    std::size_t refused_;
};

} // namespace

TEST(Registration, TableHasTheNamesAndIdsOfTheFileFormat) {
    std::vector<std::string> names;
    std::vector<unsigned> ids;
    for (const RegistrationRow& row : registrationTable()) {
        names.push_back(row.name);
        ids.push_back(row.typeId ? row.typeId->id() : 0);
        EXPECT_EQ(row.kind == RegistrationKind::Command, row.typeId == nullptr && row.initialize == nullptr);
    }
    EXPECT_THAT(
        names,
        ElementsAre("orvosky_BasicSkyLocator", "orvosky_ShadingConversionNode", "orvosky_SaveSkySystemToXMLCommand",
                    "orvosky_ProceduralSkyLocator", "orvosky_TexturedSkyLocator", "orvosky_SpriteCloudLocator",
                    "orvosky_GradientSkyLocator", "orvosky_ExpHeightFog", "orvosky_SkySceneSettings",
                    "orvosky_ParticleCloud", "orvosky_ParticleCloudDome", "orvosky_ParticleCloud_RenderCloudCommand",
                    "orvosky_ParticleCloud_RefreshTextureCommand", "orvosky_ParticleCloudSphere",
                    "orvosky_ParticleCloudShadingParams", "orvosky_ParticleCloudShadingParams_ExportData",
                    "orvosky_ParticleCloudShadingParams_ImportData", "orvosky_ParticleCloud_ExportDataCommand",
                    "orvosky_ParticleCloudDome_RefreshDataCommand", "orvosky_ParticleCloudDome_LoadFromDiskCommand",
                    "orvosky_SceneFog", "orvosky_SkyRenderer", "orvosky_ConvertFullPathToProjectRootPath",
                    "orvo_dropMesh", "orvosky_UpdateSkySystemCommand", "orvosky_ParticleCloud_CountSpritesCommand"));
    EXPECT_THAT(ids,
                ElementsAre(0x374000, 0x374003, 0, 0x374009, 0x374015, 0x374016, 0x374017, 0x374019, 0x374020, 0x374022,
                            0x374024, 0, 0, 0x374023, 0x374025, 0, 0, 0, 0, 0, 0x374027, 0x374028, 0, 0, 0, 0));
}

// Catches a loop that goes on after a failure, rolls back, or names the wrong row.
TEST(Registration, StopsAtTheRowThatIsRefused) {
    const auto rows = registrationTable();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        RefusingRegistrar loading(i), unloading(i);
        testing::internal::CaptureStderr();
        EXPECT_EQ(registerRows(rows, loading), MStatus::kInvalidParameter);
        EXPECT_THAT(testing::internal::GetCapturedStderr(),
                    testing::StartsWith(std::string("initializePlugin: ") + rows[i].name));
        EXPECT_EQ(loading.taken.size(), i);
        testing::internal::CaptureStderr();
        EXPECT_EQ(deregisterRows(rows, unloading), MStatus::kInvalidParameter);
        EXPECT_THAT(testing::internal::GetCapturedStderr(),
                    testing::StartsWith(std::string("uninitializePlugin: ") +
                                        (i == 3 ? "ProceduralSkyLocator" : rows[i].name)));
        EXPECT_EQ(unloading.taken, loading.taken) << "unloading goes in the order of loading";
    }
    RefusingRegistrar all(rows.size());
    EXPECT_EQ(registerRows(rows, all), MStatus::kSuccess);
}

TEST(Registration, UnloadMessageMayHaveANameOfItsOwn) {
    const RegistrationRow row{"orvosky_Name", RegistrationKind::Command, nullptr, nullptr, nullptr, "OtherName"};
    RefusingRegistrar registrar(0);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(deregisterRows({&row, 1}, registrar).error());
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::StartsWith("uninitializePlugin: OtherName"));
}
