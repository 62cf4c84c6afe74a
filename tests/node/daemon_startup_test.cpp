// A startup configuration is not replaced by less than the node holds.

#include <gtest/gtest.h>

#include <filesystem>

#include "files.h"
#include "host/faults.h"
#include "running_configuration.h"

TEST(Startup, IsNotReplacedWhenTheDatabaseFails) {
  std::string folder = testing::TempDir() + "startupXXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  node::Node node(MSAN_MODULE);
  msand::Startup startup(folder + "/startup.cfg");
  msand::replaceFile(startup.path(), "set cid mode dtmf\n");
  ASSERT_TRUE(startup.execute(node, [] { return false; }));
  std::string text;
  for (const host::Fault kind : {host::Fault::connect, host::Fault::start, host::Fault::find}) {
    host::failNth(kind, 1);
    std::string why;
    try {
      startup.write(node, false, "", text);
    } catch (const std::exception& error) {
      why = error.what();
    }
    EXPECT_EQ(why, startup.path() + ": the running configuration is incomplete: the database failed");
    EXPECT_EQ(msand::readFile(startup.path(), 100), "set cid mode dtmf\n");
  }
  startup.write(node, false, "", text);
  EXPECT_NE(msand::readFile(startup.path(), 100000).find("\nset cid mode dtmf\n"), std::string::npos);
  EXPECT_TRUE(startup.execute(node, [] { return false; }));
  EXPECT_FALSE(startup.execute(node, [] { return true; })) << "told to stop";
  std::filesystem::remove_all(folder);
}
