#include "AppModelFixture.h"

namespace tobrin {
namespace {

class PackShelfTest : public testing::AppModelTest {
 protected:
  std::string problem() {
    const auto& problem = model_->shelf().problem();
    return problem ? problem->sentence([](auto english) { return std::string(english); }) : "";
  }
};

TEST_F(PackShelfTest, AddsOneAfterTheOtherAndPlaysTheLast) {
  AppModel& model = start();
  advance(0);
  std::vector<std::string> shown;
  whileAdding_ = [&] {
    main_.runUntil(main_.now() + machTicks(600));
    shown.push_back(model.shelf().adding() + (model.shelf().fraction() == 0.5 ? " half" : ""));
    if (shown.size() == 1) model.shelf().add({"later.zip"});  // while one is being added
  };
  model.shelf().add({"one.zip", "mouse.zip", "full.zip", "two/pack.json"});
  EXPECT_TRUE(isHeard());
  EXPECT_EQ(shown, (std::vector<std::string>{" half", "mouse.zip half", "full.zip half", "two half",
                                             "later.zip half"}));
  EXPECT_EQ(loadedPack(), "later");
  EXPECT_EQ(problem(), "mouse.zip holds sounds for a mouse, not for keys. Others that failed: 1.");
  EXPECT_NE(log_.find("full.zip can't be added: No space left on device."), std::string::npos);
  EXPECT_EQ(model.shelf().adding(), "");

  whileAdding_ = [] {};
  model.shelf().add({"odd.zip"});
  advance(0);
  EXPECT_EQ(problem(), "odd.zip can't be added: it is odd.");
  model.shelf().forgetProblem();
  EXPECT_EQ(problem(), "");
}

TEST_F(PackShelfTest, EndsEarlyWhereTheUserOrTheProgramDoes) {
  AppModel& model = start();
  advance(0);
  whileAdding_ = [&] { model.shelf().cancel(); };
  model.shelf().add({"one.zip", "two.zip"});
  advance(0);
  EXPECT_EQ(found_.size(), 3U);
  EXPECT_EQ(problem(), "");
  whileAdding_ = [] {};
  model.shelf().add({"three.zip"});
  model_.reset();
  advance(0);
  EXPECT_EQ(found_.size(), 3U);
}

TEST_F(PackShelfTest, RemovesAndBringsBack) {
  settings_.values[AppModel::selectedPackKey] = "\"leopold\"";
  found_[0].isBundled = true;
  AppModel& model = start();
  advance(0);
  model.removePack("alpha");
  EXPECT_EQ(found_.size(), 3U) << "that is not the user's";
  desktop_.refusal = "it is held";
  model.removePack("leopold");
  EXPECT_EQ(problem(), "The leopold can't be moved to the trash: it is held.");
  desktop_.refusal.clear();

  model.removePack("leopold");
  advance(0);
  EXPECT_EQ(loadedPack(), "omega") << "the next one";
  ASSERT_NE(model.shelf().discarded(), nullptr);
  EXPECT_EQ(model.shelf().discarded()->name, "The leopold");
  model.undoRemoval();
  advance(0);
  EXPECT_EQ(loadedPack(), "leopold");
  EXPECT_EQ(model.packs().size(), 3U);

  model.removePack("omega");
  advance(11'000);
  EXPECT_EQ(loadedPack(), "leopold") << "as chosen";
  model.removePack("leopold");
  advance(11'000);
  EXPECT_EQ(loadedPack(), "alpha") << "the one before the last";
  ASSERT_NE(model.shelf().discarded(), nullptr);
  advance(1'000);
  EXPECT_EQ(model.shelf().discarded(), nullptr);
  model.undoRemoval();
  EXPECT_EQ(found_.size(), 1U) << "too late";
}

}  // namespace
}  // namespace tobrin
