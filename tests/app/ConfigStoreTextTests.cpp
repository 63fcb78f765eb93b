// The exact text of each file.
#include "app/ConfigFiles.h"
#include "app/ConfigStore.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::FanControlPlan;

constexpr const char* planText = R"({
  "fans" : [
    {
      "fanID" : 0,
      "mode" : {
        "curve" : {
          "_0" : {
            "sourceSensorID" : "SMC-TCHP",
            "points" : [
              {
                "id" : "0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02",
                "celsius" : 45,
                "percent" : 0
              },
              {
                "id" : "6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11",
                "celsius" : 65.5,
                "percent" : 100
              }
            ],
            "interpolation" : "monotone"
          }
        }
      }
    },
    {
      "fanID" : 1,
      "mode" : {
        "automatic" : {

        }
      }
    },
    {
      "fanID" : 2,
      "mode" : {
        "fixedRPM" : {
          "_0" : 2500
        }
      }
    },
    {
      "fanID" : 3,
      "mode" : {
        "fixedPercent" : {
          "_0" : 37.5
        }
      }
    }
  ],
  "rules" : [
    {
      "id" : "6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11",
      "name" : "CPU\/GPU \"hot\" Lüfter",
      "sensorID" : "SMC-TCHP",
      "thresholdCelsius" : 85,
      "releaseBelowCelsius" : 80.25,
      "targetPercent" : 100,
      "fanTarget" : {
        "all" : {

        }
      },
      "dwellSeconds" : 2,
      "enabled" : true
    },
    {
      "id" : "C0010002-0000-4000-A000-000000000002",
      "name" : "",
      "thresholdCelsius" : 60,
      "releaseBelowCelsius" : 55,
      "targetPercent" : 50,
      "fanTarget" : {
        "fan" : {
          "_0" : 1
        }
      },
      "dwellSeconds" : 0.5,
      "enabled" : false
    }
  ],
  "tuning" : {
    "emaAlpha" : 0.25,
    "hysteresisCelsius" : 2,
    "maxDeltaRPMPerTick" : 400,
    "minDwellSeconds" : 3
  }
})";

/// `text` as it stands in a list in an object in a list.
std::string nested(std::string text) {
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1)) {
    const bool isEmptyLine = text[end + 1] == '\n';
    if (!isEmptyLine) text.insert(end + 1, "    ");
  }
  return text;
}

TEST(ConfigStoreText, PlanIsWrittenLetterForLetter) {
  ConfigFiles files;
  files.store.savePlan(samples::plan());
  EXPECT_EQ(files.text("plan.json"), planText);
}

TEST(ConfigStoreText, PlanWithoutFansIsWrittenLetterForLetter) {
  ConfigFiles files;
  files.store.savePlan(FanControlPlan::allAutomatic);
  EXPECT_EQ(files.text("plan.json"), R"({
  "fans" : [

  ],
  "rules" : [

  ],
  "tuning" : {
    "emaAlpha" : 0.3,
    "hysteresisCelsius" : 2,
    "maxDeltaRPMPerTick" : 400,
    "minDwellSeconds" : 3
  }
})");
}

TEST(ConfigStoreText, PresetsAreWrittenLetterForLetter) {
  ConfigFiles files;
  files.store.savePresets(samples::presets());
  EXPECT_EQ(files.text("presets.json"), R"([
  {
    "id" : "6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11",
    "name" : "Work \/ Play",
    "isBuiltIn" : false,
    "plan" : )" + nested(planText) + R"(
  },
  {
    "id" : "0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02",
    "name" : "Idle",
    "isBuiltIn" : true,
    "plan" : {
      "fans" : [

      ],
      "rules" : [

      ],
      "tuning" : {
        "emaAlpha" : 0.3,
        "hysteresisCelsius" : 2,
        "maxDeltaRPMPerTick" : 400,
        "minDwellSeconds" : 3
      }
    }
  }
])");
}

TEST(ConfigStoreText, NoPresetsAreAnEmptyList) {
  ConfigFiles files;
  files.store.savePresets({});
  EXPECT_EQ(files.text("presets.json"), "[\n\n]");
}

TEST(ConfigStoreText, ActivePresetIsAnObjectOfItsIdentifierInUpperCase) {
  ConfigFiles files;
  files.store.saveActivePresetID(samples::thirdID);
  EXPECT_EQ(files.text("active.json"), "{\n  \"id\" : \"C0010002-0000-4000-A000-000000000002\"\n}");
}

TEST(ConfigStoreText, AutoSwitchIsWrittenLetterForLetter) {
  ConfigFiles files;
  files.store.saveAutoSwitch(samples::autoSwitch());
  EXPECT_EQ(files.text("autoswitch.json"), R"({
  "enabled" : true,
  "onBatteryPresetID" : "0D4A7E10-5A2B-4E57-8B6E-2F1F6C9E3D02",
  "onACPresetID" : "6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11"
})");
}

TEST(ConfigStoreText, PresetsOfTheAutoSwitchThatAreAbsentAreLeftOut) {
  ConfigFiles files;
  files.store.saveAutoSwitch(core::AutoSwitchSettings::off);
  EXPECT_EQ(files.text("autoswitch.json"), "{\n  \"enabled\" : false\n}");
}

TEST(ConfigStoreText, FilesThatWereWrittenOtherwiseAreReadToo) {
  ConfigFiles files;
  files.put("active.json", "\t{\"x\":[],\"id\":\"c0010002-0000-4000-a000-000000000002\"}\r\n");
  files.put("autoswitch.json", R"({"onACPresetID":null,"enabled":false})");
  files.put("presets.json", "[]\n");
  EXPECT_EQ(files.store.loadActivePresetID(), samples::thirdID);
  EXPECT_EQ(files.store.loadAutoSwitch(), core::AutoSwitchSettings::off);
  EXPECT_EQ(files.store.loadPresets(), std::vector<core::FanPreset>());
}

} // namespace
} // namespace ventolith::app
