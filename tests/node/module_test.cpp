#include "module.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

std::string failure(const std::string& path) {
  try {
    const node::Module module(path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "loaded";
}

TEST(Module, SaysWhyALibraryCannotBeLoaded) {
  EXPECT_NE(failure("/no/such/libmsan.so").find("/no/such/libmsan.so"), std::string::npos);
  EXPECT_NE(failure("libanl.so.1").find("msan_Module_Init"), std::string::npos);  // a library, but not ours
  EXPECT_FALSE(node::Module::isLoaded("libanl.so.1"));
}

TEST(Module, RefusesALibraryThatIsInTheProcessAlready) {
  EXPECT_NE(failure("libc.so.6").find("loaded already"), std::string::npos);
}

}  // namespace
